#pragma once

#include "common/session/link/threadend.h"
#include "tarn/ref.h"

#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QThread>
#include <QTimer>
#include <boost/asio/ip/address.hpp>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <vector>

namespace vantrel {

class JsonClient;
class Network;
class Patch;
class PreviewThread;
struct PatchOp;

/// The thread that keeps the scene link to one server: it waits for a host, connects, asks for the whole
/// scene, blocks in the client's read loop until the link ends, and decides whether to try again. The object
/// and its timer live on the main thread; the session owns it.
///
/// It is in one of six states, which enter() alone changes. Signals are emitted once the lock is gone.
///   Idle        no host. A host leads to Connecting; disconnect() leads here from everywhere.
///   Connecting  first attempts. Repeated until it is Connected; a refusal or an unknown name ends it: Idle.
///   Connected   the link stands. Its end leads to Pausing, another host to Changing.
///   Changing    the link is given up for another host, which is tried as in Connecting but unannounced.
///   Pausing     the link was lost. The timer, or the lost host chosen again, leads to Retrying, another one
///               to Connecting.
///   Retrying    one attempt: Connected, or Pausing again.
/// The host of the last link stays the one to come back to until the operator disconnects: where another
/// cannot be had, it is tried again.
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

    /// When the server said something last, on the clock of now(); of whichever link. Any thread.
    qint64 lastWord() const { return m_lastWord; }
    /// When the last link was made.
    qint64 linkSince() const { return m_linkSince; }
    /// Milliseconds that only go up.
    static qint64 now();

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
    /// Gives up the attempt under way, for the host of the last link where there is one. Any thread.
    void goBack();
    void startReconnect(int milliseconds);
    void handleReconnectTimeout();

Q_SIGNALS:
    void connectionAddr(QString addr);
    void connecting(QString addr);
    void reconnecting(int msSeconds);
    void connected();
    void disconnected(QString addr);
    /// An attempt of the operator's came to nothing. reason: a sentence. next: the host that is tried from
    /// now on, empty when none is.
    void attemptFailed(QString host, QString reason, QString next);
    void patchAvailable();

protected:
    void run() override;

private:
    /// On the main thread, after a disconnect and all that was under way then: says so again, unless
    /// everybody knows it.
    void confirmDisconnect(bool isKnown);
    enum class State { Idle, Connecting, Connected, Changing, Pausing, Retrying };
    struct Attempt
    {
        QString host;
        std::vector<boost::asio::ip::address> addresses; // of the host
        boost::asio::ip::address address;                // the one that answered
        State stateBefore = State::Idle;
    };
    static bool isLinked(State state) { return state == State::Connected || state == State::Changing; }
    State stateForHost(const QString& host) const;
    void enter(State state, const QString& host);
    static void onClientDataStatic(JsonClient* client, void* user);
    void onClientData();
    bool prepare(Attempt& attempt);
    bool openLink(Attempt& attempt, int& error);
    bool isWanted(const Attempt& attempt) const;
    bool settle(const Attempt& attempt);
    void handleFailure(const Attempt& attempt, int error);
    void fail(QMutexLocker<QMutex>& lock, const QString& reason);
    bool isHomeElsewhere() const { return !m_home.isEmpty() && m_home != m_host; }
    void followLink();
    void tellPause(const QString& host);
    void giveWay();
    PreviewThread* previewThread() const;

    ThreadEnd m_end;
    mutable QMutex m_mutex;                  // guards the fields from m_state to m_address
    std::condition_variable_any m_condition; // which, unlike Qt's own, the thread sanitizer can follow
    State m_state = State::Idle;
    QString m_host;     // of the link, of the attempts or to be tried again; empty when Idle
    QString m_home;     // of the last link; empty when the operator left it
    QString m_toldHost; // whose failing attempts were told of
    boost::asio::ip::address m_address;
    Ref<Network> m_network; // this and the client lock by themselves
    std::shared_ptr<JsonClient> m_client;
    QTimer m_reconnectTimer; // on the main thread, as the next
    QString m_heardAddress;  // of the last connectionAddr
    std::atomic<int> m_linkCount{0};
    std::atomic<qint64> m_lastWord{0};
    std::atomic<qint64> m_linkSince{0};
    const quint16 m_linkPort;
};

} // namespace vantrel
