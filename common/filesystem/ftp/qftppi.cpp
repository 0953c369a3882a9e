// The lines of a command and the answers to them. How one is given up is in qftppi_abort.cpp.
#include "common/filesystem/ftp/qftppi.h"

#include "common/filesystem/ftp/ftplogging.h"
#include "tarn/ftp/ftpaddress.h"

#include <algorithm>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <utility>

namespace vantrel {

using namespace std::chrono_literals;

namespace {

constexpr auto defaultPatience = 20s;
constexpr auto closingPatience = 2s; // after the answer to QUIT
constexpr qint64 slowDisk = 20'000;  // bytes a millisecond, at which a server may read a file through

/// The answer to a line decides nothing about the next, so that both go out in one.
bool letsNextGo(const QString& line, const QString& next)
{
    const auto isOne = [](const QString& text, std::initializer_list<const char*> verbs) {
        return std::ranges::any_of(verbs,
                                   [&](const char* verb) { return text.startsWith(QLatin1String(verb)); });
    };
    if (isOne(line, {"PASV", "EPSV"}))
        return isOne(next, {"ALLO "});
    return isOne(line, {"SIZE ", "XCRC "}) && isOne(next, {"SIZE ", "XCRC ", "RNFR ", "PASV"});
}

/// Small lines go at once, and a pulled cable is noticed.
void setControlOptions(QTcpSocket& socket, std::chrono::milliseconds patience)
{
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    const auto set = [&](int option, int value) {
        ::setsockopt(int(socket.socketDescriptor()), IPPROTO_TCP, option, &value, sizeof(value));
    };
    set(TCP_KEEPIDLE, 5);
    set(TCP_KEEPINTVL, 2);
    set(TCP_KEEPCNT, 3);
    set(TCP_USER_TIMEOUT, int(patience.count()));
}

QHostAddress plain(const QHostAddress& address)
{
    bool isIpv4 = false;
    const quint32 number = address.toIPv4Address(&isIpv4);
    return isIpv4 ? QHostAddress(number) : address;
}

bool isIpv6(const QHostAddress& address)
{
    return plain(address).protocol() == QAbstractSocket::IPv6Protocol;
}

} // namespace

QFtpPI::QFtpPI(QObject* parent)
    : QObject(parent)
    , m_dtp(this)
    , m_patience(defaultPatience)
{
    m_commandSocket.setObjectName(QStringLiteral("QFtpPI_socket"));
    m_commandSocket.setReadBufferSize(qint64{FtpReplyReader::maxReply} / 2);
    connect(&m_commandSocket, &QTcpSocket::hostFound, this, &QFtpPI::hostFound);
    connect(&m_commandSocket, &QTcpSocket::connected, this, &QFtpPI::connected);
    connect(&m_commandSocket, &QTcpSocket::disconnected, this, &QFtpPI::connectionClosed);
    connect(&m_commandSocket, &QTcpSocket::readyRead, this, &QFtpPI::readyRead);
    connect(&m_commandSocket, &QTcpSocket::errorOccurred, this, &QFtpPI::socketError);
    connect(&m_dtp, &QFtpDTP::connectState, this, &QFtpPI::dtpConnectState);
    connect(&m_dtp, &QFtpDTP::moved, this, [this] {
        if (m_abortState == AbortState::None)
            watch();
    });
    connect(&m_dtp, &QFtpDTP::failed, this, [this] {
        const QString why = m_dtp.errorText();
        m_dtp.clearError();
        abort(why);
    });
    m_watch.setSingleShot(true);
    connect(&m_watch, &QTimer::timeout, this, &QFtpPI::losePatience);
    m_abortStep.setSingleShot(true);
    connect(&m_abortStep, &QTimer::timeout, this, &QFtpPI::stepAbort);
}

QFtpPI::~QFtpPI()
{
    m_commandSocket.disconnect(this);
}

void QFtpPI::connectToHost(const QString& host, quint16 port)
{
    m_isBusy = true;
    if (m_isOpen)
        return tellError(QFtp::UnknownError, tr("Already connected"));
    m_isOpen = true;
    m_state = Begin;
    m_reader.clear();
    m_type = {};
    Q_EMIT connectState(QFtp::HostLookup);
    watch();
    m_commandSocket.connectToHost(host, port, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
}

bool QFtpPI::isPeer(const QHostAddress& address) const
{
    return plain(address).isEqual(plain(m_commandSocket.peerAddress()), QHostAddress::TolerantConversion);
}

bool QFtpPI::isTransfer() const
{
    return m_currentCmd.startsWith(QLatin1String("RETR")) || m_currentCmd.startsWith(QLatin1String("STOR")) ||
           m_currentCmd.startsWith(QLatin1String("LIST"));
}

bool QFtpPI::sendCommands(const QStringList& lines)
{
    if (!m_pendingCommands.isEmpty())
        return false;
    m_isBusy = true;
    if (m_commandSocket.state() != QTcpSocket::ConnectedState || m_state != Idle) {
        tellError(QFtp::NotConnected, tr("Not connected"));
        return false;
    }
    m_pendingCommands = lines;
    startNextCmd();
    return true;
}

void QFtpPI::clearPendingCommands()
{
    m_pendingCommands.clear();
    m_unheard += std::exchange(m_ahead, 0);
    m_dtp.abortConnection();
    m_currentCmd.clear();
    m_waitForDtpToConnect = m_waitForDtpToClose = false;
    m_isBusy = m_isAsking = false;
    if (m_state != Begin)
        m_state = Idle;
    watch();
}

void QFtpPI::hostFound()
{
    Q_EMIT connectState(QFtp::Connecting);
}

void QFtpPI::connected()
{
    m_state = Begin;
    setControlOptions(m_commandSocket, m_patience);
    watch();
    Q_EMIT connectState(QFtp::Connected);
}

void QFtpPI::connectionClosed()
{
    drop(QFtp::NotConnected, tr("The server closed the connection"));
}

void QFtpPI::socketError(QAbstractSocket::SocketError error)
{
    if (error == QAbstractSocket::RemoteHostClosedError)
        return; // an ordinary end: what was said last is read before it is told
    // A server that is not there is an ordinary state, and asked for again and again.
    if (error == QAbstractSocket::ConnectionRefusedError)
        qCInfo(lcFtp) << "Network error occurred:" << error;
    else
        qCWarning(lcFtp) << "Network error occurred:" << error;
    const QString host = m_commandSocket.peerName();
    switch (error) {
    case QAbstractSocket::HostNotFoundError:
        return drop(QFtp::HostNotFound, tr("Host %1 not found").arg(host));
    case QAbstractSocket::ConnectionRefusedError:
        return drop(QFtp::ConnectionRefused, tr("Connection refused to host %1").arg(host));
    case QAbstractSocket::SocketTimeoutError:
        return drop(QFtp::ConnectionRefused, tr("Connection timed out to host %1").arg(host));
    case QAbstractSocket::NetworkError:
        return drop(QFtp::NotConnected, tr("Network error when connecting to host %1").arg(host));
    default:
        return drop(QFtp::NotConnected, m_commandSocket.errorString());
    }
}

void QFtpPI::drop(QFtp::Error error, const QString& text)
{
    if (!std::exchange(m_isOpen, false))
        return;
    m_watch.stop();
    m_abortStep.stop();
    m_commandSocket.abort();
    const QString why = m_abortState == AbortState::None ? text : m_abortReason;
    const bool isOwed = m_isBusy;
    m_abortState = AbortState::None;
    m_state = Begin;
    m_rawCommand = false;
    clearPendingCommands();
    m_unheard = 0;
    Q_EMIT connectState(QFtp::Unconnected);
    if (isOwed)
        tellError(error, why);
}

void QFtpPI::closeSoon()
{
    m_commandSocket.disconnectFromHost();
    if (m_isOpen)
        m_watch.start(std::min<std::chrono::milliseconds>(closingPatience, m_patience));
}

/// Armed as long as something is wanted of the server.
void QFtpPI::watch()
{
    const bool isWanted =
        m_isOpen && (m_state == Begin || m_state == Waiting || m_waitForDtpToConnect || m_waitForDtpToClose);
    if (!isWanted)
        return m_watch.stop();
    std::chrono::milliseconds patience = m_patience;
    if (m_currentCmd.startsWith(QLatin1String("XCRC ")))
        patience += std::chrono::milliseconds(m_dtp.bytesTotal() / slowDisk);
    m_watch.start(patience);
}

void QFtpPI::losePatience()
{
    if (!m_isBusy)
        return drop(QFtp::NotConnected, QString()); // after QUIT
    if (m_state == Begin && m_commandSocket.state() != QTcpSocket::ConnectedState)
        return drop(QFtp::ConnectionRefused,
                    tr("Connection timed out to host %1").arg(m_commandSocket.peerName()));
    const double seconds = double(m_patience.count()) / 1000;
    drop(QFtp::NotConnected, tr("The server did not answer for %1 seconds").arg(seconds));
}

void QFtpPI::tellFinished(const QString& text)
{
    m_isBusy = m_isAsking = false;
    Q_EMIT finished(text);
}

void QFtpPI::tellError(QFtp::Error code, const QString& text)
{
    m_isBusy = m_isAsking = false;
    Q_EMIT error(code, text);
}

// ------------------------------------------------------------------ answers

void QFtpPI::readyRead()
{
    while (m_isOpen && !m_waitForDtpToClose && m_commandSocket.bytesAvailable() > 0) {
        const QByteArray bytes = m_commandSocket.read(16 * 1024);
        if (!m_reader.feed({bytes.constData(), static_cast<std::size_t>(bytes.size())}))
            return drop(QFtp::UnknownError, tr("The server's answer is too long"));
        takeReplies();
    }
}

void QFtpPI::takeReplies()
{
    while (m_isOpen && !m_waitForDtpToClose && m_reader.take(m_reply)) {
        m_replyText = QString::fromStdString(m_reply.text);
        processReply();
    }
}

/// False when the answer is kept until the data connection has closed.
bool QFtpPI::processReply()
{
    const int code = m_reply.code;
    if (m_abortState != AbortState::None)
        return processAbortReply(code);
    if (m_unheard > 0) {
        m_unheard -= code / 100 == 1 ? 0 : 1;
        return true;
    }
    const bool endsTransfer = code == 226 || (code == 250 && m_currentCmd.startsWith(QLatin1String("RETR")));
    if (endsTransfer && m_state == Waiting && isTransfer()) {
        m_dtp.waitForConnection(); // which may be in the queue still
        if (m_dtp.state() != QTcpSocket::UnconnectedState) {
            m_waitForDtpToClose = true;
            watch();
            return false;
        }
    }
    if (m_state == Begin)
        return processGreeting(code);
    if (m_state != Waiting)
        return true; // nobody asked
    switch (code / 100) {
    case 1:
        m_hadPreliminary = true;
        break;
    case 2:
        m_state = code == 202 ? Failure : Success;
        break;
    case 3:
        m_state = Idle;
        break;
    default:
        m_state = Failure;
    }
    watch();
    if (m_currentCmd.startsWith(QLatin1String("TYPE ")))
        m_type = m_state == Success ? m_currentCmd.at(5) : QChar();
    Q_EMIT rawFtpReply(code, m_replyText);
    if (!m_rawCommand && !m_isAsking)
        actOnReply(code);
    else if (m_state != Waiting)
        m_rawCommand = false;
    if (m_isOpen)
        goOn();
    return true;
}

bool QFtpPI::processGreeting(int code)
{
    if (code / 100 == 1)
        return true;
    if (code / 100 != 2) {
        drop(QFtp::NotConnected, m_replyText);
        return true;
    }
    m_state = Idle;
    watch();
    tellFinished(tr("Connected to host %1").arg(m_commandSocket.peerName()));
    return true;
}

void QFtpPI::actOnReply(int code)
{
    if (code == 227 || code == 229) {
        if (!openDataConnection(code)) {
            m_state = Failure;
            m_replyText = tr("The server named no usable data connection: %1").arg(m_replyText);
        }
    } else if (code == 230) {
        if (m_currentCmd.startsWith(QLatin1String("USER ")) && !m_pendingCommands.isEmpty() &&
            m_pendingCommands.constFirst().startsWith(QLatin1String("PASS ")))
            m_pendingCommands.removeFirst();
        Q_EMIT connectState(QFtp::LoggedIn);
    } else if (code == 213 && m_currentCmd.startsWith(QLatin1String("SIZE "))) {
        bool isNumber = false;
        const qint64 size = m_replyText.simplified().toLongLong(&isNumber);
        m_dtp.setBytesTotal(isNumber && size > 0 ? size : 0);
        if (isNumber && size >= 0)
            Q_EMIT fileSize(size);
    } else if (code / 100 == 1 && m_currentCmd.startsWith(QLatin1String("STOR "))) {
        m_dtp.waitForConnection();
        m_dtp.writeData();
    }
}

/// Always to the host of the control connection, whatever the server says: nobody is sent elsewhere.
bool QFtpPI::openDataConnection(int code)
{
    FtpAddress address;
    const bool isUsable = code == 229 ? parseExtendedPassiveReply(m_reply.text, address.port)
                                      : parsePassiveReply(m_reply.text, address);
    if (!isUsable)
        return false;
    const QHostAddress peer = m_commandSocket.peerAddress();
    if (code == 227 && !isPeer(QHostAddress(QString::fromStdString(address.host))))
        qCWarning(lcFtp) << "The server named another host for data, which is not used:"
                         << QString::fromStdString(address.host);
    m_waitForDtpToConnect = true;
    m_dtp.connectToHost(peer, address.port);
    watch();
    return true;
}

void QFtpPI::goOn()
{
    if (m_state == Waiting)
        return;
    if (m_state == Failure)
        return handleFailure();
    m_state = Idle;
    if (!m_dtp.errorText().isEmpty()) {
        const QString text = m_dtp.errorText();
        m_dtp.clearError();
        return tellError(QFtp::UnknownError, text);
    }
    startNextCmd();
}

void QFtpPI::handleFailure()
{
    if (m_currentCmd.startsWith(QLatin1String("RETR")))
        m_dtp.collect();
    m_dtp.clearError();
    m_state = Idle;
    const bool isPassive = m_currentCmd.startsWith(QLatin1String("EPSV"));
    if (m_isAsking)
        return startNextCmd();
    if ((isPassive || m_currentCmd.startsWith(QLatin1String("EPRT"))) && m_transferConnectionExtended) {
        m_transferConnectionExtended = false;
        m_pendingCommands.insert(m_ahead,
                                 isPassive ? QStringLiteral("PASV\r\n") : QStringLiteral("PORT\r\n"));
    } else {
        Q_EMIT error(QFtp::UnknownError, m_replyText);
    }
    // Whoever heard it has ended the command, unless it can do without that line.
    if (m_isBusy && m_state == Idle)
        startNextCmd();
}

// ------------------------------------------------------------------ lines

void QFtpPI::startNextCmd()
{
    if (m_state != Idle)
        return;
    // The server knows the type of data already.
    const auto isStanding = [this](const QString& line) {
        return line.startsWith(QLatin1String("TYPE ")) && line.at(5) == m_type;
    };
    while (!m_rawCommand && m_ahead == 0 && !m_pendingCommands.isEmpty() &&
           isStanding(m_pendingCommands.constFirst()))
        m_pendingCommands.removeFirst();
    if (m_waitForDtpToConnect && m_ahead == 0)
        return; // nothing goes out until there is a way for the data
    if (m_pendingCommands.isEmpty()) {
        m_currentCmd.clear();
        watch();
        if (m_isBusy)
            tellFinished(m_replyText);
        return;
    }
    m_currentCmd = m_pendingCommands.takeFirst();
    if (m_ahead == 0 && !prepareLine(m_currentCmd)) {
        clearPendingCommands();
        return tellError(QFtp::UnknownError, tr("No data connection is possible"));
    }
    m_hadPreliminary = false;
    m_state = Waiting;
    watch();
    if (m_ahead > 0)
        --m_ahead;
    else
        sendLines();
}

/// The current one, and those behind it that need not wait for its answer.
void QFtpPI::sendLines()
{
    QByteArray text = m_currentCmd.toUtf8();
    for (QString line = m_currentCmd; m_ahead < m_pendingCommands.size(); ++m_ahead) {
        QString& next = m_pendingCommands[m_ahead];
        if (!letsNextGo(std::exchange(line, next), next))
            break;
        prepareLine(next);
        text += next.toUtf8();
    }
    m_commandSocket.write(text);
}

bool QFtpPI::prepareLine(QString& line)
{
    if (line.startsWith(QLatin1String("PORT")))
        return preparePort(line);
    if (line.startsWith(QLatin1String("PASV")) && isIpv6(m_commandSocket.localAddress()) &&
        m_transferConnectionExtended)
        line = QStringLiteral("EPSV\r\n");
    if (line.startsWith(QLatin1String("TYPE ")))
        m_type = {}; // until the server agrees, which an abort may keep from being heard
    return true;
}

bool QFtpPI::preparePort(QString& line)
{
    const QHostAddress local = plain(m_commandSocket.localAddress());
    const bool isExtended = isIpv6(local);
    if (isExtended && !m_transferConnectionExtended)
        return false;
    const int port = m_dtp.setupListener(local);
    if (port < 0)
        return false;
    QHostAddress bare = local;
    bare.setScopeId({});
    const std::string address = bare.toString().toStdString();
    line = QString::fromStdString(isExtended ? extendedPortCommand(address, true, std::uint16_t(port))
                                             : portCommand(address, std::uint16_t(port)));
    return true;
}

void QFtpPI::dtpConnectState(int state)
{
    switch (state) {
    case QFtpDTP::CsClosed:
        if (m_abortState != AbortState::None)
            return dataConnectionGone();
        if (std::exchange(m_waitForDtpToClose, false))
            processReply();
        takeReplies();
        readyRead();
        return;
    case QFtpDTP::CsConnected:
        m_waitForDtpToConnect = false;
        watch();
        startNextCmd();
        return;
    case QFtpDTP::CsHostNotFound:
    case QFtpDTP::CsConnectionRefused:
        if (m_abortState != AbortState::None)
            return dataConnectionGone();
        if (!std::exchange(m_waitForDtpToConnect, false))
            return;
        m_dtp.clearError();
        m_unheard += m_state == Waiting ? 1 : 0;
        m_state = Idle;
        watch();
        tellError(QFtp::ConnectionRefused, tr("Connection refused for data connection"));
        return;
    default:
        return;
    }
}

} // namespace vantrel
