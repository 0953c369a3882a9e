#pragma once

#include <QWidget>

#include <memory>

class QHBoxLayout;

namespace vantrel {

class ClickableLayoutWidget;
class ConnectionProvider;
class ElidedLabel;
class IconButton;
class ReconnectDialog;
class StatusBarMenu;
class SystemProxy;
class ZTLabel;

/// The bottom line of the window: to which server the link stands, and at its right end the notifications. A
/// click on its left part opens the connection's dialog. Owned by the main window.
class StatusBar : public QWidget
{
    Q_OBJECT

public:
    /// The sources of the server's name, version and address; either may be null, and outlives this.
    StatusBar(const SystemProxy* system, const ConnectionProvider* connection, QWidget* parent = nullptr);

    /// Puts a widget at the right end.
    void addWidget(QWidget* widget);
    /// Null until the first loss of a link.
    ReconnectDialog* reconnectDialog() const { return m_reconnectDialog; }
    StatusBarMenu* menu() const { return m_menu; }

    /// What the lamp tells in amber while the link stands and the server says nothing; empty when it answers.
    void setSilence(const QString& text);
    /// The show that is on, and whether it differs from the saved one; an empty name shows none.
    void setShow(const QString& name, bool isModified);
    /// How the screen does that program is really shown on; an empty text shows nothing.
    void setScreen(const QString& text, const QString& details, bool isWell);

public Q_SLOTS:
    void updateData();
    void onConnected();
    void onDisconnected(const QString& address);
    void onReconnecting(int milliseconds);

Q_SIGNALS:
    void connectClicked();
    void disconnectClicked();

private:
    void makeLamp();
    QWidget* makeMenuButton();
    void onAddressChanged();
    void showConnected(bool connected);

    const SystemProxy* m_system;
    const ConnectionProvider* m_connection;
    QHBoxLayout* m_layout;
    ClickableLayoutWidget* m_area;
    IconButton* m_toggle;
    ZTLabel* m_label;
    ElidedLabel* m_name;
    ElidedLabel* m_address;
    ZTLabel* m_disconnected;
    ElidedLabel* m_show;
    ElidedLabel* m_screen;
    StatusBarMenu* m_menu;
    ReconnectDialog* m_reconnectDialog = nullptr;
};

} // namespace vantrel
