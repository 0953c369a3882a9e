#pragma once

#include "common/filesystem/local/diskknock.h"
#include "common/filesystem/local/filejob.h"
#include "common/filesystem/local/locallistings.h"
#include "common/filesystem/local/localstreams.h"
#include "common/filesystem/model/operationvisitor.h"

#include <QSet>
#include <QThreadPool>

namespace vantrel {

class LocalFileSystem;
class RunnableOperation;
class TransferOperation;

/// Does the work of LocalFileSystem: visits operations and starts their jobs.
class LocalFileSystemPrivate : public QObject, public OperationVisitor
{
    Q_OBJECT

public:
    explicit LocalFileSystemPrivate(LocalFileSystem* owner);
    ~LocalFileSystemPrivate() override;

    /// False when there is no such directory; the content is null while it is read.
    bool findContent(const QString& path, const DirectoryContent** content);
    /// By what was read of its directory last.
    FileSystem::ItemType typeOf(const QString& path) const { return m_listings.typeOf(path); }
    int otherFiles(const QString& path) const { return m_listings.otherFiles(path); }
    DiskKnock& knock() { return m_knock; }

    bool visit(QSharedPointer<FileTransferOperation> operation) override;
    bool visit(QSharedPointer<DirectoryTransferOperation> operation) override;
    bool visit(QSharedPointer<ModifyOperation> operation) override;
    /// Nothing to do: a local directory is removed by a ModifyOperation.
    bool visit(QSharedPointer<RecursiveRemoveOperation> operation) override;

private:
    bool isHere(const FileSystem* fileSystem) const;
    template <typename Operation>
    bool initializeLocalTransfer(const QSharedPointer<Operation>& operation);
    bool initializeOutgoingTransfer(const QSharedPointer<DirectoryTransferOperation>& operation);
    bool initializeModification(const QSharedPointer<ModifyOperation>& operation);

    void doMove(QWeakPointer<FileTransferOperation> operation);
    void doMove(QWeakPointer<DirectoryTransferOperation> operation);
    void doCopy(QWeakPointer<FileTransferOperation> operation);
    void doCopy(QWeakPointer<DirectoryTransferOperation> operation);
    void doRemove(QWeakPointer<ModifyOperation> operation);
    void doCreate(QWeakPointer<ModifyOperation> operation);
    void doRename(QWeakPointer<ModifyOperation> operation);

    void startTransfer(const QSharedPointer<TransferOperation>& operation, const QString& kind);
    void finishTransfer(const QSharedPointer<TransferOperation>& operation, const QString& kind,
                        const JobResult& result);
    void startModification(const QSharedPointer<ModifyOperation>& operation, FileJob::Work work);
    void finishModification(const QSharedPointer<ModifyOperation>& operation, const JobResult& result);
    /// Adds the errors of the job and ends the operation, unless that has ended by itself.
    void finishOperation(const QSharedPointer<RunnableOperation>& operation, const JobResult& result);
    FileJob* startJob(FileJob::Work work, RunnableOperation* operation = nullptr);

    void onDirectoryChanged(const QString& path);
    void onFileChanged(const QString& path, qint64 sizeBytes);
    void announceDirectory(const QString& path);
    void awaitDisk(const QString& path);
    void stopJobs();

    LocalFileSystem* m_owner;
    DiskKnock m_knock;
    QSet<QString> m_awaited; // directories that somebody wants to see, on disks that do not answer
    LocalListings m_listings;
    LocalStreams m_streams;
    QThreadPool m_pool;
};

} // namespace vantrel
