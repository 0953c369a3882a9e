#include "common/filesystem/schedule/defaultfilesystemprovider.h"

#include "common/filesystem/local/localfilesystem.h"
#include "common/filesystem/schedule/clientfactory.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"

#include <QCoreApplication>
#include <QHash>
#include <QTimer>
#include <QUrl>

namespace vantrel {

namespace {

/// As long as the process; but a client's thread must end before the application object does.
QHash<QUrl, ServerFileSystem*>& serverFileSystems()
{
    static QHash<QUrl, ServerFileSystem*> all;
    return all;
}

/// Where the files of a host were asked for last: a server may come back with them at another port.
QHash<QString, QUrl>& addresses()
{
    static QHash<QString, QUrl> all;
    return all;
}

/// As addresses have it: in small letters.
QString hostOf(const QString& name)
{
    QUrl address;
    address.setHost(name);
    return address.host();
}

bool isLeft(const ServerFileSystem* fileSystem)
{
    return addresses().value(fileSystem->server().host()) != fileSystem->server();
}

void connectIfWanted(ServerFileSystem* fileSystem)
{
    if (!isLeft(fileSystem) && !fileSystem->isConnectedToServer())
        fileSystem->connectToServer();
}

void follow(const Session* session, ServerFileSystem* fileSystem)
{
    QObject::connect(session, &Session::connected, fileSystem, [fileSystem](const QString& connected) {
        if (hostOf(connected) != fileSystem->server().host())
            fileSystem->giveUp(DefaultFileSystemProvider::tr("The application has turned to another server"));
        else
            connectIfWanted(fileSystem);
    });
    QObject::connect(session, &Session::disconnected, fileSystem,
                     [fileSystem] { fileSystem->disconnectServer(); });
}

/// The files of the host are here now; nobody answers where they were before.
void turnTo(ServerFileSystem* fileSystem)
{
    const QUrl address = fileSystem->server();
    if (addresses().value(address.host()) == address)
        return;
    addresses()[address.host()] = address;
    const auto all = serverFileSystems().values();
    for (ServerFileSystem* other : all) {
        if (other == fileSystem || other->server().host() != address.host())
            continue;
        other->giveUp(DefaultFileSystemProvider::tr("The server has its files at another port now"));
        other->disconnectServer();
    }
    const Session* session = Session::instance();
    if (session && session->isConnected())
        QTimer::singleShot(0, fileSystem, [fileSystem] { connectIfWanted(fileSystem); });
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
    if (ServerFileSystem* known = serverFileSystems().value(address)) {
        turnTo(known);
        return known;
    }
    auto* const fileSystem = new ServerFileSystem(address, &factory, QCoreApplication::instance());
    serverFileSystems().insert(address, fileSystem);
    QObject::connect(fileSystem, &QObject::destroyed, fileSystem,
                     [address] { serverFileSystems().remove(address); });
    fileSystem->setUsername(username);
    fileSystem->setPassword(password);
    if (const Session* session = Session::instance())
        follow(session, fileSystem);
    turnTo(fileSystem);
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
    const QString host = hostOf(session->connectionHandler()->getConnectedHost());
    return serverFileSystems().value(addresses().value(host)); // what the session has asked for
}

} // namespace vantrel
