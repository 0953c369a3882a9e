#include "common/filesystem/server/serverfilesystem.h"

#include "common/filesystem/ftp/clientcredentials.h"
#include "common/filesystem/ftp/filesystemclient.h"
#include "common/filesystem/model/abstractclientfactory.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/server/serverfilesystem_p.h"

namespace vantrel {

ServerFileSystem::ServerFileSystem(const QUrl& server, AbstractClientFactory* factory, QObject* parent)
    : FileSystem(parent)
{
    if (server.scheme() != QStringLiteral("ftp")) {
        qCCritical(lcFileSystem) << "Failed to create a client for address"
                                 << server.toString(QUrl::RemoveUserInfo);
        qFatal("Unable to continue without client instance");
    }
    m_private = std::make_unique<ServerFileSystemPrivate>(this, server, factory->createFtpClient());
}

ServerFileSystem::~ServerFileSystem() = default;

QString ServerFileSystem::fileSystemName() const
{
    return tr("Server files");
}

QString ServerFileSystem::defaultRootPath() const
{
    return QStringLiteral("/");
}

bool ServerFileSystem::isReady() const
{
    return client()->isServerConnected();
}

bool ServerFileSystem::isLoading() const
{
    return m_private->isLoading();
}

bool ServerFileSystem::getDirectories(QString directoryPath, QList<FileSystemDirectory>& result)
{
    return m_private->getDirectories(directoryPath, result);
}

bool ServerFileSystem::getFiles(QString directoryPath, QList<FileSystemFile>& result)
{
    return m_private->getFiles(directoryPath, result);
}

void ServerFileSystem::giveUpListing(const QString& directoryPath)
{
    m_private->giveUpListing(directoryPath);
}

FileSystem::ItemType ServerFileSystem::getType(QString path)
{
    const std::optional<ClientFileSystemInfo> entry = m_private->listings().entry(path);
    if (entry && entry->type == ClientFileSystemType::Unknown)
        qCWarning(lcFileSystem) << "Unknown type for file system path" << path;
    return m_private->listings().type(path);
}

bool ServerFileSystem::requestMetadata(QString filePath, FileMetadata& result)
{
    return m_private->metadata().request(filePath, fileSize(filePath), result);
}

bool ServerFileSystem::requestMetadataAlone(const QString& filePath, FileMetadata& result)
{
    return m_private->metadata().requestAlone(filePath, fileSize(filePath), result);
}

bool ServerFileSystem::isValidDirectoryPath(QString directoryPath) const
{
    return m_private->isValidDirectoryPath(directoryPath);
}

OperationVisitor* ServerFileSystem::operationVisitor()
{
    return m_private.get();
}

qint64 ServerFileSystem::fileSize(const QString& path) const
{
    return m_private->getFileSize(path);
}

int ServerFileSystem::otherFiles(const QString& directoryPath) const
{
    return m_private->listings().otherFiles(directoryPath);
}

bool ServerFileSystem::isLink(const QString& path) const
{
    const std::optional<ClientFileSystemInfo> entry = m_private->listings().entry(path);
    return entry && entry->isSymLink;
}

bool ServerFileSystem::connectToServer()
{
    const QUrl address = server();
    return client()->connectToServer(address.host(), address.port(client()->defaultPort()));
}

bool ServerFileSystem::disconnectServer()
{
    return client()->disconnectServer();
}

bool ServerFileSystem::isConnectedToServer() const
{
    return client()->isServerConnected();
}

QString ServerFileSystem::username() const
{
    return client()->credentials().username;
}

QString ServerFileSystem::password() const
{
    return client()->credentials().password;
}

bool ServerFileSystem::setUsername(const QString& username)
{
    ClientCredentials credentials = client()->credentials();
    if (credentials.username == username)
        return false;
    if (isConnectedToServer()) {
        qCInfo(lcFileSystem) << "Unable to set username when server is connected";
        return false;
    }
    credentials.username = username;
    const bool isSet = client()->setCredentials(credentials);
    if (isSet)
        Q_EMIT usernameChanged();
    return isSet;
}

bool ServerFileSystem::setPassword(const QString& password)
{
    ClientCredentials credentials = client()->credentials();
    if (credentials.password == password)
        return false;
    if (isConnectedToServer()) {
        qCInfo(lcFileSystem) << "Unable to set password when server is connected";
        return false;
    }
    credentials.password = password;
    const bool isSet = client()->setCredentials(credentials);
    if (isSet)
        Q_EMIT passwordChanged();
    return isSet;
}

QUrl ServerFileSystem::server() const
{
    return m_private->server();
}

FileSystemClient* ServerFileSystem::client() const
{
    return m_private->client();
}

void ServerFileSystem::giveUp(const QString& message)
{
    m_private->giveUp(message);
}

} // namespace vantrel
