#pragma once

#include "common/filesystem/model/filesystem.h"

#include <QSharedPointer>
#include <QUrl>

#include <memory>

namespace vantrel {

class AbstractClientFactory;
class FileSystemClient;
class ServerFileSystemPrivate;

/// The media storage of a server as a file system: media files and directories, everything else stays hidden.
/// What was listed within the last five seconds is not asked for again, and what is older is shown until the
/// answer is here. Made by the provider of file systems, for the life of the process; main thread only.
class ServerFileSystem : public FileSystem
{
    Q_OBJECT
    Q_PROPERTY(QString username READ username WRITE setUsername NOTIFY usernameChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(QUrl server READ server CONSTANT)
    Q_PROPERTY(bool isConnectedToServer READ isConnectedToServer NOTIFY isConnectedToServerChanged)

public:
    /// server: an address of the scheme ftp; any other ends the program. The factory makes the one client.
    ServerFileSystem(const QUrl& server, AbstractClientFactory* factory, QObject* parent = nullptr);
    ~ServerFileSystem() override;

    QString fileSystemName() const override;
    QString defaultRootPath() const override;
    bool isReady() const override;
    bool isLoading() const override;
    bool getDirectories(QString directoryPath, QList<FileSystemDirectory>& result) override;
    bool getFiles(QString directoryPath, QList<FileSystemFile>& result) override;
    void giveUpListing(const QString& directoryPath) override;
    ItemType getType(QString path) override;
    bool requestMetadata(QString filePath, FileMetadata& result) override;
    bool requestMetadataAlone(const QString& filePath, FileMetadata& result) override;
    bool isValidDirectoryPath(QString directoryPath) const override;
    OperationVisitor* operationVisitor() override;
    qint64 fileSize(const QString& path) const override;
    int otherFiles(const QString& directoryPath) const override;
    bool isLink(const QString& path) const override;

    /// False when the client takes no connection now.
    bool connectToServer();
    bool disconnectServer();
    bool isConnectedToServer() const;
    QString username() const;
    QString password() const;
    /// False while connected, and for what is so already.
    bool setUsername(const QString& username);
    bool setPassword(const QString& password);
    QUrl server() const;
    FileSystemClient* client() const;
    /// The server is left for another one: what runs on it ends as failed, with the text.
    void giveUp(const QString& message);

Q_SIGNALS:
    void usernameChanged();
    void passwordChanged();
    void isConnectedToServerChanged(bool isConnected);

private:
    friend class ServerFileSystemPrivate;
    std::unique_ptr<ServerFileSystemPrivate> m_private;
};

} // namespace vantrel
