#include "common/session/link/connectionhandler.h"

#include "common/session/link/previewthread.h"
#include "common/session/session.h"
#include "tarn/net/jsonclient.h"
#include "tarn/net/network.h"

#include <QElapsedTimer>

#include <chrono>
#include <utility>

namespace vantrel {

namespace {
constexpr unsigned int connectTimeout = 30000; // milliseconds
constexpr unsigned int passOnTimeout = 5000;   // of an address that is not the host's last
constexpr int reconnectTime = 2000;            // milliseconds
constexpr int errorRefused = 111;
// An attempt that fails at once is not repeated at once: a host without a route would else keep a core busy
// and flood the main thread with signals.
constexpr std::chrono::milliseconds repeatPause{250};
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

ConnectionHandler::~ConnectionHandler()
{
    m_end.see();
}

/// The one place where the state changes; under the lock.
void ConnectionHandler::enter(State state, const QString& host)
{
    m_state = state;
    m_host = host;
    if (state == State::Connected)
        ++m_linkCount;
    m_condition.notify_all();
}

/// Where a host of the operator's leads to; under the lock.
ConnectionHandler::State ConnectionHandler::stateForHost(const QString& host) const
{
    if (isLinked(m_state))
        return State::Changing;
    const bool isLost = m_state == State::Pausing || m_state == State::Retrying;
    return isLost && host == m_home ? State::Retrying : State::Connecting;
}

qint64 ConnectionHandler::now()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

/// Of this handler's own session: once it is to end, the one there is may be the next one's.
PreviewThread* ConnectionHandler::previewThread() const
{
    Session* session = isInterruptionRequested() ? nullptr : Session::instance();
    return session ? session->preview() : nullptr;
}

void ConnectionHandler::connect(const QString& host)
{
    const QMutexLocker lock(&m_mutex);
    if (isLinked(m_state) || (!m_host.isEmpty() && m_host != host))
        m_client->disconnect(); // also an attempt that nobody waits for any more
    m_toldHost.clear();
    enter(stateForHost(host), host);
}

void ConnectionHandler::goBack()
{
    QMutexLocker lock(&m_mutex);
    if (m_state == State::Pausing || m_state == State::Retrying)
        return; // that is where it is going already
    const bool isAttempt = m_state == State::Connecting || m_state == State::Changing;
    if (!isAttempt || !isHomeElsewhere()) {
        lock.unlock();
        return disconnect();
    }
    m_client->disconnect();
    enter(State::Retrying, m_home);
}

void ConnectionHandler::disconnect()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_home.clear();
        enter(State::Idle, QString());
        m_client->disconnect();
    }
    Q_EMIT connectionAddr(QString());
    if (PreviewThread* preview = previewThread())
        preview->unsubscribe();
    // The thread's signals of before may be on their way still, and say that it tries again.
    QMetaObject::invokeMethod(
        this, [this] { confirmDisconnect(m_heardAddress.isEmpty()); }, Qt::QueuedConnection);
}

void ConnectionHandler::confirmDisconnect(bool isKnown)
{
    QMutexLocker lock(&m_mutex);
    const bool isIdle = m_state == State::Idle;
    lock.unlock();
    if (isIdle && !isKnown)
        Q_EMIT connectionAddr(QString());
}

void ConnectionHandler::startReconnect(int milliseconds)
{
    m_reconnectTimer.start(milliseconds);
}

void ConnectionHandler::handleReconnectTimeout()
{
    m_reconnectTimer.stop();
    const QMutexLocker lock(&m_mutex);
    // A host set meanwhile is the operator's choice and goes before the retry.
    if (m_state == State::Pausing)
        enter(State::Retrying, m_host);
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
    return isLinked(m_state) ? m_host : QString();
}

boost::asio::ip::address ConnectionHandler::getConnectedAddress() const
{
    const QMutexLocker lock(&m_mutex);
    return isLinked(m_state) ? m_address : boost::asio::ip::address();
}

bool ConnectionHandler::shutDown(int milliseconds)
{
    requestInterruption();
    m_reconnectTimer.stop();
    QElapsedTimer clock;
    clock.start();
    if (!m_mutex.tryLock(milliseconds))
        return false;
    enter(State::Idle, QString());
    m_client->disconnect();
    m_mutex.unlock();
    return wait(QDeadlineTimer(std::max<qint64>(0, milliseconds - clock.elapsed())));
}

void ConnectionHandler::onClientDataStatic(JsonClient*, void* user)
{
    static_cast<ConnectionHandler*>(user)->onClientData();
}

void ConnectionHandler::onClientData()
{
    m_lastWord = now();
    Q_EMIT patchAvailable();
}

void ConnectionHandler::run()
{
    const ThreadEnd::Work work(m_end);
    while (!isInterruptionRequested()) {
        Attempt attempt;
        if (!prepare(attempt))
            continue;
        int error = 0;
        if (!openLink(attempt, error))
            handleFailure(attempt, error);
        else if (settle(attempt))
            followLink();
    }
}

/// Waits for a host and resolves it; false when there is nothing to connect to yet.
bool ConnectionHandler::prepare(Attempt& attempt)
{
    QMutexLocker lock(&m_mutex);
    if (isInterruptionRequested())
        return false;
    if (m_host.isEmpty() || m_state == State::Pausing) {
        m_condition.wait(m_mutex);
        return false;
    }
    attempt.stateBefore = m_state;
    attempt.host = m_host;
    // Without the lock: a slow name server must not hold up the main thread's connect() and disconnect().
    lock.unlock();
    attempt.addresses = m_network->resolveAll(attempt.host.toStdString());
    lock.relock();
    if (m_host != attempt.host)
        return false;
    if (attempt.addresses.empty()) {
        fail(lock, tr("There is no server of that name on the network."));
        return false;
    }
    const bool isAnnounced = m_state == State::Connecting;
    lock.unlock();
    if (isAnnounced)
        Q_EMIT connecting(attempt.host);
    return true;
}

/// The host is not to be had: a lost one is tried again later, another is given up for it. Leaves the lock.
void ConnectionHandler::fail(QMutexLocker<QMutex>& lock, const QString& reason)
{
    const QString host = m_host;
    const bool isRetry = m_state == State::Retrying;
    const QString next = isRetry ? host : isHomeElsewhere() ? m_home : QString();
    enter(next.isEmpty() ? State::Idle : State::Pausing, next);
    lock.unlock();
    if (isRetry)
        return tellPause(host);
    if (PreviewThread* preview = previewThread())
        preview->unsubscribe(); // of the server before
    Q_EMIT disconnected(host);
    Q_EMIT attemptFailed(host, reason, next);
    if (!next.isEmpty())
        tellPause(next);
}

/// Whether nobody has chosen another host, or given up, since it began.
bool ConnectionHandler::isWanted(const Attempt& attempt) const
{
    const QMutexLocker lock(&m_mutex);
    return !isInterruptionRequested() && m_host == attempt.host;
}

/// Tries the addresses of the host in turn: a server need not be at all of them. May take the whole
/// time-out.
bool ConnectionHandler::openLink(Attempt& attempt, int& error)
{
    // The failures of a retry loop would fill the log.
    const bool quiet = attempt.stateBefore == State::Retrying;
    if (quiet)
        m_client->setVerbose(false);
    bool success = false;
    bool isRefused = false;
    for (const auto& address : attempt.addresses) {
        attempt.address = address;
        const bool isLast = &address == &attempt.addresses.back();
        success = m_client->connect(address, m_linkPort, isLast ? connectTimeout : passOnTimeout, &error);
        if (success || !isWanted(attempt))
            break;
        isRefused = isRefused || error == errorRefused;
    }
    if (!success && isRefused)
        error = errorRefused; // of all that went wrong this tells most
    if (quiet)
        m_client->setVerbose(true);
    return success;
}

void ConnectionHandler::handleFailure(const Attempt& attempt, int error)
{
    QMutexLocker lock(&m_mutex);
    if (isInterruptionRequested() || m_host != attempt.host)
        return;
    const QString reason = error == errorRefused
                               ? tr("The machine answers, but no Halcyra server runs on it.")
                               : tr("It does not answer. Is it switched on, and on this network?");
    if (m_state == State::Retrying || error == errorRefused || isHomeElsewhere())
        return fail(lock, reason);
    if (std::exchange(m_toldHost, attempt.host) != attempt.host) {
        lock.unlock();
        Q_EMIT attemptFailed(attempt.host, reason, attempt.host);
        lock.relock();
        if (isInterruptionRequested() || m_host != attempt.host)
            return;
    }
    m_condition.wait_for(m_mutex, repeatPause);
}

/// Takes the link that has been made; false when nobody wants it any more.
bool ConnectionHandler::settle(const Attempt& attempt)
{
    {
        const QMutexLocker lock(&m_mutex);
        if (isInterruptionRequested())
            return false;
        if (m_host != attempt.host) {
            // The operator left, or chose another host, while this attempt was under way.
            m_client->disconnect();
            return false;
        }
        m_home = attempt.host;
        m_address = attempt.address;
        m_linkSince = now();
        enter(State::Connected, attempt.host);
    }
    Q_EMIT connectionAddr(attempt.host);
    Q_EMIT connected();
    if (PreviewThread* preview = previewThread())
        preview->subscribe(attempt.address);
    giveWay();
    return true;
}

void ConnectionHandler::followLink()
{
    m_client->sendPatch(PatchOp::get(""));
    m_client->run();
    QMutexLocker lock(&m_mutex);
    if (isInterruptionRequested())
        return;
    const QString host = m_host;
    const bool isLost = m_state == State::Connected; // and not given up by the operator
    if (isLost)
        enter(State::Pausing, host);
    lock.unlock();
    Q_EMIT disconnected(host);
    if (isLost)
        tellPause(host);
}

void ConnectionHandler::tellPause(const QString& host)
{
    Q_EMIT connectionAddr(host);
    Q_EMIT reconnecting(reconnectTime);
    giveWay();
}

/// A disconnect that came while the thread was telling of something else has the last word.
void ConnectionHandler::giveWay()
{
    QMutexLocker lock(&m_mutex);
    const State state = m_state;
    lock.unlock();
    if (state == State::Idle || state == State::Connecting) {
        if (PreviewThread* preview = previewThread())
            preview->unsubscribe();
    }
    if (state == State::Idle) // what was told goes to each listener by itself: some may have heard it last
        QMetaObject::invokeMethod(
            this, [this] { confirmDisconnect(false); }, Qt::QueuedConnection);
}

} // namespace vantrel
