#include "common/filesystem/ftp/qftpdtp.h"

#include "common/filesystem/ftp/directsend.h"
#include "common/filesystem/ftp/ftplogging.h"
#include "common/filesystem/ftp/qftppi.h"

#include <QDateTime>
#include <QIODevice>
#include <QTimer>

#include <algorithm>
#include <utility>
#include <zlib.h>

namespace vantrel {

namespace {

constexpr qint64 blockSize = 1024 * 1024;
// What one turn of the event loop may move, so that an abort is heard.
constexpr qint64 turnSize = 8 * blockSize;
constexpr qint64 maxUnread = 64 * blockSize; // of a transfer without a device
constexpr qsizetype maxListLine = 64 * 1024;
constexpr qint64 maxListLines = 1'000'000;
constexpr qint64 tellInterval = 40; // milliseconds between two words of progress

FtpTime localNow()
{
    const QDateTime now = QDateTime::currentDateTime();
    return {now.date().year(), now.date().month(), now.date().day(), now.time().hour(), now.time().minute()};
}

} // namespace

QFtpDTP::QFtpDTP(QFtpPI* pi)
    : QObject(nullptr)
    , m_pi(pi)
{
    m_listener.setObjectName(QStringLiteral("QFtpDTP active state server"));
    connect(&m_listener, &QTcpServer::newConnection, this, &QFtpDTP::setupSocket);
}

QFtpDTP::~QFtpDTP()
{
    if (m_socket)
        m_socket->disconnect(this);
}

void QFtpDTP::setData(QByteArray* data)
{
    clearData();
    m_data = data;
    m_callWriteData = data;
}

void QFtpDTP::setDevice(QIODevice* device, qint64 offset)
{
    clearData();
    m_device = device;
    m_offset = offset;
    m_callWriteData = device;
}

void QFtpDTP::clearData()
{
    m_data = nullptr;
    m_device = nullptr;
    m_callWriteData = false;
    m_isSending = false;
    m_offset = 0;
}

void QFtpDTP::reset()
{
    clearData();
    m_errorText.clear();
    m_bytesFromSocket.clear();
    m_bytesDone = m_sent = m_bytesTotal = 0;
    m_toldDone = -1;
    m_isChecksumWanted = false;
    m_checksum = 0;
}

void QFtpDTP::setBytesTotal(qint64 bytes)
{
    m_bytesTotal = bytes;
    m_bytesDone = m_sent = m_offset;
    m_lastTold.start();
    m_toldDone = m_bytesDone;
    Q_EMIT dataTransferProgress(m_bytesDone, m_bytesTotal);
}

void QFtpDTP::wireSocket(std::unique_ptr<QTcpSocket> socket, const QString& name)
{
    abortConnection();
    m_socket = std::move(socket);
    m_socket->setObjectName(name);
    m_isDropping = false;
    m_line.clear();
    m_lines = 0;
    m_bytesFromSocket.clear();
    connect(m_socket.get(), &QTcpSocket::readyRead, this, &QFtpDTP::socketReadyRead);
    connect(m_socket.get(), &QTcpSocket::errorOccurred, this, &QFtpDTP::socketError);
    connect(m_socket.get(), &QTcpSocket::disconnected, this, &QFtpDTP::socketConnectionClosed);
    connect(m_socket.get(), &QTcpSocket::bytesWritten, this, &QFtpDTP::socketBytesWritten);
}

void QFtpDTP::connectToHost(const QHostAddress& address, quint16 port)
{
    wireSocket(std::make_unique<QTcpSocket>(), QStringLiteral("QFtpDTP Passive state socket"));
    connect(m_socket.get(), &QTcpSocket::connected, this, &QFtpDTP::socketConnected);
    // Without a buffer of the socket's own: blocks go straight from the system to the device and back.
    m_socket->connectToHost(address, port, QIODevice::ReadWrite | QIODevice::Unbuffered);
}

int QFtpDTP::setupListener(const QHostAddress& address)
{
    if (!m_listener.isListening() && !m_listener.listen(address, 0))
        return -1;
    return m_listener.serverPort();
}

void QFtpDTP::waitForConnection()
{
    if (m_listener.isListening() && m_listener.waitForNewConnection(0))
        setupSocket();
}

/// Of active mode: the server connected, and nobody else may.
void QFtpDTP::setupSocket()
{
    while (QTcpSocket* incoming = m_listener.nextPendingConnection()) {
        std::unique_ptr<QTcpSocket> socket(incoming);
        if (!m_pi->isPeer(socket->peerAddress())) {
            qCWarning(lcFtp) << "Refused a data connection from" << socket->peerAddress().toString();
            continue;
        }
        m_listener.close();
        socket->setParent(nullptr);
        socket->setReadBufferSize(turnSize / 2);
        wireSocket(std::move(socket), QStringLiteral("QFtpDTP Active state socket"));
        m_bytesDone = m_sent = m_offset;
        if (m_isSending)
            writeData();
        if (m_socket && m_socket->bytesAvailable() > 0)
            socketReadyRead();
        return;
    }
}

QAbstractSocket::SocketState QFtpDTP::state() const
{
    return m_socket ? m_socket->state() : QAbstractSocket::UnconnectedState;
}

void QFtpDTP::abortConnection()
{
    m_listener.close();
    if (!m_socket)
        return;
    m_socket->disconnect(this);
    m_socket->abort();
    // One of its signals may be the reason why it goes.
    m_socket.release()->deleteLater();
}

void QFtpDTP::dropData()
{
    m_isDropping = true;
    m_isSending = false;
    m_callWriteData = false;
    m_data = nullptr;
    m_device = nullptr;
}

void QFtpDTP::socketConnected()
{
    m_bytesDone = m_sent = m_offset;
    Q_EMIT connectState(CsConnected);
}

void QFtpDTP::socketError(QAbstractSocket::SocketError error)
{
    if (error == QAbstractSocket::HostNotFoundError) {
        Q_EMIT connectState(CsHostNotFound);
    } else if (error == QAbstractSocket::ConnectionRefusedError) {
        Q_EMIT connectState(CsConnectionRefused);
    } else if (error != QAbstractSocket::RemoteHostClosedError && !m_isDropping) {
        if (m_errorText.isEmpty())
            m_errorText = tr("The data connection broke: %1").arg(m_socket->errorString());
        if (m_socket->state() == QAbstractSocket::UnconnectedState)
            Q_EMIT connectState(CsConnectionRefused); // it never came to be
    }
}

void QFtpDTP::socketReadyRead()
{
    if (!m_socket)
        return;
    if (m_pi->currentCommand().isEmpty()) { // nobody asked for it
        abortConnection();
        Q_EMIT connectState(CsClosed);
        return;
    }
    m_block.resize(blockSize);
    qint64 moved = 0;
    qint64 size = 0;
    while (m_socket && moved < turnSize && m_bytesFromSocket.size() < maxUnread) {
        const qint64 most = m_device ? m_limit.allowed(m_block.size()) : m_block.size();
        if (most == 0) {
            comeBack(false);
            break;
        }
        size = m_socket->read(m_block.data(), most);
        if (size <= 0)
            break;
        moved += size;
        m_limit.spend(size);
        if (!m_isDropping && !consume(m_block.constData(), size))
            return;
    }
    if (moved > 0) {
        Q_EMIT this->moved();
        if (!m_isDropping)
            tellProgress(false);
    }
    // Without a buffer the end is not told but read.
    if (m_socket && size < 0 && m_socket->state() == QAbstractSocket::UnconnectedState) {
        const QAbstractSocket::SocketError error = m_socket->error();
        if (error != QAbstractSocket::RemoteHostClosedError && !m_isDropping && m_errorText.isEmpty())
            m_errorText = tr("The data connection broke: %1").arg(m_socket->errorString());
        socketConnectionClosed();
    }
}

/// No more may go for now.
void QFtpDTP::comeBack(bool isSending)
{
    if (std::exchange(m_isHeld, true))
        return;
    QTimer::singleShot(RateLimit::waitMs, this, [this, isSending] {
        m_isHeld = false;
        if (!isSending)
            socketReadyRead();
        else if (m_isSending && m_callWriteData)
            writeData();
    });
}

void QFtpDTP::collect()
{
    if (!m_socket || m_isDropping || !m_device)
        return;
    m_block.resize(blockSize);
    for (qint64 size = 0, all = 0; all < turnSize; all += size) {
        size = m_socket->read(m_block.data(), m_block.size());
        if (size <= 0 || m_device->write(m_block.constData(), size) != size)
            break;
        addToChecksum(m_block.constData(), size);
        m_bytesDone += size;
    }
    tellProgress(true);
}

void QFtpDTP::addToChecksum(const char* data, qint64 size)
{
    if (m_isChecksumWanted)
        m_checksum = static_cast<quint32>(
            ::crc32_z(m_checksum, reinterpret_cast<const Bytef*>(data), static_cast<z_size_t>(size)));
}

/// A disk that fills takes a part, and says what is wrong to the next byte only.
bool QFtpDTP::writeAll(const char* data, qint64 size)
{
    while (size > 0) {
        const qint64 written = m_device->write(data, size);
        if (written <= 0)
            return false;
        data += written;
        size -= written;
    }
    return true;
}

/// False when the transfer cannot go on.
bool QFtpDTP::consume(const char* data, qint64 size)
{
    if (m_pi->currentCommand().startsWith(QLatin1String("LIST"))) {
        readListing(QByteArrayView(data, size));
        if (m_lines > maxListLines) {
            fail(tr("The listing is too long"));
            return false;
        }
        return true;
    }
    if (!m_device || m_data) {
        m_bytesFromSocket.append(data, size);
        m_bytesDone += size;
        Q_EMIT readyRead();
        return true;
    }
    if (!m_device->isWritable()) { // an upload's: left over from a command that was given up
        fail(tr("The server sent data that nobody asked for"));
        return false;
    }
    if (!writeAll(data, size)) {
        fail(tr("Writing failed: %1").arg(m_device->errorString()));
        return false;
    }
    addToChecksum(data, size);
    m_bytesDone += size;
    return true;
}

void QFtpDTP::fail(const QString& text)
{
    m_errorText = text;
    dropData();
    Q_EMIT failed();
}

void QFtpDTP::readListing(QByteArrayView piece)
{
    m_bytesDone += piece.size();
    while (!piece.isEmpty()) {
        const qsizetype end = piece.indexOf('\n');
        const QByteArrayView part = end < 0 ? piece : piece.first(end + 1);
        if (m_line.size() <= maxListLine)
            m_line.append(part.data(), part.size());
        if (end < 0)
            return;
        piece = piece.sliced(end + 1);
        if (m_line.size() <= maxListLine)
            readListLine(m_line);
        m_line.clear();
        ++m_lines;
    }
}

namespace {

QDateTime timeOf(const FtpTime& time)
{
    return time.isValid() ? QDateTime(QDate(time.year, time.month, time.day), QTime(time.hour, time.minute))
                          : QDateTime();
}

QUrlInfo infoOf(const FtpListEntry& entry)
{
    QUrlInfo info;
    info.setName(QString::fromStdString(entry.name));
    info.setDir(entry.isDirectory);
    info.setFile(entry.isFile);
    info.setSymLink(entry.isSymLink);
    info.setOwner(QString::fromStdString(entry.owner));
    info.setGroup(QString::fromStdString(entry.group));
    info.setSize(entry.size);
    info.setPermissions(entry.permissions);
    info.setReadable(entry.isReadable);
    info.setWritable(entry.isWritable);
    info.setLastModified(timeOf(entry.time));
    return info;
}

bool parseWith(const QByteArray& line, const QString& userName, const FtpTime& now, QUrlInfo& info)
{
    FtpListEntry entry;
    if (!parseListLine(std::string_view(line.constData(), static_cast<std::size_t>(line.size())),
                       userName.toStdString(), now, entry))
        return false;
    info = infoOf(entry);
    return true;
}

} // namespace

bool QFtpDTP::parseDir(const QByteArray& line, const QString& userName, QUrlInfo& info)
{
    return parseWith(line, userName, localNow(), info);
}

void QFtpDTP::readListLine(const QByteArray& line)
{
    if (m_lines == 0)
        m_now = localNow();
    QUrlInfo info;
    if (parseWith(line, QString(), m_now, info))
        Q_EMIT listInfo(info);
    else if (line.endsWith("No such file or directory\r\n"))
        m_errorText = QString::fromUtf8(line).trimmed();
}

void QFtpDTP::tellProgress(bool isLast)
{
    if (m_toldDone == m_bytesDone || (!isLast && m_lastTold.isValid() && m_lastTold.elapsed() < tellInterval))
        return;
    m_lastTold.start();
    m_toldDone = m_bytesDone;
    Q_EMIT dataTransferProgress(m_bytesDone, m_bytesTotal);
}

void QFtpDTP::socketConnectionClosed()
{
    if (!m_socket)
        return;
    // A socket with a buffer of its own may hold what came last.
    while (m_socket->bytesAvailable() > 0 && !m_isDropping) {
        const QByteArray rest = m_socket->read(blockSize);
        if (rest.isEmpty() || !consume(rest.constData(), rest.size()))
            break;
    }
    if (!m_socket)
        return;
    if (!m_line.isEmpty() && !m_isDropping && m_line.size() <= maxListLine)
        readListLine(m_line); // the last one without an end
    const bool isCutShort = m_isSending && (m_callWriteData || (m_device && m_bytesDone < m_sent));
    if (!m_isDropping && isCutShort && m_errorText.isEmpty())
        m_errorText = tr("The server ended the transfer before all was sent");
    abortConnection();
    if (!m_isDropping) {
        tellProgress(true);
        if (m_errorText.isEmpty() && m_pi->isBinaryDownload() && m_bytesDone < m_bytesTotal)
            m_errorText = tr("The transfer ended after %1 of %2 bytes").arg(m_bytesDone).arg(m_bytesTotal);
    }
    clearData();
    Q_EMIT connectState(CsClosed);
}

void QFtpDTP::writeData()
{
    m_isSending = true;
    if (!m_socket || m_isDropping)
        return;
    if (m_data)
        sendBytes();
    else if (m_device && m_callWriteData)
        sendDevice();
}

void QFtpDTP::sendBytes()
{
    if (!std::exchange(m_callWriteData, false))
        return;
    if (m_data->isEmpty())
        Q_EMIT dataTransferProgress(0, m_bytesTotal);
    else
        m_socket->write(*m_data);
    m_bytesDone = m_data->size() - m_socket->bytesToWrite();
    if (m_socket->bytesToWrite() == 0)
        finishSending();
}

/// What the system took at once is not told by the socket; what it did not waits in it.
void QFtpDTP::sendDevice()
{
    for (qint64 turn = 0; turn < turnSize && m_socket->bytesToWrite() == 0; turn += blockSize) {
        const qint64 most = m_limit.allowed(blockSize);
        if (most == 0) {
            tellProgress(false);
            return comeBack(true);
        }
        if (!sendBlock(most))
            return;
    }
    tellProgress(false);
    if (m_socket && m_socket->bytesToWrite() == 0)
        QMetaObject::invokeMethod(
            this, [this] { m_isSending&& m_callWriteData ? writeData() : void(); }, Qt::QueuedConnection);
}

/// False when there is nothing to send, for now or for good.
bool QFtpDTP::sendBlock(qint64 most)
{
    if (!m_isChecksumWanted) {
        if (const qint64 size = sendDirectly(m_device, *m_socket, most); size > 0)
            return noteSent(size);
    }
    // What the socket does not take now waits in it, and it tells when that has gone.
    m_block.resize(blockSize);
    const qint64 size = m_device->read(m_block.data(), most);
    if (size <= 0) {
        if (size == 0 && m_device->isSequential())
            return false;
        const qint64 left = m_bytesTotal - m_sent;
        if (!m_device->isSequential() && left > 0) {
            fail(tr("Reading failed with %1 bytes left: %2").arg(left).arg(m_device->errorString()));
            return false;
        }
        m_callWriteData = false;
        if (m_sent == 0)
            Q_EMIT dataTransferProgress(0, m_bytesTotal);
        tellProgress(true);
        finishSending();
        return false;
    }
    if (m_socket->write(m_block.constData(), size) != size) {
        const QString why = m_socket ? m_socket->errorString() : QString();
        m_errorText = tr("The data connection broke: %1").arg(why);
        socketConnectionClosed();
        return false;
    }
    addToChecksum(m_block.constData(), size);
    return noteSent(size);
}

bool QFtpDTP::noteSent(qint64 size)
{
    m_sent += size;
    m_limit.spend(size);
    m_bytesDone = m_sent - m_socket->bytesToWrite();
    Q_EMIT moved();
    return m_socket != nullptr;
}

void QFtpDTP::finishSending()
{
    m_callWriteData = false;
    if (m_socket)
        m_socket->disconnectFromHost();
}

void QFtpDTP::socketBytesWritten()
{
    Q_EMIT moved();
    if (!m_socket || m_isDropping)
        return;
    if (m_data) {
        m_bytesDone = m_data->size() - m_socket->bytesToWrite();
        tellProgress(m_socket->bytesToWrite() == 0);
        if (m_socket->bytesToWrite() == 0)
            finishSending();
        return;
    }
    m_bytesDone = m_sent - m_socket->bytesToWrite();
    tellProgress(!m_callWriteData && m_bytesDone == m_sent);
    if (m_callWriteData && m_socket->bytesToWrite() == 0)
        writeData();
}

void QFtpDTP::dataReadyRead()
{
    if (m_isSending)
        writeData();
}

qint64 QFtpDTP::read(char* data, qint64 maxSize)
{
    const qint64 size = std::min<qint64>(maxSize, m_bytesFromSocket.size());
    std::copy_n(m_bytesFromSocket.constData(), size, data);
    m_bytesFromSocket.remove(0, size);
    QMetaObject::invokeMethod(this, &QFtpDTP::socketReadyRead, Qt::QueuedConnection); // there is room again
    return size;
}

QByteArray QFtpDTP::readAll()
{
    QMetaObject::invokeMethod(this, &QFtpDTP::socketReadyRead, Qt::QueuedConnection);
    return std::exchange(m_bytesFromSocket, {});
}

} // namespace vantrel
