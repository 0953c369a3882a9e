// The controls of declarative views, each beside its twin among the widgets: nobody is to see which is which.
#include "common/qml/qmlmanager.h"
#include "common/qml/quickview.h"
#include "common/ui/gallery/gallerysections.h"
#include "common/ui/gallery/stategrid.h"
#include "common/ui/style/colors.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztcheckbox.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztframe.h"
#include "common/ui/toolkit/ztlabel.h"
#include "common/ui/toolkit/ztmenu.h"

#include <QQmlComponent>
#include <QQuickItem>
#include <QVBoxLayout>

namespace vantrel::gallery {

namespace {

/// The twin's size is its own, and follows the size of texts.
QWidget* declarative(const QString& text)
{
    QMLManager* const manager = QMLManager::instance();
    manager->initialize();
    auto* view = new QuickView(manager->engine());
    view->setClearColor(colors::getColor(colors::Slate_grey_800));
    view->setFocusPolicy(Qt::NoFocus);
    const QUrl place(QStringLiteral("qrc:/Gallery/Twin.qml"));
    auto* component = new QQmlComponent(manager->engine(), view);
    component->setData("import QtQuick\nimport ZTCommon 1.0\n" + text.toUtf8(), place);
    QObject* const object = component->create();
    auto* const item = qobject_cast<QQuickItem*>(object);
    view->setContent(place, component, object);
    if (!item)
        return view;
    const auto fit = [view, item] {
        view->setFixedSize(qCeil(item->implicitWidth()), qCeil(item->implicitHeight()));
    };
    QObject::connect(item, &QQuickItem::implicitWidthChanged, view, fit);
    QObject::connect(item, &QQuickItem::implicitHeightChanged, view, fit);
    fit();
    return view;
}

/// Widget and twin, then both without being enabled.
template <typename Make>
void addTwins(StateGrid* grid, const QString& kind, Make make, const QString& twin)
{
    QList<QWidget*> row;
    for (const bool isEnabled : {true, false}) {
        QWidget* widget = make();
        widget->setEnabled(isEnabled);
        const QString rest =
            isEnabled ? QStringLiteral("; enabled: true }") : QStringLiteral("; enabled: false }");
        row << widget << declarative(twin + rest);
    }
    grid->addRow(kind, row);
}

QWidget* makeFrameTwin()
{
    auto* frame = new ZTFrame;
    frame->setProperty("class", QStringLiteral("panel"));
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(12, 8, 12, 8);
    layout->addWidget(new ZTLabel(QStringLiteral("Local files")));
    return frame;
}

} // namespace

QWidget* makeTwins(QWidget* parent)
{
    const QString widget = QStringLiteral("widget");
    const QString twin = QStringLiteral("declarative");
    auto* grid = new StateGrid(
        {widget, twin, widget + QStringLiteral(", disabled"), twin + QStringLiteral(", disabled")}, parent);
    for (const char* kind : {"", "accent", "flat"}) {
        const QString style = QString::fromLatin1(kind);
        addTwins(
            grid, style.isEmpty() ? QStringLiteral("ZTButton") : style,
            [&style] {
                auto* button = new PushButton(QStringLiteral("Rename"));
                if (!style.isEmpty())
                    button->setStyleClass(style);
                return button;
            },
            QStringLiteral("ZTButton { text: \"Rename\"; kind: \"%1\"").arg(style));
    }
    for (const bool isEmpty : {false, true}) {
        addTwins(
            grid, isEmpty ? QStringLiteral("empty") : QStringLiteral("ZTTextField"),
            [isEmpty] {
                auto* edit = new ZTEdit(isEmpty ? QString() : QStringLiteral("Walk-in"));
                edit->setPlaceholderText(QStringLiteral("Search"));
                edit->setFixedWidth(120);
                return edit;
            },
            QStringLiteral("ZTTextField { implicitWidth: 120; placeholderText: \"Search\"; text: \"%1\"")
                .arg(isEmpty ? QString() : QStringLiteral("Walk-in")));
    }
    for (const bool isChecked : {false, true}) {
        addTwins(
            grid, isChecked ? QStringLiteral("checked") : QStringLiteral("ZTCheckBox"),
            [isChecked] {
                auto* box = new ZTCheckBox(QStringLiteral("Auto save"));
                box->setChecked(isChecked);
                return box;
            },
            QStringLiteral("ZTCheckBox { text: \"Auto save\"; checked: %1")
                .arg(isChecked ? QStringLiteral("true") : QStringLiteral("false")));
    }
    addTwins(
        grid, QStringLiteral("ZTLabel"), [] { return new ZTLabel(QStringLiteral("Opening 00:01:02.480")); },
        QStringLiteral(
            "ZTLabel { text: \"Opening 00:01:02.480\"; color: enabled ? Theme.text : Theme.disabled"));
    grid->addRow(
        QStringLiteral("ZTFrame"),
        {makeFrameTwin(), declarative(QStringLiteral(
                              "ZTFrame { implicitWidth: label.implicitWidth + 24; implicitHeight: "
                              "label.implicitHeight + 16; ZTLabel { id: label; anchors.centerIn: parent; "
                              "text: \"Local files\" } }"))});
    return grid;
}

} // namespace vantrel::gallery
