#include "common/filesystem/local/localfilesystem_p.h"

#include "common/filesystem/local/localfilesystem.h"
#include "common/filesystem/local/modifywork.h"
#include "common/filesystem/local/removalwork.h"
#include "common/filesystem/local/transferwork.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/directorytransferoperation.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/modifyoperation.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

namespace vantrel {

LocalFileSystemPrivate::LocalFileSystemPrivate(LocalFileSystem* owner)
    : m_owner(owner)
    , m_streams(
          owner,
          [this](FileJob::Work work, std::function<void(const JobResult&)> onFinished) {
              connect(startJob(std::move(work)), &FileJob::finished, this, std::move(onFinished));
          },
          nullptr)
{
    // An operation at a time is the rule; one that winds down or waits for an answer must not hold the next
    // one up.
    m_pool.setMaxThreadCount(4);
    connect(&m_listings, &LocalListings::touched, this, &LocalFileSystemPrivate::onDirectoryChanged);
    connect(&m_listings, &LocalListings::changed, this, &LocalFileSystemPrivate::announceDirectory);
    connect(&m_streams, &LocalStreams::progressed, this, &LocalFileSystemPrivate::onFileChanged);
    const auto refreshParent = [this](const QString& path) { m_listings.refresh(getParentPath(path)); };
    connect(&m_streams, &LocalStreams::received, this, refreshParent);
    connect(&m_streams, &LocalStreams::removed, this, refreshParent);
    if (QCoreApplication::instance())
        connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
                &LocalFileSystemPrivate::stopJobs);
}

LocalFileSystemPrivate::~LocalFileSystemPrivate()
{
    stopJobs();
}

void LocalFileSystemPrivate::stopJobs()
{
    for (FileJob* job : findChildren<FileJob*>(QString(), Qt::FindDirectChildrenOnly))
        job->cancel();
    m_pool.waitForDone();
}

bool LocalFileSystemPrivate::isHere(const FileSystem* fileSystem) const
{
    return fileSystem == m_owner;
}

bool LocalFileSystemPrivate::findContent(const QString& path, const DirectoryContent** content)
{
    const QDir dir(path);
    if (!dir.isAbsolute())
        return false;
    if (!m_knock.answers(path)) {
        awaitDisk(path);
        return true;
    }
    if (!dir.exists())
        return false;
    m_listings.watch(path);
    *content = m_listings.find(path);
    return true;
}

/// Whoever wants to see it asks again once its disk answers, or hears that it cannot be seen.
void LocalFileSystemPrivate::awaitDisk(const QString& path)
{
    if (m_awaited.contains(path))
        return;
    m_awaited.insert(path);
    const auto tell = [this, path](bool isAnswered) {
        m_awaited.remove(path);
        if (isAnswered)
            return announceDirectory(path);
        qCWarning(lcFileSystem) << "Unable to read directory of a disk that does not answer:" << path;
        Q_EMIT m_owner->invalidDirectoryPathRequest(path);
    };
    // Not from within the question of the one who is to hear it.
    const auto tellSoon = [this, tell](bool isAnswered) {
        QMetaObject::invokeMethod(
            this, [tell, isAnswered] { tell(isAnswered); }, Qt::QueuedConnection);
    };
    m_knock.whenItAnswers(path, this, tellSoon);
}

void LocalFileSystemPrivate::onDirectoryChanged(const QString& path)
{
    // What comes in would make the views of the directory load without end.
    if (!m_streams.isReceivingInto(path))
        m_listings.refresh(path);
}

void LocalFileSystemPrivate::announceDirectory(const QString& path)
{
    qCInfo(lcFileSystem) << "Local file system directory changed:" << path;
    const QDir dir(path);
    Q_EMIT m_owner->directoryChanged({dir.dirName(), dir.absolutePath()});
}

void LocalFileSystemPrivate::onFileChanged(const QString& path, qint64 sizeBytes)
{
    qCInfo(lcFileSystem) << "Local file system file changed:" << path;
    const QFileInfo info(path);
    Q_EMIT m_owner->fileChanged(
        {info.fileName(), sizeBytes, {info.dir().dirName(), info.dir().absolutePath()}});
}

bool LocalFileSystemPrivate::visit(QSharedPointer<FileTransferOperation> operation)
{
    const bool isFromHere = isHere(operation->from().fileSystem);
    const bool isToHere = isHere(operation->to().fileSystem);
    if (isFromHere && isToHere)
        return initializeLocalTransfer(operation);
    if (isToHere)
        return m_streams.initializeIncomingTransfer(operation);
    return isFromHere && m_streams.initializeOutgoingTransfer(operation);
}

bool LocalFileSystemPrivate::visit(QSharedPointer<DirectoryTransferOperation> operation)
{
    const bool isFromHere = isHere(operation->from().fileSystem);
    const bool isToHere = isHere(operation->to().fileSystem);
    if (isFromHere && isToHere)
        return initializeLocalTransfer(operation);
    return isToHere || (isFromHere && initializeOutgoingTransfer(operation));
}

bool LocalFileSystemPrivate::visit(QSharedPointer<ModifyOperation> operation)
{
    return isHere(operation->target().fileSystem) && initializeModification(operation);
}

bool LocalFileSystemPrivate::visit(QSharedPointer<RecursiveRemoveOperation>)
{
    return true;
}

template <typename Operation>
bool LocalFileSystemPrivate::initializeLocalTransfer(const QSharedPointer<Operation>& operation)
{
    const QWeakPointer<Operation> ref(operation);
    switch (operation->transferType()) {
    case TransferOperation::Move:
        connect(operation.data(), &BaseOperation::operationStarted, this, [this, ref] { doMove(ref); });
        return true;
    case TransferOperation::Copy:
        connect(operation.data(), &BaseOperation::operationStarted, this, [this, ref] { doCopy(ref); });
        return true;
    }
    return false;
}

bool LocalFileSystemPrivate::initializeOutgoingTransfer(
    const QSharedPointer<DirectoryTransferOperation>& operation)
{
    if (QDir(operation->from().fullPath).exists())
        return true;
    qCWarning(lcFileSystem) << "Failed to visit directory transfer because source path doesn't exist in"
                            << *operation;
    return false;
}

bool LocalFileSystemPrivate::initializeModification(const QSharedPointer<ModifyOperation>& operation)
{
    const QWeakPointer<ModifyOperation> ref(operation);
    switch (operation->modifyType()) {
    case ModifyOperation::Rename:
        connect(operation.data(), &BaseOperation::operationStarted, this, [this, ref] { doRename(ref); });
        return true;
    case ModifyOperation::Remove:
        connect(operation.data(), &BaseOperation::operationStarted, this, [this, ref] { doRemove(ref); });
        return true;
    case ModifyOperation::Create:
        connect(operation.data(), &BaseOperation::operationStarted, this, [this, ref] { doCreate(ref); });
        return true;
    }
    return false;
}

// A job stops when its operation is aborted or goes; finished() comes all the same.
FileJob* LocalFileSystemPrivate::startJob(FileJob::Work work, RunnableOperation* operation)
{
    const auto* transfer = qobject_cast<TransferOperation*>(operation);
    auto* job =
        new FileJob(std::move(work), transfer ? transfer->conflictPolicy() : ConflictPolicy::Refuse, this);
    if (operation) {
        connect(operation, &RunnableOperation::operationAborted, job, &FileJob::cancel);
        connect(operation, &QObject::destroyed, job, &FileJob::cancel);
    }
    job->start(&m_pool);
    return job;
}

void LocalFileSystemPrivate::finishOperation(const QSharedPointer<RunnableOperation>& operation,
                                             const JobResult& result)
{
    if (operation->hasFinished())
        return;
    if (result.outcome == JobResult::Done || result.outcome == JobResult::Skipped) {
        operation->setProgress(1);
        operation->finish();
        return;
    }
    for (const QString& error : result.errors)
        operation->addErrorText(error);
    operation->abort();
}

void LocalFileSystemPrivate::doMove(QWeakPointer<FileTransferOperation> operation)
{
    startTransfer(operation.toStrongRef(), QStringLiteral("file"));
}

void LocalFileSystemPrivate::doMove(QWeakPointer<DirectoryTransferOperation> operation)
{
    startTransfer(operation.toStrongRef(), QStringLiteral("directory"));
}

void LocalFileSystemPrivate::doCopy(QWeakPointer<FileTransferOperation> operation)
{
    startTransfer(operation.toStrongRef(), QStringLiteral("file"));
}

void LocalFileSystemPrivate::doCopy(QWeakPointer<DirectoryTransferOperation> operation)
{
    startTransfer(operation.toStrongRef(), QStringLiteral("directory"));
}

void LocalFileSystemPrivate::startTransfer(const QSharedPointer<TransferOperation>& operation,
                                           const QString& kind)
{
    if (!operation)
        return;
    const auto work = [from = operation->from().fullPath, to = operation->to().fullPath,
                       isMove = operation->transferType() == TransferOperation::Move](JobControl& control) {
        return TransferWork(control, isMove).run(from, to);
    };
    TransferOperation* raw = operation.data();
    FileJob* job = startJob(work, raw);
    connect(job, &FileJob::progressed, raw, [raw](quint64 done, quint64 total) {
        if (raw->hasFinished())
            return;
        if (raw->totalSizeBytes() != total)
            raw->setTotalSizeBytes(total);
        raw->setTransferredBytes(done);
        if (total > 0)
            raw->setProgress(std::min(1.0, static_cast<double>(done) / static_cast<double>(total)));
    });
    connect(job, &FileJob::conflictFound, raw, &TransferOperation::askConflict);
    connect(raw, &TransferOperation::conflictAnswered, job, &FileJob::answer);
    connect(job, &FileJob::finished, this,
            [this, kind, ref = QWeakPointer<TransferOperation>(operation)](const JobResult& result) {
                if (const auto transfer = ref.toStrongRef())
                    finishTransfer(transfer, kind, result);
            });
}

void LocalFileSystemPrivate::finishTransfer(const QSharedPointer<TransferOperation>& operation,
                                            const QString& kind, const JobResult& result)
{
    const QString from = operation->from().fullPath;
    const QString to = result.destination;
    const bool isMove = operation->transferType() == TransferOperation::Move;
    const char* verb = isMove ? "move" : "copy";
    switch (result.outcome) {
    case JobResult::Done:
        qCInfo(lcFileSystem).noquote()
            << (isMove ? "Moved" : "Copied") << kind << "from" << from << "to" << to;
        break;
    case JobResult::Skipped:
        qCInfo(lcFileSystem).noquote() << "Left out" << kind << from << "since" << to << "already exists";
        break;
    case JobResult::Inside:
        qCWarning(lcFileSystem).noquote() << "Unable to" << verb << from << "inside a sub-directory" << to;
        break;
    case JobResult::Exists:
        qCWarning(lcFileSystem).noquote()
            << "Unable to" << verb << kind << "from" << from << "to" << to << "since it already exists";
        break;
    case JobResult::Missing:
        qCWarning(lcFileSystem).noquote() << "Source" << kind << from << "doesn't exist.";
        break;
    case JobResult::Canceled:
        qCInfo(lcFileSystem).noquote() << "Stopped to" << verb << kind << "from" << from << "to" << to;
        break;
    case JobResult::Failed:
        qCWarning(lcFileSystem).noquote() << "Failed to" << verb << kind << "from" << from << "to" << to;
        break;
    }
    m_listings.refresh(getParentPath(to));
    if (isMove)
        m_listings.refresh(getParentPath(from));
    operation->setSkippedCount(result.skipped);
    finishOperation(operation, result);
}

void LocalFileSystemPrivate::doRemove(QWeakPointer<ModifyOperation> operation)
{
    const auto removal = operation.toStrongRef();
    if (!removal)
        return;
    if (removal->modifiedTargetType() == ModifyOperation::Undefined) {
        qCWarning(lcFileSystem) << "Unknow target type for modification" << *removal;
        removal->abort();
        return;
    }
    startModification(
        removal, [path = removal->target().fullPath, onlyEmpty = removal->onlyEmpty()](JobControl& control) {
            return RemovalWork(control).run(path, onlyEmpty);
        });
}

void LocalFileSystemPrivate::doCreate(QWeakPointer<ModifyOperation> operation)
{
    const auto creation = operation.toStrongRef();
    if (!creation)
        return;
    const bool isDirectory = creation->modifiedTargetType() == ModifyOperation::Directory;
    startModification(creation, [path = creation->target().fullPath, isDirectory,
                                 accepts = creation->acceptsExisting()](JobControl&) {
        return createItem(path, isDirectory, accepts);
    });
}

void LocalFileSystemPrivate::doRename(QWeakPointer<ModifyOperation> operation)
{
    const auto renaming = operation.toStrongRef();
    if (!renaming)
        return;
    const bool isDirectory = renaming->modifiedTargetType() == ModifyOperation::Directory;
    startModification(renaming, [path = renaming->target().fullPath, name = renaming->newName(),
                                 isDirectory](JobControl&) { return renameItem(path, name, isDirectory); });
}

void LocalFileSystemPrivate::startModification(const QSharedPointer<ModifyOperation>& operation,
                                               FileJob::Work work)
{
    ModifyOperation* raw = operation.data();
    FileJob* job = startJob(std::move(work), raw);
    connect(job, &FileJob::progressed, raw, [raw](quint64 done, quint64 total) {
        if (!raw->hasFinished() && total > 0)
            raw->setProgress(std::min(1.0, static_cast<double>(done) / static_cast<double>(total)));
    });
    connect(job, &FileJob::finished, this,
            [this, ref = QWeakPointer<ModifyOperation>(operation)](const JobResult& result) {
                if (const auto modification = ref.toStrongRef())
                    finishModification(modification, result);
            });
}

void LocalFileSystemPrivate::finishModification(const QSharedPointer<ModifyOperation>& operation,
                                                const JobResult& result)
{
    const QString path = operation->target().fullPath;
    const bool isDone = result.outcome == JobResult::Done || result.outcome == JobResult::Skipped;
    const QString kind = operation->modifiedTargetType() == ModifyOperation::Directory
                             ? QStringLiteral("directory")
                             : QStringLiteral("file");
    switch (operation->modifyType()) {
    case ModifyOperation::Remove:
        if (isDone)
            qCInfo(lcFileSystem).noquote() << "Removed" << kind << path;
        else
            qCWarning(lcFileSystem).noquote() << "Failed to remove file/directory" << path;
        break;
    case ModifyOperation::Create:
        if (isDone)
            qCInfo(lcFileSystem).noquote() << "Created a new" << kind << path;
        else
            qCWarning(lcFileSystem) << "Failed to create a" << operation->modifiedTargetType() << path;
        break;
    case ModifyOperation::Rename:
        if (isDone)
            qCInfo(lcFileSystem).noquote() << "Renamed" << kind << path << "to" << operation->newName();
        else
            qCWarning(lcFileSystem) << "Failed to rename" << operation->modifiedTargetType() << path << "to"
                                    << operation->newName();
        break;
    }
    m_listings.refresh(getParentPath(path));
    finishOperation(operation, result);
}

} // namespace vantrel
