#include "common/ui/gallery/gallerysections.h"

#include "common/ui/gallery/stategrid.h"
#include "common/ui/toolkit/colorbox.h"
#include "common/ui/toolkit/doubleedit.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztcheckbox.h"
#include "common/ui/toolkit/ztcombobox.h"
#include "common/ui/toolkit/ztdropdownmenu.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>

#include <array>

namespace vantrel::gallery {

namespace {

constexpr std::array buttonStates{State::Normal, State::Hover,   State::Pressed,
                                  State::Focus,  State::Checked, State::Disabled};
constexpr std::array fieldStates{State::Normal, State::Hover, State::Focus, State::Disabled};

const QStringList buttonTitles{QStringLiteral("normal"),  QStringLiteral("hover"),
                               QStringLiteral("pressed"), QStringLiteral("focus"),
                               QStringLiteral("checked"), QStringLiteral("disabled")};
const QStringList fieldTitles{QStringLiteral("normal"), QStringLiteral("hover"), QStringLiteral("focus"),
                              QStringLiteral("disabled")};

using FrozenEdit = Frozen<ZTEdit, QStyleOptionFrame>;
using FrozenNumber = Frozen<DoubleEdit, QStyleOptionFrame>;
using FrozenBox = Frozen<ZTComboBox, QStyleOptionComboBox>;
using FrozenMenu = Frozen<ZTDropdownMenu, QStyleOptionComboBox>;
using FrozenCheck = Frozen<ZTCheckBox, QStyleOptionButton>;

/// One widget for each state, made by the function.
template <typename States, typename Make>
QList<QWidget*> each(const States& states, Make make)
{
    QList<QWidget*> widgets;
    for (const State state : states)
        widgets.append(make(state));
    return widgets;
}

template <typename Button, typename... Arguments>
QList<QWidget*> buttons(const QString& styleClass, bool checkable, Arguments... arguments)
{
    return each(buttonStates, [&](State state) -> QWidget* {
        if (state == State::Checked && !checkable)
            return nullptr;
        auto* button = new Frozen<Button, QStyleOptionButton>(arguments...);
        if (!styleClass.isEmpty())
            button->setStyleClass(styleClass);
        freezeButton(button, state);
        if (state == State::Hover)
            button->freeze(QStyle::State_MouseOver);
        return button;
    });
}

template <typename Box>
Box* filled(Box* box, State state)
{
    box->addItems({QStringLiteral("1: Media"), QStringLiteral("2: Second night")});
    freezeField(box, state);
    return box;
}

} // namespace

QWidget* makeTexts(QWidget* parent)
{
    auto* grid = new StateGrid({QStringLiteral("enabled"), QStringLiteral("disabled")}, parent);
    for (const char* name :
         {"display", "title", "section", "", "dim", "caption", "error", "time", "preview", "program"}) {
        QList<QWidget*> labels;
        for (const bool enabled : {true, false}) {
            auto* label = new ZTLabel(QStringLiteral("Opening 00:01:02.480"));
            label->setStyleClass(QString::fromLatin1(name));
            label->setEnabled(enabled);
            labels.append(label);
        }
        grid->addRow(*name ? QString::fromLatin1(name) : QStringLiteral("body"), labels);
    }
    auto* elided = new ElidedLabel(QStringLiteral("A name that is longer than its place"));
    elided->setFixedWidth(160);
    grid->addRow(QStringLiteral("ElidedLabel"), {elided});
    return grid;
}

QWidget* makeButtons(QWidget* parent)
{
    auto* grid = new StateGrid(buttonTitles, parent);
    for (const char* name : {"", "accent", "green", "red", "cancel", "flat", "segment"}) {
        const QString style = QString::fromLatin1(name);
        const bool checkable = style.isEmpty() || style == QStringLiteral("segment");
        grid->addRow(style.isEmpty() ? QStringLiteral("PushButton") : style,
                     buttons<PushButton>(style, checkable, QStringLiteral("Rename")));
    }
    return grid;
}

QWidget* makeIconButtons(QWidget* parent)
{
    auto* grid = new StateGrid(buttonTitles, parent);
    const QString play = QStringLiteral(":/icons/mc_play.svg");
    grid->addRow(QStringLiteral("IconButton"), buttons<IconButton>({}, true, play, QString()));
    grid->addRow(QStringLiteral("boxed"),
                 buttons<IconButton>(QStringLiteral("boxed"), true, QStringLiteral(":/icons/crossfade.svg"),
                                     QString()));
    grid->addRow(QStringLiteral("disabled icon"),
                 buttons<IconButton>({}, false, play, QStringLiteral(":/icons/mc_play_disabled.svg")));
    QList<QWidget*> boxes = each(buttonStates, [](State state) -> QWidget* {
        if (state == State::Checked)
            return nullptr;
        auto* box = new ColorBox(QColor(0xf2, 0x71, 0x1c));
        freezeButton(box, state);
        return box;
    });
    grid->addRow(QStringLiteral("ColorBox"), boxes);
    grid->addRow(QStringLiteral("translucent"), {new ColorBox(QColor(0xf2, 0x71, 0x1c, 96))});
    return grid;
}

QWidget* makeFields(QWidget* parent)
{
    auto* grid = new StateGrid(fieldTitles + QStringList{QStringLiteral("read-only")}, parent);
    const auto row = [](bool empty) {
        const auto make = [empty](State state) {
            auto* edit = new FrozenEdit(empty ? QString() : QStringLiteral("Walk-in"));
            edit->setPlaceholderText(QStringLiteral("Search"));
            freezeField(edit, state);
            return edit;
        };
        QList<QWidget*> edits = each(fieldStates, make);
        auto* last = make(State::Normal);
        last->setReadOnly(true);
        edits.append(last);
        return edits;
    };
    grid->addRow(QStringLiteral("ZTEdit"), row(false));
    grid->addRow(QStringLiteral("empty"), row(true));
    const auto number = [](State state) {
        auto* edit = new FrozenNumber(0.0, 10.0, QStringLiteral("s"));
        edit->setValue(2.5);
        freezeField(edit, state);
        return edit;
    };
    QList<QWidget*> numbers = each(fieldStates, number);
    auto* fixed = number(State::Normal);
    fixed->setReadOnly(true);
    numbers.append(fixed);
    grid->addRow(QStringLiteral("DoubleEdit"), numbers);
    return grid;
}

QWidget* makeChoices(QWidget* parent)
{
    auto* grid = new StateGrid(fieldTitles, parent);
    grid->addRow(QStringLiteral("ZTComboBox"),
                 each(fieldStates, [](State state) { return filled(new FrozenBox, state); }));
    grid->addRow(QStringLiteral("ZTDropdownMenu"),
                 each(fieldStates, [](State state) { return filled(new FrozenMenu, state); }));
    auto* editing = filled(new FrozenMenu, State::Normal);
    editing->setEditable(true);
    grid->addRow(QStringLiteral("being renamed"), {editing});
    for (const bool checked : {false, true}) {
        grid->addRow(checked ? QStringLiteral("checked") : QStringLiteral("ZTCheckBox"),
                     each(fieldStates, [checked](State state) {
                         auto* box = new FrozenCheck(QStringLiteral("Auto save"));
                         box->setChecked(checked);
                         freezeField(box, state);
                         return box;
                     }));
    }
    return grid;
}

} // namespace vantrel::gallery
