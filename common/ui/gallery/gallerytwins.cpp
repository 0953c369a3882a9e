#include "common/qml/quickview.h"
#include "common/ui/gallery/gallerysections.h"
#include "common/ui/gallery/pictureof.h"
#include "common/ui/gallery/stategrid.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztcheckbox.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztframe.h"
#include "common/ui/toolkit/ztlabel.h"
#include "common/ui/toolkit/ztmenu.h"
#include "common/ui/toolkit/ztsplitter.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QProgressBar>

namespace vantrel::gallery {

namespace {

/// The declarative ones of a file of the gallery's module, as large as they want to be.
QWidget* declared(const char* file)
{
    auto* view = new QuickView;
    view->setResizeMode(QQuickWidget::SizeViewToRootObject);
    view->setClearColor(colors::getColor(colors::Slate_grey_800));
    view->setSource(QUrl(QStringLiteral("qrc:/QmlModules/ZTGallery/%1.qml").arg(QLatin1String(file))));
    return view;
}

QWidget* inRow(const QList<QWidget*>& widgets)
{
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(16);
    for (QWidget* widget : widgets)
        layout->addWidget(widget, 0, Qt::AlignTop);
    return row;
}

PushButton* button(const char* text, const char* styleClass = "")
{
    auto* made = new PushButton(QString::fromLatin1(text));
    made->setStyleClass(QString::fromLatin1(styleClass));
    return made;
}

QWidget* makeButtonRow()
{
    auto* checked = button("Checked");
    checked->setCheckable(true);
    checked->setChecked(true);
    auto* disabled = button("Disabled");
    disabled->setEnabled(false);
    auto* off = button("Accent, disabled", "accent");
    off->setEnabled(false);
    return inRow(
        {button("Normal"), checked, disabled, button("Accent", "accent"), off, button("Flat", "flat")});
}

QWidget* makeFieldRow()
{
    auto* empty = new ZTEdit;
    empty->setPlaceholderText(QStringLiteral("Placeholder"));
    auto* disabled = new ZTEdit(QStringLiteral("Disabled"));
    disabled->setEnabled(false);
    const QList<QWidget*> fields{new ZTEdit(QStringLiteral("Text")), empty, disabled};
    for (QWidget* field : fields)
        field->setFixedWidth(200);
    return inRow(fields);
}

QWidget* makeCheckRow()
{
    auto* on = new ZTCheckBox(QStringLiteral("On"));
    on->setChecked(true);
    auto* disabled = new ZTCheckBox(QStringLiteral("Disabled"));
    disabled->setEnabled(false);
    return inRow({new ZTCheckBox(QStringLiteral("Off")), on, disabled});
}

QWidget* makeMenu()
{
    auto menu = std::make_unique<ZTMenu>();
    menu->addEntry(QStringLiteral("mc_play"), QStringLiteral("Play on preview"))->setShortcut(Qt::Key_Return);
    menu->addEntry(QStringLiteral("edit"), QStringLiteral("Rename"))->setShortcut(Qt::Key_F2);
    menu->addSeparator();
    menu->addEntry(QStringLiteral("trash"), QStringLiteral("Clear slot"))->setEnabled(false);
    return new PictureOf(std::move(menu));
}

QWidget* makeFrame()
{
    auto* frame = new ZTFrame;
    auto* layout = new QHBoxLayout(frame);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->addWidget(new ZTLabel(QStringLiteral("On a panel")));
    return frame;
}

QWidget* makeList()
{
    auto* list = new QListWidget;
    list->addItems({QStringLiteral("First"), QStringLiteral("Chosen"), QStringLiteral("Last")});
    list->setCurrentRow(1);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    followFontSize(list, [list](FontSize size) {
        list->setFixedSize(scaled(240, size), 3 * list->sizeHintForRow(0) + 2 * list->frameWidth());
    });
    return list;
}

QWidget* makeSplitter()
{
    auto* splitter = new ZTSplitter(Qt::Horizontal, nullptr);
    splitter->addWidget(new ZTFrame);
    splitter->addWidget(new ZTFrame);
    followFontSize(
        splitter, [splitter](FontSize size) { splitter->setFixedSize(scaled(320, size), scaled(64, size)); });
    return splitter;
}

QWidget* makeProgress()
{
    auto* bar = new QProgressBar;
    bar->setTextVisible(false);
    bar->setValue(40);
    followFontSize(bar, [bar](FontSize size) { bar->setFixedWidth(scaled(240, size)); });
    return bar;
}

} // namespace

QWidget* makeTwins(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    const auto pair = [grid](const char* widgetName, QWidget* widget, const char* name, const char* file) {
        grid->addWide(QString::fromLatin1(widgetName), widget);
        grid->addWide(QString::fromLatin1(name), declared(file));
    };
    pair("PushButton", makeButtonRow(), "ZTButton", "Buttons");
    pair("ZTEdit", makeFieldRow(), "ZTTextField", "Fields");
    pair("ZTCheckBox", makeCheckRow(), "ZTCheckBox, declared", "Checks");
    pair("ZTMenu", makeMenu(), "ZTMenu, declared", "Menu");
    grid->addWide(QStringLiteral("ZTPopup"), declared("Popup"));
    pair("ZTFrame", makeFrame(), "ZTFrame, declared", "Frame");
    pair("QListView", makeList(), "ZTList", "List");
    pair("ZTSplitter", makeSplitter(), "ZTSplitView", "Split");
    pair("QProgressBar", makeProgress(), "ZTProgress", "Progress");
    return grid;
}

} // namespace vantrel::gallery
