#include "common/session/link/connectionhandler.h"

#include "common/session/link/previewthread.h"
#include "common/session/session.h"
#include "tarn/net/jsonclient.h"
#include "tarn/net/network.h"

#include <QElapsedTimer>

#include <chrono>

namespace vantrel {

namespace {
constexpr unsigned int connectTimeout = 30000; // milliseconds
constexpr int errorRefused = 111;
// An attempt that fails at once is not repeated at once: a host without a route would else keep a core busy
// and flood the main thread with signals.
constexpr std::chrono::milliseconds repeatPause{250};

PreviewThread* previewThread()
{
    Session* session = Session::instance();
    return session ? session->preview() : nullptr;
}
} // namespace

ConnectionHandler::ConnectionHandler(quint16 linkPort, QObject* parent)
    : QThread(parent)
    , m_network(makeRef<Network>())
    , m_client(std::make_shared<JsonClient>())
    , m_linkPort(linkPort)
{
    setObjectName(QStringLiteral("connection"));
    m_client->setRecvCallback(&ConnectionHandler::onClientDataStatic, this);
    QObject::connect(&m_reconnectTimer, &QTimer::timeout, this, &ConnectionHandler::handleReconnectTimeout);
    QObject::connect(this, &ConnectionHandler::reconnecting, this, &ConnectionHandler::startReconnect);
    QObject::connect(this, &ConnectionHandler::connectionAddr, this,
                     [this](const QString& address) { m_heardAddress = address; });
}

ConnectionHandler::~ConnectionHandler() = default;

void ConnectionHandler::connect(const QString& host)
{
    const QMutexLocker lock(&m_mutex);
    if (m_state == ConnectionState::Connected) {
        m_autoReconnect = false;
        m_client->disconnect();
    }
    m_host = host;
    m_condition.notify_all();
}

void ConnectionHandler::disconnect()
{
    const QMutexLocker lock(&m_mutex);
    m_autoReconnect = false;
    m_host.clear();
    Q_EMIT connectionAddr(QString());
    m_client->disconnect();
    m_state = ConnectionState::Idle;
    m_condition.notify_all();
    if (PreviewThread* preview = previewThread())
        preview->unsubscribe();
    // The thread's signals of before may be on their way still, and say that it tries again.
    QMetaObject::invokeMethod(this, &ConnectionHandler::confirmDisconnect, Qt::QueuedConnection);
}

void ConnectionHandler::confirmDisconnect()
{
    QMutexLocker lock(&m_mutex);
    const bool isIdle = m_state == ConnectionState::Idle && m_host.isEmpty();
    lock.unlock();
    if (isIdle && !m_heardAddress.isEmpty())
        Q_EMIT connectionAddr(QString());
}

void ConnectionHandler::startReconnect(int milliseconds)
{
    m_reconnectTimer.start(milliseconds);
}

void ConnectionHandler::handleReconnectTimeout()
{
    m_reconnectTimer.stop();
    QString host;
    {
        const QMutexLocker lock(&m_mutex);
        // A host set meanwhile is the operator's choice and goes before the retry.
        if (m_state == ConnectionState::Reconnecting && m_host.isEmpty())
            host = m_reconnectHost;
    }
    if (!host.isEmpty())
        connect(host);
}

void ConnectionHandler::sendPatch(const Patch& patch)
{
    m_client->sendPatch(patch);
}

void ConnectionHandler::sendPatch(const PatchOp& op)
{
    m_client->sendPatch(op);
}

bool ConnectionHandler::recvPatch(Patch& patch)
{
    return m_client->recvPatch(patch);
}

QString ConnectionHandler::getConnectedHost() const
{
    const QMutexLocker lock(&m_mutex);
    return m_state == ConnectionState::Connected ? m_host : QString();
}

boost::asio::ip::address ConnectionHandler::getConnectedAddress() const
{
    const QMutexLocker lock(&m_mutex);
    return m_state == ConnectionState::Connected ? m_address : boost::asio::ip::address();
}

bool ConnectionHandler::shutDown(int milliseconds)
{
    requestInterruption();
    m_reconnectTimer.stop();
    QElapsedTimer clock;
    clock.start();
    if (!m_mutex.tryLock(milliseconds))
        return false;
    m_autoReconnect = false;
    m_host.clear();
    m_state = ConnectionState::Idle;
    m_client->disconnect();
    m_condition.notify_all();
    m_mutex.unlock();
    return wait(QDeadlineTimer(std::max<qint64>(0, milliseconds - clock.elapsed())));
}

void ConnectionHandler::onClientDataStatic(JsonClient*, void* user)
{
    static_cast<ConnectionHandler*>(user)->onClientData();
}

void ConnectionHandler::onClientData()
{
    Q_EMIT patchAvailable();
}

void ConnectionHandler::run()
{
    while (!isInterruptionRequested()) {
        Attempt attempt;
        if (!prepare(attempt))
            continue;
        int error = 0;
        const bool success = openLink(attempt, error);
        if (settle(attempt, success, error))
            followLink(attempt);
    }
}

/// Waits for a host and resolves it; false when there is nothing to connect to yet.
bool ConnectionHandler::prepare(Attempt& attempt)
{
    QMutexLocker lock(&m_mutex);
    if (isInterruptionRequested())
        return false;
    attempt.stateBefore = m_state;
    if (m_host.isEmpty()) {
        m_condition.wait(m_mutex);
        return false;
    }
    attempt.host = m_host;
    // Without the lock: a slow name server must not hold up the main thread's connect() and disconnect().
    lock.unlock();
    const bool resolved = m_network->resolve(attempt.host.toStdString(), attempt.address);
    lock.relock();
    if (m_host != attempt.host)
        return false;
    if (!resolved) {
        handleUnresolved();
        return false;
    }
    m_address = attempt.address;
    if (m_state == ConnectionState::Idle)
        Q_EMIT connecting(m_host);
    return true;
}

void ConnectionHandler::handleUnresolved()
{
    if (m_state == ConnectionState::Reconnecting) {
        reconnectStep(m_host);
        return;
    }
    m_address = boost::asio::ip::address();
    m_state = ConnectionState::Idle;
    Q_EMIT disconnected(std::exchange(m_host, QString()));
}

/// The one step that runs without the lock, since it may take the whole time-out.
bool ConnectionHandler::openLink(const Attempt& attempt, int& error)
{
    // The failures of a retry loop would fill the log.
    const bool quiet = attempt.stateBefore == ConnectionState::Reconnecting;
    if (quiet)
        m_client->setVerbose(false);
    const bool success = m_client->connect(attempt.address, m_linkPort, connectTimeout, &error);
    if (quiet)
        m_client->setVerbose(true);
    return success;
}

/// Draws the conclusions of an attempt; true when its link is to be followed.
bool ConnectionHandler::settle(const Attempt& attempt, bool success, int error)
{
    const QMutexLocker lock(&m_mutex);
    if (isInterruptionRequested())
        return false;
    if (!success) {
        handleFailure(attempt, error);
        return false;
    }
    if (m_host != attempt.host) {
        // The operator left, or chose another host, while this attempt was under way.
        m_client->disconnect();
        return false;
    }
    m_state = ConnectionState::Connected;
    m_autoReconnect = true;
    ++m_linkCount;
    Q_EMIT connectionAddr(m_host);
    Q_EMIT connected();
    if (PreviewThread* preview = previewThread())
        preview->subscribe(m_address);
    return true;
}

void ConnectionHandler::handleFailure(const Attempt& attempt, int error)
{
    if (m_host != attempt.host)
        return;
    if (m_state == ConnectionState::Reconnecting) {
        reconnectStep(m_host);
    } else if (error != errorRefused) {
        m_condition.wait_for(m_mutex, repeatPause);
    } else {
        m_state = ConnectionState::Idle;
        Q_EMIT disconnected(std::exchange(m_host, QString()));
    }
}

void ConnectionHandler::followLink(const Attempt& attempt)
{
    m_client->sendPatch(PatchOp::get(""));
    m_client->run();
    const QMutexLocker lock(&m_mutex);
    if (isInterruptionRequested())
        return;
    Q_EMIT disconnected(m_host);
    if (m_autoReconnect)
        reconnectStep(attempt.host);
}

void ConnectionHandler::reconnectStep(const QString& host)
{
    m_reconnectHost = host;
    m_state = ConnectionState::Reconnecting;
    m_host.clear();
    Q_EMIT connectionAddr(host);
    Q_EMIT reconnecting(m_reconnectTime);
}

} // namespace vantrel
