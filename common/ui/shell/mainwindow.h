#pragma once

#include <QMainWindow>
#include <QPointer>

#include <functional>

class QAction;
class QVBoxLayout;

namespace vantrel {

class ClickTestServer;
class ConfigurationDialog;
class ConnectDialog;
class DeveloperMenu;
class Hotkeys;
class InspectorWidget;
class KeyboardDialog;
class MainMenu;
class MainNavigationBar;
class NotificationDialogWrapper;
class NotificationPresenter;
class NotificationStatusBar;
class OnAirQuestions;
class PushButton;
class Session;
class StackedTabWidget;
class StatusBar;
class UncoveredWatch;
class WindowMemory;

/// The window of the application: the four views under their tabs, the menu, the status bar and the dialogs
/// of the connection. One a process, made after the session; the launcher owns it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// session: must outlive this.
    explicit MainWindow(Session* session, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Connects to the host in a moment, once the event loop runs.
    void autoConnect(const QString& host);
    /// Opens the connect dialog in a moment, once the event loop runs.
    void showConnectDialog();
    /// Lets a robot on this machine drive the window; port 0 picks a free one. The port in use, 0 on failure.
    quint16 startClickTestServer(quint16 port);
    void repositionNotifications();

    MainNavigationBar* navigationBar() const { return m_navigationBar; }
    ConnectDialog* connectDialog() const { return m_connectDialog; }

public Q_SLOTS:
    void showConnectDialogImmediate();
    void handleConnectRequest();
    /// Shows the collection in the MEDIA tab.
    void handleCollectionEditRequested(int collection);
    void handleDisconnectRequest();
    void onConnecting(const QString& address);
    void onConnected();
    void onDisconnected(const QString& address);
    void onAttemptFailed(const QString& host, const QString& reason, const QString& next);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void layOut();
    void tellOfKeys(const QString& fault);
    void initMainMenu();
    void initShows();
    void updateShow();
    void updateScreen();
    void initOutputView();
    void initFileView();
    void initMediaView();
    void initPlayerView();
    ConnectDialog* connectDialog();
    void initStatusBar();
    void initConnection();
    void addView(int index, const QString& caption, const QString& icon, const QString& name, QWidget* view);
    void initHotkeys();
    void openConfigurationDialog();
    void openKeyboardDialog();
    void stepTextSize(int step);
    void onceNoDialogIsOpen(const std::function<void()>& show);
    void showInspector();

    Session* m_session;
    QWidget* m_central;
    QVBoxLayout* m_layout;
    Hotkeys* m_hotkeys;
    MainNavigationBar* m_navigationBar = nullptr;
    StackedTabWidget* m_tabs = nullptr;
    MainMenu* m_mainMenu = nullptr;
    OnAirQuestions* m_questions = nullptr;
    QString m_attemptedHost; // while its first attempt is under way
    StatusBar* m_statusBar = nullptr;
    WindowMemory* m_memory = nullptr;
    NotificationPresenter* m_notificationPresenter = nullptr;
    UncoveredWatch* m_uncovered = nullptr;
    NotificationStatusBar* m_notificationCounts = nullptr;
    NotificationDialogWrapper* m_notificationDialog = nullptr;
    ConfigurationDialog* m_configurationDialog = nullptr;
    ConnectDialog* m_connectDialog = nullptr;
    KeyboardDialog* m_keyboardDialog = nullptr;
    DeveloperMenu* m_developerMenu = nullptr;
    QPointer<InspectorWidget> m_inspector;
    ClickTestServer* m_clickTestServer = nullptr;
    QList<QPointer<QWidget>> m_views;
};

} // namespace vantrel
