#pragma once

#include "tarn/ref.h"

#include <QMutex>
#include <QString>
#include <QThread>
#include <QTimer>
#include <boost/asio/ip/address.hpp>

#include <atomic>
#include <condition_variable>
#include <memory>

namespace vantrel {

class JsonClient;
class Network;
class Patch;
struct PatchOp;

enum class ConnectionState {
    Idle = 0,
    Reconnecting = 1,
    // 2 is kept free
    Connected = 3,
};

/// The thread that keeps the scene link to one server: it waits for a host, connects, asks for the whole
/// scene, blocks in the client's read loop until the link ends, and decides whether to try again. The object
/// and its timer live on the main thread; the session owns it.
class ConnectionHandler : public QThread
{
    Q_OBJECT

public:
    /// linkPort: the TCP port of the server's scene link.
    explicit ConnectionHandler(quint16 linkPort, QObject* parent = nullptr);
    /// The thread must have ended: see shutDown().
    ~ConnectionHandler() override;

    /// Makes this the host to connect to, and gives up the present link if there is one. Any thread.
    void connect(const QString& host);
    using QObject::connect; // hidden otherwise by the operation above
    /// The connected host; empty unless the link stands. Main thread.
    QString getConnectedHost() const;
    /// The connected address; unspecified unless the link stands. Main thread.
    boost::asio::ip::address getConnectedAddress() const;

    /// The links made so far; the patches to be taken are those of the last one. Any thread.
    int linkCount() const { return m_linkCount; }

    /// Straight to the link; dropped where there is none.
    void sendPatch(const Patch& patch);
    void sendPatch(const PatchOp& op);
    bool recvPatch(Patch& patch);

    /// Ends link and thread; false when the thread did not end within that time (a name look-up cannot be
    /// interrupted) and the object must therefore be left standing.
    bool shutDown(int milliseconds);

public Q_SLOTS:
    /// The operator's way out of a link or of the reconnect loop. Any thread.
    void disconnect();
    void startReconnect(int milliseconds);
    void handleReconnectTimeout();

Q_SIGNALS:
    void connectionAddr(QString addr);
    void connecting(QString addr);
    void reconnecting(int msSeconds);
    void connected();
    void disconnected(QString addr);
    void patchAvailable();

protected:
    void run() override;

private:
    /// On the main thread, after a disconnect and all that was under way then: says so again, if need be.
    void confirmDisconnect();
    struct Attempt
    {
        QString host;
        boost::asio::ip::address address;
        ConnectionState stateBefore = ConnectionState::Idle;
    };
    static void onClientDataStatic(JsonClient* client, void* user);
    void onClientData();
    bool prepare(Attempt& attempt);
    bool openLink(const Attempt& attempt, int& error);
    bool settle(const Attempt& attempt, bool success, int error);
    void handleFailure(const Attempt& attempt, int error);
    void handleUnresolved();
    void followLink(const Attempt& attempt);
    void reconnectStep(const QString& host);

    mutable QMutex m_mutex;                  // guards every field below
    std::condition_variable_any m_condition; // which, unlike Qt's own, the thread sanitizer can follow
    QString m_host;
    QString m_reconnectHost;
    boost::asio::ip::address m_address;
    Ref<Network> m_network;
    std::shared_ptr<JsonClient> m_client;
    int m_reconnectTime = 2000; // milliseconds
    bool m_autoReconnect = true;
    ConnectionState m_state = ConnectionState::Idle;
    QTimer m_reconnectTimer;
    QString m_heardAddress; // on the main thread: of the last connectionAddr
    std::atomic<int> m_linkCount{0};
    const quint16 m_linkPort;
};

} // namespace vantrel
