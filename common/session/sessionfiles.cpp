#include "common/session/sessionfiles.h"

#include "common/filesystem/model/localhomelocations.h"
#include "common/filesystem/models/filesmodel.h"
#include "common/filesystem/models/operationsmodel.h"
#include "common/filesystem/models/pathmodel.h"
#include "common/filesystem/schedule/defaultfilesystemprovider.h"
#include "common/filesystem/schedule/filesystemoperationsprovider.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "common/import/mediaarrivals.h"

#include <QUrl>

namespace vantrel {

SessionFiles::SessionFiles() = default;
SessionFiles::~SessionFiles() = default;

FilesModel* SessionFiles::localFilesModel()
{
    if (!m_localFiles) {
        m_localFiles.reset(new FilesModel(DefaultFileSystemProvider::instance()->getLocalFileSystem(),
                                          LocalHomeLocations::instance()));
        const PathModel* places = localFilesPathModel();
        m_localFiles->setDirectoryPath(places->data(places->index(0, 0), PathModel::PathRole).toString());
    }
    return m_localFiles.get();
}

PathModel* SessionFiles::localFilesPathModel()
{
    if (!m_localPaths) {
        m_localPaths.reset(new PathModel(DefaultFileSystemProvider::instance()->getLocalFileSystem()));
        m_localPaths->appendStandardPlaces();
    }
    return m_localPaths.get();
}

OperationsModel* SessionFiles::operationsModel()
{
    if (!m_operations)
        m_operations.reset(new OperationsModel(FileSystemOperationsProvider::getFileSystemOperations()));
    return m_operations.get();
}

MediaArrivals* SessionFiles::mediaArrivals()
{
    if (!m_arrivals)
        m_arrivals = std::make_unique<MediaArrivals>(DefaultFileSystemProvider::instance(),
                                                     FileSystemOperationsProvider::getFileSystemOperations());
    return m_arrivals.get();
}

PathModel* SessionFiles::serverFilesPathModel()
{
    if (!m_serverPaths)
        m_serverPaths.reset(new PathModel(nullptr));
    return m_serverPaths.get();
}

void SessionFiles::connectTo(const QString& host, quint16 port, const QString& username,
                             const QString& password)
{
    if (m_serverFiles || host.isEmpty() || port == 0)
        return;
    QUrl address;
    address.setScheme(QStringLiteral("ftp"));
    address.setHost(host);
    address.setPort(port);
    FileSystem* fileSystem =
        DefaultFileSystemProvider::instance()->getServerFileSystem(address, username, password);
    // The provider keeps what it was told first; the operator may have changed the settings since.
    if (auto* server = qobject_cast<ServerFileSystem*>(fileSystem);
        server && !server->isConnectedToServer()) {
        server->setUsername(username);
        server->setPassword(password);
    }
    m_serverFiles.reset(new FilesModel(fileSystem));
    m_serverFiles->setDirectoryPath(fileSystem->defaultRootPath());
    m_serverPaths.reset(new PathModel(fileSystem));
    m_serverPaths->append(fileSystem->defaultRootPath());
    Q_EMIT serverFilesModelChanged();
    Q_EMIT serverFilesPathModelChanged();
}

ServerFileSystem* SessionFiles::serverFileSystem() const
{
    return m_serverFiles ? qobject_cast<ServerFileSystem*>(m_serverFiles->fileSystem()) : nullptr;
}

void SessionFiles::disconnectServer()
{
    if (!m_serverFiles)
        return;
    m_serverFiles.reset();
    Q_EMIT serverFilesModelChanged();
    m_serverPaths.reset();
    Q_EMIT serverFilesPathModelChanged();
}

} // namespace vantrel
