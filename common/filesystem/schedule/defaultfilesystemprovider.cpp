#include "common/filesystem/schedule/defaultfilesystemprovider.h"

#include "common/filesystem/local/localfilesystem.h"
#include "common/filesystem/schedule/clientfactory.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"

#include <QCoreApplication>
#include <QHash>
#include <QTimer>

#include <utility>

namespace vantrel {

namespace {

/// As long as the process; but a client's thread must end before the application object does.
QHash<QUrl, ServerFileSystem*>& serverFileSystems()
{
    static QHash<QUrl, ServerFileSystem*> all;
    return all;
}

void follow(const Session* session, ServerFileSystem* fileSystem, const QString& host)
{
    QObject::connect(session, &Session::connected, fileSystem, [fileSystem, host](const QString& connected) {
        if (connected != host)
            fileSystem->giveUp(DefaultFileSystemProvider::tr("The application has turned to another server"));
        else if (!fileSystem->isConnectedToServer())
            fileSystem->connectToServer();
    });
    QObject::connect(session, &Session::disconnected, fileSystem,
                     [fileSystem] { fileSystem->disconnectServer(); });
    if (session->isConnected())
        QTimer::singleShot(0, fileSystem, [fileSystem] { fileSystem->connectToServer(); });
}

} // namespace

DefaultFileSystemProvider::DefaultFileSystemProvider(QObject* parent)
    : QObject(parent)
{
}

FileSystemProviderWrapper::FileSystemProviderWrapper(QObject* parent)
    : DefaultFileSystemProvider(parent)
{
}

DefaultFileSystemProvider* DefaultFileSystemProvider::instance()
{
    static DefaultFileSystemProvider theProvider;
    return &theProvider;
}

FileSystem* DefaultFileSystemProvider::getServerFileSystem(QUrl address, QString username, QString password)
{
    static ClientFactory factory;
    ServerFileSystem*& fileSystem = serverFileSystems()[address];
    if (fileSystem)
        return fileSystem;
    fileSystem = new ServerFileSystem(address, &factory, QCoreApplication::instance());
    QObject::connect(fileSystem, &QObject::destroyed, fileSystem,
                     [address] { serverFileSystems().remove(address); });
    fileSystem->setUsername(username);
    fileSystem->setPassword(password);
    if (const Session* session = Session::instance())
        follow(session, fileSystem, address.host());
    return fileSystem;
}

FileSystem* DefaultFileSystemProvider::getLocalFileSystem()
{
    static LocalFileSystem theFileSystem;
    return &theFileSystem;
}

FileSystem* DefaultFileSystemProvider::getFileSystem(QString kind)
{
    if (kind == QStringLiteral("local"))
        return getLocalFileSystem();
    const Session* session = Session::instance();
    if (kind != QStringLiteral("server") || !session || !session->isConnected())
        return nullptr;
    const QString host = session->connectionHandler()->getConnectedHost();
    for (ServerFileSystem* fileSystem : std::as_const(serverFileSystems()))
        if (fileSystem->server().host() == host)
            return fileSystem;
    return nullptr;
}

} // namespace vantrel
