#include "common/filesystem/ftp/ftpclient.h"

#include "common/filesystem/ftp/ftpclient_p.h"
#include "common/filesystem/ftp/ftplogging.h"

#include <QIODevice>

namespace vantrel {

FtpClient::FtpClient(QObject* parent)
    : FileSystemClient(parent)
    , d(std::make_unique<FtpClientPrivate>(this))
{
}

FtpClient::~FtpClient() = default;

bool FtpClient::setCredentials(const ClientCredentials& credentials)
{
    d->setCredentials(credentials);
    return true;
}

ClientCredentials FtpClient::credentials() const
{
    return d->credentials();
}

bool FtpClient::isServerConnected() const
{
    return d->isServerConnected();
}

bool FtpClient::isLoading() const
{
    return d->isLoading();
}

bool FtpClient::connectToServer(const QString& host, int port)
{
    return d->connectToServer(host, port < 0 ? defaultPort() : port);
}

bool FtpClient::disconnectServer()
{
    return d->disconnectServer();
}

bool FtpClient::list(const QString& path)
{
    return mayStart() && d->list(path);
}

bool FtpClient::remove(const QString& path)
{
    return mayStart() && d->remove(path);
}

bool FtpClient::create(const QString& path, ClientFileSystemType type)
{
    return mayStart() && d->create(path, type);
}

bool FtpClient::rename(const QString& path, const QString& newName)
{
    return mayStart() && d->rename(path, newName);
}

bool FtpClient::move(const QString& from, const QString& to)
{
    return mayStart() && d->move(from, to);
}

bool FtpClient::write(const QString& path, QIODevice* device, qint64)
{
    return mayTransfer() && d->write(path, device, 0);
}

bool FtpClient::read(const QString& path, QIODevice* device, qint64)
{
    return mayTransfer() && d->read(path, device, 0);
}

bool FtpClient::writeAndPlace(const QString& path, QIODevice* device, const FtpPlacing& placing)
{
    return mayTransfer() && d->writeAndPlace(path, device, placing);
}

bool FtpClient::mayTransfer()
{
    return d->isFollowUpDue() || mayStart();
}

bool FtpClient::takeFollowUp()
{
    return isServerConnected() && d->takeFollowUp();
}

void FtpClient::dropFollowUp()
{
    d->dropFollowUp();
}

FtpOutcome FtpClient::lastOutcome() const
{
    return d->lastOutcome();
}

bool FtpClient::resumeWrite(const QString& path, QIODevice* device, qint64 offset)
{
    return mayTransfer() && d->resume(path, device, offset, QFtp::Put);
}

bool FtpClient::resumeRead(const QString& path, QIODevice* device, qint64 offset)
{
    return mayTransfer() && d->resume(path, device, offset, QFtp::Get);
}

bool FtpClient::size(const QString& path)
{
    return mayStart() && d->size(path);
}

bool FtpClient::modified(const QString& path)
{
    return mayStart() && d->modified(path);
}

bool FtpClient::copy(const QString&, const QString&)
{
    // The protocol has no copy on the server.
    qCWarning(lcFtp, "Unimplemented code.");
    return false;
}

void FtpClient::abort()
{
    if (isLoading())
        d->abort();
}

ClientListing FtpClient::takeListing(const QList<ClientFileSystemInfo>& entries)
{
    return d->takeListing(entries);
}

QString FtpClient::lastErrorText() const
{
    return d->lastErrorText();
}

void FtpClient::setRateLimit(qint64 bytesPerSecond)
{
    d->setRateLimit(bytesPerSecond);
}

void FtpClient::setPatience(std::chrono::milliseconds patience)
{
    d->setPatience(patience);
}

void FtpClient::setReconnectUnit(std::chrono::milliseconds unit)
{
    d->setReconnectUnit(unit);
}

void FtpClient::setKeepaliveInterval(std::chrono::milliseconds interval)
{
    d->setKeepaliveInterval(interval);
}

} // namespace vantrel
