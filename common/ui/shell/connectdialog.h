#pragma once

#include "common/ui/toolkit/ztdialog.h"

class QModelIndex;
class QProgressBar;
class QStackedWidget;
class QTableView;

namespace vantrel {

class LocatorModel;
class ZTEdit;

/// Lets the operator choose the server, and shows how the attempt goes: three faces on one layout. Owned by
/// the main window, which wires its signals to the link.
class ConnectDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit ConnectDialog(QWidget* parent = nullptr);
    ~ConnectDialog() override;

    /// The port of the link that an address is connected to.
    void setLinkPort(quint16 port);
    void setConnectDialog();
    void setConnectingDialog(const QString& host);
    void setDisconnectionDialog(const QString& host);
    void showConnectDialog();
    void showConnectingDialog(const QString& host);
    /// Says why the host is not to be had and what is tried from now on: another one, the same, or nothing.
    void showFailure(const QString& host, const QString& reason, const QString& next);

    /// With a valid address: keeps it as the configured host and asks for the connection.
    void doConnect();
    void validateAddress(const QString& text);
    bool isValidAddress(const QString& text) const;
    bool attemptInProgress() const { return m_attemptInProgress; }
    void setObjectNames(const QString& base) override;

public Q_SLOTS:
    void onConnected();
    /// host: the one that is tried or lost; empty after the operator's own disconnect.
    void onDisconnected(const QString& host);
    void reject() override;

Q_SIGNALS:
    /// The operator gives the attempt up.
    void stop();
    void connectRequested(const QString& host);
    void disconnectRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeForm();
    QWidget* makeMessage();
    void makeServers(QWidget* form);
    void chooseServer(const QModelIndex& index);
    void showServers();
    void setFace(const QString& title, const QString& accept, const QString& styleClass,
                 const std::function<void()>& action);
    void setAddress(const QString& host);
    void showMessage(const QString& text, bool busy);

    QStackedWidget* m_pages;
    ZTEdit* m_address = nullptr;
    QTableView* m_servers = nullptr;
    QStackedWidget* m_found = nullptr;
    LocatorModel* m_locator;
    ZTLabel* m_noServers = nullptr;
    ZTLabel* m_message = nullptr;
    QProgressBar* m_progress = nullptr;
    PushButton* m_disconnect;
    QMetaObject::Connection m_acceptAction;
    QString m_chosen; // address of the row that the address field was filled from
    int m_scrolled = 0;
    bool m_attemptInProgress = false;
    bool m_addressValid = false;
};

} // namespace vantrel
