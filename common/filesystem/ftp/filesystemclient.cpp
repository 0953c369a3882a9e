#include "common/filesystem/ftp/filesystemclient.h"

namespace vantrel {

ClientListing FileSystemClient::takeListing(const QList<ClientFileSystemInfo>& entries)
{
    return ClientListing(entries);
}

bool FileSystemClient::size(const QString&)
{
    return false;
}

bool FileSystemClient::writeAndPlace(const QString& path, QIODevice* device, const FtpPlacing&)
{
    return write(path, device, 0);
}

bool FileSystemClient::modified(const QString&)
{
    return false;
}

bool FileSystemClient::resumeWrite(const QString&, QIODevice*, qint64)
{
    return false;
}

bool FileSystemClient::resumeRead(const QString&, QIODevice*, qint64)
{
    return false;
}

void FileSystemClient::setRateLimit(qint64) {}

} // namespace vantrel
