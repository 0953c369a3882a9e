// The sections of the gallery that hold more than single controls.
#include "common/notification/notificationmanagerimpl.h"
#include "common/qml/notificationstyle.h"
#include "common/qml/quickdialog.h"
#include "common/ui/gallery/gallerysections.h"
#include "common/ui/gallery/pictureof.h"
#include "common/ui/gallery/stategrid.h"
#include "common/ui/shell/aboutdialog.h"
#include "common/ui/shell/configurationdialog.h"
#include "common/ui/shell/importshowdialog.h"
#include "common/ui/shell/notificationdialogwrapper.h"
#include "common/ui/shell/notificationpresenter.h"
#include "common/ui/shell/notificationstatusbar.h"
#include "common/ui/shell/reconnectdialog.h"
#include "common/ui/shell/statusbar.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/toolkit/accordion.h"
#include "common/ui/toolkit/clickablelayoutwidget.h"
#include "common/ui/toolkit/collapse.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/contextmenubutton.h"
#include "common/ui/toolkit/errordialog.h"
#include "common/ui/toolkit/navbutton.h"
#include "common/ui/toolkit/navigationbar.h"
#include "common/ui/toolkit/placeholderview.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/ui/toolkit/ztlabel.h"
#include "common/ui/toolkit/ztmenu.h"
#include "common/ui/toolkit/ztsplitter.h"

#include <QProgressBar>
#include <QStyleOptionButton>
#include <QVBoxLayout>

#include <array>

namespace vantrel::gallery {

namespace {

ZTLabel* makeFiller(const QString& text)
{
    auto* label = new ZTLabel(text);
    label->setContentsMargins(12, 8, 12, 8);
    return label;
}

ZTFrame* makeFrame(const QString& styleClass)
{
    auto* frame = new ZTFrame;
    frame->setProperty("class", styleClass);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(new ZTLabel(styleClass));
    return frame;
}

QWidget* makeSwitch(bool enabled)
{
    auto* select = new SwitchSelect;
    for (const char* text : {"Time", "NDF", "DF"})
        select->addItem(QString::fromLatin1(text), QString::fromLatin1(text));
    select->setValue(QStringLiteral("NDF"));
    select->setEnabled(enabled);
    return select;
}

QWidget* makeTabs()
{
    auto* bar = new NavigationBar;
    bar->addTab(0, new NavButton(QStringLiteral("Active"), {}, bar));
    auto* hover = new Frozen<NavButton, QStyleOptionButton>(QStringLiteral("Hover"), QString(), bar);
    hover->freeze(QStyle::State_MouseOver);
    bar->addTab(1, hover);
    auto* focus = new NavButton(QStringLiteral("Focus"), {}, bar);
    freezeButton(focus, State::Focus);
    bar->addTab(2, focus);
    bar->addTab(3, new NavButton(QStringLiteral("With icon"), QStringLiteral(":/icons/media.svg"), bar));
    bar->addTab(4, new NavButton(QStringLiteral("Disabled"), {}, bar));
    bar->setDisabled(4);
    bar->setActiveTab(0);
    return bar;
}

std::unique_ptr<QWidget> makeMenu()
{
    auto menu = std::make_unique<ZTMenu>();
    menu->addEntry(QStringLiteral("mc_play"), QStringLiteral("Play on preview"))->setShortcut(Qt::Key_Return);
    menu->addEntry(QStringLiteral("edit"), QStringLiteral("Rename"))->setShortcut(Qt::Key_F2);
    menu->addSeparator();
    QAction* chosen = menu->addAction(QStringLiteral("Fit"));
    chosen->setCheckable(true);
    chosen->setChecked(true);
    menu->addEntry(QStringLiteral("trash"), QStringLiteral("Clear slot"))->setEnabled(false);
    menu->setActiveAction(menu->actions().at(1));
    return menu;
}

} // namespace

QWidget* makeNotifications(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    constexpr std::array kinds{std::pair(Notification::InfoMessage, "A show was exported"),
                               std::pair(Notification::CheckedMessage, "The transfer is complete"),
                               std::pair(Notification::WarningMessage, "Decoding falls behind on program"),
                               std::pair(Notification::ErrorMessage, "The show could not be imported")};
    auto* all = new NotificationManagerImpl(grid);
    for (const auto& [type, title] : kinds) {
        auto* manager = new NotificationManagerImpl(grid);
        for (NotificationManagerImpl* each : {manager, all})
            each->addNotification(each->createNotification(type, QString::fromLatin1(title),
                                                           QStringLiteral("What there is to know more.")));
        auto* popup = new NotificationPresenter(grid);
        popup->setManager(manager);
        popup->setStay(std::chrono::hours(24));
        grid->addWide(NotificationStyle::name(type), popup);
    }
    auto* counts = new NotificationStatusBar;
    counts->setManager(all);
    grid->addWide(QStringLiteral("NotificationStatusBar"), counts);
    const auto picture = [grid](NotificationManager* manager) {
        const QuickDialog* dialog = NotificationDialogWrapper::load(manager);
        return new PictureOf(std::unique_ptr<QWidget>(dialog->widget()), grid);
    };
    grid->addWide(QStringLiteral("NotificationDialog"), picture(all));
    grid->addWide(QStringLiteral("nothing"), picture(new NotificationManagerImpl(grid)));
    return grid;
}

QWidget* makeShell(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    auto* connected = new StatusBar(nullptr, nullptr);
    connected->onConnected();
    grid->addWide(QStringLiteral("StatusBar"), connected);
    grid->addWide(QStringLiteral("disconnected"), new StatusBar(nullptr, nullptr));
    QList<QWidget*> areas;
    for (const char* state : {"", "hover", "pressed", "keyboardfocus"}) {
        auto* area = new ClickableLayoutWidget;
        auto* layout = new QVBoxLayout(area);
        layout->addWidget(new ZTLabel(*state ? QString::fromLatin1(state) : QStringLiteral("normal")));
        if (*state)
            setDynamicStyle(area, state, true);
        areas.append(area);
    }
    grid->addRow(QStringLiteral("ClickableLayoutWidget"), areas);
    auto* more = new ContextMenuButton;
    auto* focused = new ContextMenuButton;
    freezeButton(focused, State::Focus);
    auto* disabled = new ContextMenuButton;
    disabled->setEnabled(false);
    grid->addRow(QStringLiteral("ContextMenuButton"), {more, focused, disabled});
    auto* busy = new QProgressBar;
    busy->setRange(0, 0);
    auto* half = new QProgressBar;
    half->setValue(50);
    grid->addRow(QStringLiteral("Progress"), {half, busy});
    grid->addWide(
        QStringLiteral("PlaceholderView"),
        new PlaceholderView(QStringLiteral(":/icons/output.svg"), QStringLiteral("Nothing here yet.")));
    return grid;
}

QWidget* makeBars(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    grid->addWide(QStringLiteral("NavigationBar"), makeTabs());
    grid->addWide(QStringLiteral("SwitchSelect"), makeSwitch(true));
    grid->addWide(QStringLiteral("disabled"), makeSwitch(false));
    return grid;
}

QWidget* makePanels(QWidget* parent)
{
    auto* page = new QWidget(parent);
    auto* open = new Collapse(QStringLiteral("Collapse, open"), page);
    open->setContent(makeFiller(QStringLiteral("What it holds")));
    auto* folded = new Collapse(QStringLiteral("Collapse, folded"), page);
    folded->setContent(makeFiller(QStringLiteral("What it holds")));
    folded->setOpen(false);
    auto* accordion = new Accordion(page);
    accordion->addSection(QStringLiteral("Accordion, first"), makeFiller(QStringLiteral("One at a time")));
    accordion->addSection(QStringLiteral("Accordion, second"), makeFiller(QStringLiteral("One at a time")));
    auto* splitter = new ZTSplitter(Qt::Horizontal, page);
    splitter->addWidget(makeFrame(QStringLiteral("panel")));
    splitter->addWidget(makeFrame(QStringLiteral("panel2")));
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(12, 8, 12, 12);
    for (QWidget* widget : {static_cast<QWidget*>(open), static_cast<QWidget*>(folded),
                            static_cast<QWidget*>(accordion), static_cast<QWidget*>(splitter)})
        layout->addWidget(widget);
    return page;
}

QWidget* makeWindows(QWidget* parent)
{
    auto* page = new QWidget(parent);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(12, 8, 12, 12);
    layout->setSpacing(12);
    const auto add = [layout, page](std::unique_ptr<QWidget> window) {
        layout->addWidget(new PictureOf(std::move(window), page), 0, Qt::AlignLeft);
    };
    add(std::make_unique<ConfirmationDialog>(
        QStringLiteral("Remove playlist entry"),
        QStringLiteral("Are you sure you want to remove selected entry?"), QStringLiteral("REMOVE")));
    add(std::make_unique<ErrorDialog>(QStringLiteral("Export failed"),
                                      QStringLiteral("There is no room left on this disk.")));
    auto input = std::make_unique<TextInputDialog>(QStringLiteral("Renumber"), QStringLiteral("FROM:"),
                                                   QStringLiteral("RENUMBER"));
    input->addField(QStringLiteral("TO (START):"), QStringLiteral("5.1"));
    input->setValue(0, QStringLiteral("3,6,8-14"));
    add(std::move(input));
    add(std::make_unique<AboutDialog>());
    add(std::make_unique<ReconnectDialog>());
    add(std::make_unique<ImportShowDialog>());
    add(std::make_unique<ConfigurationDialog>());
    add(makeMenu());
    return page;
}

} // namespace vantrel::gallery
