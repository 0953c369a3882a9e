#include "common/ui/shell/mainwindow.h"

#include "common/media/address/showntext.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/outputs/outputstab.h"
#include "common/player/linkbanner.h"
#include "common/player/playerplaybackview.h"
#include "common/qml/qmlmanager.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/link/linkhealth.h"
#include "common/session/mirror/guimapping.h"
#include "common/session/mirror/guioutput.h"
#include "common/session/mirror/guishowconfiguration.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/mirror/servernotices.h"
#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/session/window/mainwindowhandle.h"
#include "common/ui/clicktest/clicktestserver.h"
#include "common/ui/inspect/inspectorwidget.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/keyboarddialog.h"
#include "common/ui/keyboard/keyboardfocus.h"
#include "common/ui/keyboard/pressguard.h"
#include "common/ui/shell/configurationdialog.h"
#include "common/ui/shell/connectdialog.h"
#include "common/ui/shell/developermenu.h"
#include "common/ui/shell/mainmenu.h"
#include "common/ui/shell/mainnavigationbar.h"
#include "common/ui/shell/notificationdialogwrapper.h"
#include "common/ui/shell/notificationpresenter.h"
#include "common/ui/shell/notificationstatusbar.h"
#include "common/ui/shell/onairquestions.h"
#include "common/ui/shell/showmanager.h"
#include "common/ui/shell/showshelf.h"
#include "common/ui/shell/statusbar.h"
#include "common/ui/shell/windowmemory.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/navbutton.h"
#include "common/ui/toolkit/stackedtabwidget.h"
#include "common/ui/toolkit/uncovered.h"
#include "common/ui/toolkit/uncoveredwatch.h"
#include "common/views/files/filesview.h"
#include "common/views/media/mediaview.h"
#include "common/views/mediapanelwidget.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QQuickWidget>
#include <QResizeEvent>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr QSize usualSize(1600, 1000);
constexpr QSize leastSize(960, 540);
constexpr int startDelay = 200;    // milliseconds until the window is up
constexpr int quietAttempt = 3000; // milliseconds of a first attempt that nobody needs to hear of
constexpr auto tabClickWheel = static_cast<Qt::FocusPolicy>(11);

enum Tab : int { Outputs = 0, FilesTab = 1, MediaTab = 2, PlayerTab = 3 };

} // namespace

MainWindow::MainWindow(Session* session, QWidget* parent)
    : QMainWindow(parent)
    , m_session(session)
    , m_central(new QWidget(this))
    , m_layout(new QVBoxLayout(m_central))
    , m_hotkeys(new Hotkeys(this))
{
    setMainWindowWidget(this);
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(QStringLiteral("Halcyra"));
    const QString keymapFault = m_hotkeys->loadKeymapFromConfiguration();
    session->setHotkeys(m_hotkeys);
    m_central->setObjectName(QStringLiteral("central"));
    m_navigationBar = new MainNavigationBar(m_hotkeys, m_central);
    m_navigationBar->setBanner(new LinkBanner(session, m_navigationBar));
    m_tabs = new StackedTabWidget(m_central);
    m_tabs->setObjectNames(QStringLiteral("MainTabs"));
    connect(m_navigationBar, &MainNavigationBar::tabSelected, m_tabs, &QStackedWidget::setCurrentIndex);
    m_notificationPresenter = new NotificationPresenter(this);
    m_questions = new OnAirQuestions(session, this);
    initStatusBar();
    initMainMenu();
    initHotkeys();
    initOutputView();
    initFileView();
    initMediaView();
    initPlayerView();
    layOut();
    m_navigationBar->setActiveTab(PlayerTab);
    setCentralWidget(m_central);
    initConnection();
    new ServerNotices(m_session->getScene(), NotificationManagerImpl::instance(), this);
    if (const Configuration* settings = configuration()) {
        connect(settings, &Configuration::optionChanged, this, [this](ConfigurationOption option) {
            if (option == TEXT_SIZE)
                repositionNotifications();
        });
    }
    m_uncovered = new UncoveredWatch(this);
    connect(m_uncovered, &UncoveredWatch::moved, this, [this] {
        if (m_notificationPresenter->isVisible())
            repositionNotifications();
    });
    m_notificationPresenter->installEventFilter(this);
    tellOfKeys(keymapFault);
    setFocus();
    setFocusPolicy(tabClickWheel);
    raise();
    m_developerMenu = new DeveloperMenu(this);
    new PressGuard(m_hotkeys, this);
    new KeyboardFocus(this);
    // What it holds must not make it grow, with larger text say: the operator's size stands.
    m_central->setMinimumSize(1, 1);
    setMinimumSize(leastSize.boundedTo(screen()->availableSize()));
    m_memory = new WindowMemory(this, usualSize);
    m_navigationBar->setActiveTab(m_memory->tab(PlayerTab));
    connect(m_navigationBar, &MainNavigationBar::tabSelected, m_memory, &WindowMemory::keepTab);
    connect(m_navigationBar, &MainNavigationBar::tabSelected, this, &MainWindow::repositionNotifications);
}

MainWindow::~MainWindow()
{
    delete m_inspector;
    for (const QPointer<QWidget>& view : std::as_const(m_views))
        delete view;
    for (QObject* declared :
         std::initializer_list<QObject*>{m_notificationPresenter, m_notificationCounts, m_notificationDialog})
        delete declared;
    QMLManager::instance()->deinitialize();
    if (m_session->hotkeys() == m_hotkeys)
        m_session->setHotkeys(nullptr);
    setMainWindowWidget(nullptr);
}

void MainWindow::layOut()
{
    m_layout->setContentsMargins(spacing::tight, 0, spacing::tight, 0);
    m_layout->setSpacing(0);
    m_layout->addWidget(m_navigationBar);
    m_layout->addSpacing(spacing::tight);
    m_layout->addWidget(m_tabs, 1);
    m_layout->addSpacing(spacing::normal);
    m_layout->addWidget(m_statusBar);
    m_layout->addSpacing(spacing::tight);
}

void MainWindow::tellOfKeys(const QString& fault)
{
    if (fault.isEmpty())
        return;
    NotificationManagerImpl::instance()->createNotification(
        Notification::WarningMessage, tr("The keys are those of a new installation"),
        fault.toHtmlEscaped() + u'\n' + tr("Choose yours anew in the main menu under Keyboard."));
}

void MainWindow::initStatusBar()
{
    m_statusBar = new StatusBar(m_session->systemProxy(), m_session->connectionProvider(), m_central);
    connect(m_statusBar, &StatusBar::connectClicked, this, &MainWindow::handleConnectRequest);
    connect(m_statusBar, &StatusBar::disconnectClicked, this, &MainWindow::handleDisconnectRequest);

    m_notificationDialog = new NotificationDialogWrapper(NotificationManagerImpl::instance(), this);
    m_notificationCounts = new NotificationStatusBar(m_statusBar);
    m_notificationCounts->setManager(NotificationManagerImpl::instance());
    m_notificationCounts->setDialog(m_notificationDialog);
    m_statusBar->addWidget(m_notificationCounts);
    m_notificationPresenter->setDialog(m_notificationDialog);
}

void MainWindow::initMainMenu()
{
    m_mainMenu = new MainMenu(m_session->getScene(), m_session->getQUndoStack(), this);
    auto* button = new IconButton(QStringLiteral(":/icons/hamburger.svg"), {}, m_navigationBar);
    button->setObjectName(QStringLiteral("MainNavigationBar-mainmenu-button"));
    button->setToolTip(tr("Main menu"));
    button->setAccessibleName(tr("Main menu"));
    sizeNavButton(button);
    m_navigationBar->addMainMenu(button);
    connect(button, &IconButton::clicked, m_mainMenu, [this] { m_mainMenu->popup(QCursor::pos()); });
    connect(m_mainMenu, &MainMenu::connectClicked, this, &MainWindow::handleConnectRequest);
    connect(m_mainMenu, &MainMenu::disconnectClicked, this, &MainWindow::handleDisconnectRequest);
    connect(m_mainMenu, &MainMenu::rebootClicked, this,
            [this] { m_questions->beforeReboot([this] { m_mainMenu->rebootServer(); }); });
    connect(m_mainMenu, &MainMenu::notificationsClicked, m_notificationDialog,
            &NotificationDialogWrapper::show);
    connect(m_mainMenu, &MainMenu::configurationClicked, this, &MainWindow::openConfigurationDialog);
    connect(m_mainMenu, &MainMenu::keyboardClicked, this, &MainWindow::openKeyboardDialog);
    initShows();
    m_configurationDialog = new ConfigurationDialog(this);
    m_configurationDialog->setModel(m_session->serverConfigurationModel());
}

void MainWindow::initShows()
{
    auto* shows = new ShowManager(m_session, this);
    connect(m_mainMenu, &MainMenu::clearShowClicked, shows, &ShowManager::handleClearShow);
    connect(m_mainMenu, &MainMenu::revertShowClicked, shows, &ShowManager::handleRevertShow);
    connect(m_mainMenu, &MainMenu::saveShowClicked, shows, &ShowManager::saveShow);
    connect(m_mainMenu, &MainMenu::saveShowAsClicked, shows, &ShowManager::handleSaveAs);
    connect(m_mainMenu, &MainMenu::showsClicked, shows->shelf(), &ShowShelf::openShows);
    connect(m_mainMenu, &MainMenu::earlierStatesClicked, shows->shelf(), &ShowShelf::openEarlier);
    connect(m_mainMenu, &MainMenu::importShowClicked, shows, &ShowManager::handleImport);
    connect(m_mainMenu, &MainMenu::exportShowClicked, shows, &ShowManager::handleExport);
    const GUIShowConfiguration* on = m_session->sceneObjectProvider()->showConfiguration().get();
    connect(on, &GUIShowConfiguration::showNameChanged, this, &MainWindow::updateShow);
    connect(on, &GUIShowConfiguration::showModifiedChanged, this, &MainWindow::updateShow);
    connect(on, &GUIShowConfiguration::reset, this, &MainWindow::updateShow);
    const ConnectionHandler* handler = m_session->connectionHandler();
    connect(handler, &ConnectionHandler::connected, this, &MainWindow::updateShow);
    connect(handler, &ConnectionHandler::disconnected, this, &MainWindow::updateShow);
    updateShow();
}

/// In the title, where the desktop shows it too, and in the status bar.
void MainWindow::updateShow()
{
    const auto on = m_session->sceneObjectProvider()->showConfiguration();
    const QString name = m_session->isConnected() ? on->showName() : QString();
    const QString shown = shownText(name).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    setWindowTitle(name.isEmpty() ? QStringLiteral("Halcyra")
                                  : QStringLiteral("%1%2 - Halcyra")
                                        .arg(shown, on->showModified() ? QStringLiteral("*") : QString()));
    m_statusBar->setShow(name, on->showModified());
}

/// Of the output that program is shown on. What a server that is silent said last says nothing.
void MainWindow::updateScreen()
{
    const SceneObjectProvider* scene = m_session->sceneObjectProvider();
    const QString target = scene->programMapping()->target();
    ScreenHealth screen = scene->output1()->screen();
    if (scene->output2()->name() == target || (!screen.isThere() && scene->output1()->name() != target))
        screen = scene->output2()->screen();
    const bool isCurrent = m_session->linkHealth()->state() == LinkHealth::State::Current;
    m_statusBar->setScreen(isCurrent ? screen.summary() : QString(), screen.details(), screen.isWell());
}

void MainWindow::initHotkeys()
{
    for (auto it = m_mainMenu->showActions().cbegin(); it != m_mainMenu->showActions().cend(); ++it)
        m_hotkeys->addShortcut(it.key(), this, [action = it.value()] { action->trigger(); });
    const auto add = [this](const char* name, const std::function<void()>& run) {
        m_hotkeys->addShortcut(QLatin1String(name), this, run);
    };
    add("keyboard", [this] { openKeyboardDialog(); });
    add("fullscreen", [this] { m_memory->toggleFullScreen(); });
    add("zoom_in", [this] { stepTextSize(1); });
    add("zoom_out", [this] { stepTextSize(-1); });
}

void MainWindow::addView(int index, const QString& caption, const QString& icon, const QString& name,
                         QWidget* view)
{
    m_views.append(view);
    m_tabs->insertWidget(index, view);
    auto* button = new NavButton(QStringLiteral("  ") + caption, icon, m_navigationBar);
    button->setObjectName(name);
    button->setAccessibleName(caption);
    button->setOpensByDrag(true);
    m_navigationBar->addTab(index, button);
}

void MainWindow::initOutputView()
{
    const QString icon = QStringLiteral(":/icons/output.svg");
    addView(Outputs, tr("OUTPUTS"), icon, QStringLiteral("MainNavigationBar-outputs-button"),
            new OutputsTab(m_session, m_tabs));
}

void MainWindow::initFileView()
{
    const QString icon = QStringLiteral(":/icons/file.svg");
    FilesView::Sources sources;
    sources.session = m_session;
    sources.provider = m_session->fileSystemProvider();
    sources.operations = m_session->fileSystemOperations();
    addView(FilesTab, tr("FILES"), icon, QStringLiteral("MainNavigationBar-files-button"),
            new FilesView(sources, m_tabs));
}

void MainWindow::initMediaView()
{
    const QString icon = QStringLiteral(":/icons/media.svg");
    MediaView::Sources sources;
    sources.library = m_session->mediaLibraryModel();
    sources.provider = m_session->mediaLibraryProvider();
    sources.playlists = m_session->playlistProvider();
    sources.session = m_session;
    auto* view = new MediaView(sources, m_tabs);
    connect(view, &MediaView::connectRequested, this, &MainWindow::handleConnectRequest);
    addView(MediaTab, tr("MEDIA"), icon, QStringLiteral("MainNavigationBar-media-button"), view);
}

void MainWindow::initPlayerView()
{
    auto* view = new PlayerPlaybackView(m_session, m_tabs);
    view->setModel(m_session->objectTreeModel()->index(QStringLiteral("/device/channels")));
    view->mediaPanel()->setCollectionsEditable(true);
    connect(view->mediaPanel(), &MediaPanelWidget::collectionEditRequested, this,
            &MainWindow::handleCollectionEditRequested);
    // With large text two channels can need more width than the screen has.
    auto* area = new QScrollArea(m_tabs);
    area->setObjectName(QStringLiteral("PlayerTab-scroll-area"));
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    area->setWidget(view);
    addView(PlayerTab, tr("PLAYER"), QStringLiteral(":/icons/mc_play.svg"),
            QStringLiteral("MainNavigationBar-player-button"), area);
}

void MainWindow::handleCollectionEditRequested(int collection)
{
    auto* view = qobject_cast<MediaView*>(m_tabs->widget(MediaTab));
    if (!view) {
        qWarning("Failed to find media view page");
        return;
    }
    view->selectCollection(collection);
    m_navigationBar->setActiveTab(MediaTab);
}

void MainWindow::initConnection()
{
    ConnectionHandler* handler = m_session->connectionHandler();
    connect(handler, &ConnectionHandler::connecting, this, &MainWindow::onConnecting);
    connect(handler, &ConnectionHandler::connected, this, &MainWindow::onConnected);
    connect(handler, &ConnectionHandler::disconnected, this, &MainWindow::onDisconnected);
    connect(handler, &ConnectionHandler::attemptFailed, this, &MainWindow::onAttemptFailed);
    const LinkHealth* health = m_session->linkHealth();
    connect(health, &LinkHealth::changed, m_statusBar, [this, health] {
        m_statusBar->setSilence(health->state() == LinkHealth::State::Silent ? health->text() : QString());
        updateScreen();
    });
    const SceneObjectProvider* scene = m_session->sceneObjectProvider();
    for (const GUIOutput* output : {scene->output1().get(), scene->output2().get()})
        connect(output, &GUIOutput::screenChanged, this, &MainWindow::updateScreen);
    connect(scene->programMapping().get(), &GUIMapping::targetChanged, this, &MainWindow::updateScreen);
    connect(handler, &ConnectionHandler::connected, m_mainMenu, &MainMenu::handleConnected);
    connect(handler, &ConnectionHandler::disconnected, m_mainMenu, &MainMenu::handleDisconnected);
    connect(handler, &ConnectionHandler::connected, m_statusBar, &StatusBar::onConnected);
    connect(handler, &ConnectionHandler::disconnected, m_statusBar, &StatusBar::onDisconnected);
    connect(handler, &ConnectionHandler::reconnecting, m_statusBar, &StatusBar::onReconnecting);
    connect(handler, &ConnectionHandler::connected, m_configurationDialog, &ConfigurationDialog::onConnected);
    connect(handler, &ConnectionHandler::disconnected, m_configurationDialog,
            &ConfigurationDialog::onDisconnected);
}

void MainWindow::autoConnect(const QString& host)
{
    QTimer::singleShot(startDelay, this, [this, host] { m_session->connectionHandler()->connect(host); });
    // One that does not even refuse is not waited for without a word.
    QTimer::singleShot(startDelay + quietAttempt, this, [this] {
        onceNoDialogIsOpen([this] {
            if (!m_attemptedHost.isEmpty())
                connectDialog()->showConnectingDialog(m_attemptedHost);
        });
    });
}

void MainWindow::showConnectDialog()
{
    QTimer::singleShot(startDelay, this, &MainWindow::showConnectDialogImmediate);
}

/// Made on first use.
ConnectDialog* MainWindow::connectDialog()
{
    if (!m_connectDialog) {
        m_connectDialog = new ConnectDialog(this);
        m_connectDialog->setLinkPort(m_session->ports().link);
        connect(m_connectDialog, &ConnectDialog::stop, m_session->connectionHandler(),
                &ConnectionHandler::goBack);
        connect(m_connectDialog, &ConnectDialog::disconnectRequested, this,
                &MainWindow::handleDisconnectRequest);
        ConnectionHandler* handler = m_session->connectionHandler();
        connect(m_connectDialog, &ConnectDialog::connectRequested, handler,
                [handler](const QString& host) { handler->connect(host); });
        connect(handler, &ConnectionHandler::connected, m_connectDialog, &ConnectDialog::onConnected);
        if (m_session->isConnected())
            m_connectDialog->onConnected();
    }
    return m_connectDialog;
}

void MainWindow::showConnectDialogImmediate()
{
    connectDialog()->showConnectDialog();
    m_connectDialog->activateWindow();
}

quint16 MainWindow::startClickTestServer(quint16 port)
{
    if (!m_clickTestServer)
        m_clickTestServer = new ClickTestServer(this, port);
    return m_clickTestServer->port();
}

void MainWindow::repositionNotifications()
{
    m_notificationPresenter->setMostWidth(std::max(240, width() / 2));
    m_notificationPresenter->move(
        uncoveredPlace(*this, m_notificationPresenter->size(), height() - m_statusBar->height()));
    if (m_notificationPresenter->isVisible())
        m_uncovered->follow();
}

void MainWindow::handleConnectRequest()
{
    showConnectDialogImmediate();
}

void MainWindow::handleDisconnectRequest()
{
    m_questions->beforeDisconnect([this] { m_session->connectionHandler()->disconnect(); });
}

void MainWindow::onConnecting(const QString& address)
{
    m_attemptedHost = address;
    if (m_connectDialog)
        m_connectDialog->setConnectingDialog(address);
}

void MainWindow::onConnected()
{
    m_attemptedHost.clear();
    if (m_connectDialog)
        m_connectDialog->hide();
}

void MainWindow::onDisconnected(const QString& address)
{
    m_attemptedHost.clear();
    if (m_connectDialog)
        m_connectDialog->onDisconnected(address);
}

void MainWindow::onAttemptFailed(const QString& host, const QString& reason, const QString& next)
{
    onceNoDialogIsOpen([this, host, reason, next] {
        if (!m_session->isConnected())
            connectDialog()->showFailure(host, reason, next);
    });
}

/// One that is open would keep the mouse from any that comes beside it, and is not to vanish from under it.
void MainWindow::onceNoDialogIsOpen(const std::function<void()>& show)
{
    const auto* open = qobject_cast<const QDialog*>(QApplication::activeModalWidget());
    if (!open)
        return show();
    // When it is gone for good.
    const auto again = [this, show] { onceNoDialogIsOpen(show); };
    connect(open, &QDialog::finished, this, again,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

void MainWindow::openConfigurationDialog()
{
    m_configurationDialog->open();
}

void MainWindow::openKeyboardDialog()
{
    if (!m_keyboardDialog)
        m_keyboardDialog = new KeyboardDialog(m_hotkeys, this);
    m_keyboardDialog->open();
}

void MainWindow::stepTextSize(int step)
{
    const int size = static_cast<int>(currentFontSize()) + step;
    const bool isSize = size >= static_cast<int>(FontSize::Small) && size <= static_cast<int>(FontSize::Huge);
    if (Configuration* settings = configuration(); settings && isSize)
        settings->setValue(TEXT_SIZE, QVariant::fromValue(static_cast<FontSize>(size)));
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    // What lies below may have changed since it was shown last.
    if (watched == m_notificationPresenter &&
        (event->type() == QEvent::Resize || event->type() == QEvent::Show))
        repositionNotifications();
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    repositionNotifications();
}

void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F10)
        InspectorWidget::showNotifications(NotificationManagerImpl::instance());
    else if (event->key() == Qt::Key_F11)
        showInspector();
    else
        QMainWindow::keyPressEvent(event);
}

void MainWindow::showInspector()
{
    if (!m_inspector) {
        m_inspector = new InspectorWidget(m_developerMenu, NotificationManagerImpl::instance(), nullptr);
        qApp->installEventFilter(m_inspector);
        connect(m_inspector, &InspectorWidget::closed, m_inspector, &QObject::deleteLater);
    }
    m_inspector->show();
    m_inspector->raise();
}

void MainWindow::mousePressEvent(QMouseEvent* event)
{
    // A click on the background ends what is being typed, but leaves declarative views and file lists alone.
    QWidget* focused = QApplication::focusWidget();
    const bool keeps =
        qobject_cast<QQuickWidget*>(focused) || (focused && focused->property("fileview").toBool());
    if (focused && !keeps)
        focused->clearFocus();
    QMainWindow::mousePressEvent(event);
}

} // namespace vantrel
