#pragma once

#include "common/filesystem/ftp/filesystemclient.h"
#include "common/filesystem/model/operationvisitor.h"
#include "common/filesystem/server/servercommands.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "common/filesystem/server/serverlistings.h"
#include "common/filesystem/server/servermetadata.h"

#include <QMap>
#include <QSet>

namespace vantrel {

class BaseOperation;
class RunnableOperation;
class ServerDownload;
class ServerUpload;
class TransferOperation;

/// Does the work of ServerFileSystem: answers from listings, and gives each operation that starts a task of
/// its own.
class ServerFileSystemPrivate : public QObject, public OperationVisitor
{
    Q_OBJECT

public:
    ServerFileSystemPrivate(ServerFileSystem* q, const QUrl& server, QSharedPointer<FileSystemClient> client);
    ~ServerFileSystemPrivate() override;

    FileSystemClient* client() const { return m_client.data(); }
    QUrl server() const { return m_server; }
    ServerListings& listings() { return m_listings; }
    ServerCommands& commands() { return m_commands; }
    ServerMetadata& metadata() { return m_metadata; }
    bool isLoading() const { return m_client->isLoading() || m_commands.hasWork(); }

    bool getDirectories(const QString& path, QList<FileSystemDirectory>& result);
    bool getFiles(const QString& path, QList<FileSystemFile>& result);
    void giveUpListing(const QString& path);
    bool isValidDirectoryPath(const QString& path) const;
    qint64 getFileSize(const QString& path) const { return m_listings.fileSize(path); }
    void giveUp(const QString& message);

    bool visit(QSharedPointer<FileTransferOperation> operation) override;
    bool visit(QSharedPointer<DirectoryTransferOperation> operation) override;
    bool visit(QSharedPointer<ModifyOperation> operation) override;
    bool visit(QSharedPointer<RecursiveRemoveOperation> operation) override;

    // For the tasks.
    /// Is cut when the operation ends.
    void keepConnection(const BaseOperation* operation, const QMetaObject::Connection& connection);
    bool dropConnections(const BaseOperation* operation);
    /// Marks what has changed stale, tells of it, and ends the operation.
    void finishOperation(const QWeakPointer<RunnableOperation>& operation, bool succeeded,
                         const QList<ClientFileSystemInfo>& changes = {});
    /// What is left of an upload that will not be finished goes as soon as the client has time.
    /// Once more when it fails: whoever stops what is on the line may have stopped this.
    void removeLeftover(const QString& path, int attempts = 2);
    /// What has stepped aside for another comes back in its place, likewise.
    void putBack(const QString& aside, const QString& path, int attempts = 2);
    /// An order that was stopped on its way may have been carried out: when hidden has gone and the path is
    /// taken, what stepped aside is not needed any more.
    void putBackUnlessReplaced(const QString& aside, const QString& path, const QString& hidden);
    /// Lists it before anything else is done there, also over a link that comes back. next: whether it was
    /// read. Once more when it fails: whoever stops what is on the line may have stopped this.
    void readFirst(const QString& directory, const std::function<void(bool isRead)>& next, int attempts = 2);
    /// Those who show one of them read it again.
    void tellTouched(const QStringList& directories);
    static ClientFileSystemInfo directoryEntry(const QString& path);

private Q_SLOTS:
    void onListFinished(const QString& path, const QList<vantrel::ClientFileSystemInfo>& entries,
                        bool succeeded);
    void onServerConnectionChanged(bool connected);
    void onClienIsLoadingChanged();

private:
    QList<ClientFileSystemInfo> requestDirectoryListing(const QString& path, bool* hasCache, bool* requested);
    bool getDirectoryListing(const QString& path, QList<ClientFileSystemInfo>& result);
    static QList<FileSystemFile> parseFileList(const QString& path,
                                               const QList<ClientFileSystemInfo>& entries);
    static QList<FileSystemDirectory> parseDirectoryList(const QString& path,
                                                         const QList<ClientFileSystemInfo>& entries);
    void listWanted();
    void askForWanted();

    bool isHere(const FileSystem* fileSystem) const { return fileSystem == m_q; }
    template <typename Transfer>
    bool initialize(const QSharedPointer<Transfer>& operation);
    bool initializeLocalTransfer(const QSharedPointer<TransferOperation>& operation);
    bool initializeIncomingTransfer(const QSharedPointer<FileTransferOperation>& operation);
    bool initializeIncomingTransfer(const QSharedPointer<DirectoryTransferOperation>& operation);
    bool initializeOutgoingTransfer(const QSharedPointer<FileTransferOperation>& operation);
    bool initializeOutgoingTransfer(const QSharedPointer<DirectoryTransferOperation>& operation);
    bool initializeDirectoryRemoval(const QSharedPointer<RecursiveRemoveOperation>& operation);
    void doWriteTransfer(const QWeakPointer<FileTransferOperation>& operation);
    void doReadTransfer(const QWeakPointer<FileTransferOperation>& operation);
    void doLocalTransfer(const QWeakPointer<TransferOperation>& operation);
    void doModification(const QWeakPointer<ModifyOperation>& operation);
    void onUploadReady(const QSharedPointer<FileTransferOperation>& operation, const ServerUpload* task);
    void onDownloadReady(const QSharedPointer<FileTransferOperation>& operation, ServerDownload* task);
    void disconnectOperation(const QSharedPointer<RunnableOperation>& operation);
    void tellLoading();
    void tellTree(const QString& path);

    ServerFileSystem* m_q;
    QSharedPointer<FileSystemClient> m_client;
    QUrl m_server;
    ServerListings m_listings;
    QSet<QString> m_invalidPaths; // what the server refused to list
    QMap<const BaseOperation*, QList<QMetaObject::Connection>> m_operationConnections;
    ServerCommands m_commands;
    ServerMetadata m_metadata;
    QString m_wantedPath;         // asked for while the client was busy; the last one counts
    QString m_listedPath;         // what the client lists for whoever reads; empty for nothing
    QString m_givenUpPath;        // the same, once nobody wants it
    bool m_isToldLoading = false; // the last that isLoadingChanged() said
};

} // namespace vantrel
