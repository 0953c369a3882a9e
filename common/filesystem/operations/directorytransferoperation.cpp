#include "common/filesystem/operations/directorytransferoperation.h"

#include "common/filesystem/model/filesize.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/operationvisitor.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/abstractoperationfactory.h"
#include "common/filesystem/operations/directorypaths.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/modifyoperation.h"

#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantrel {

DirectoryTransferOperation::DirectoryTransferOperation(AbstractOperationFactory* factory,
                                                       FileSystemTarget from, FileSystemTarget to,
                                                       TransferType type, QObject* parent)
    : TransferOperation(std::move(from), std::move(to), type, parent)
    , m_factory(factory)
    , m_lister(new RecursiveDirectoryLister(this->from().fileSystem, this->from().fullPath, 0, nullptr))
    , m_runner(std::make_unique<RecursiveOperationRunner>(this))
    , m_name(getNameInPath(this->from().fullPath))
{
    connect(m_lister.data(), &RecursiveDirectoryLister::hasFinishedChanged, this,
            &DirectoryTransferOperation::handleDirectoryListingHasFinishedChanged);
    connect(m_runner.get(), &RecursiveOperationRunner::stateChanged, this,
            &DirectoryTransferOperation::handleOperationRunnerStateChanged);
    connect(m_runner.get(), &RecursiveOperationRunner::progressChanged, this,
            &DirectoryTransferOperation::updateProgress);
    connect(this, &TransferOperation::conflictAnswered, this, [this](ConflictPolicy answer) {
        if (std::exchange(m_isNameAsked, false)) // an answer that asks again is none
            meetExisting(answer == ConflictPolicy::Ask ? ConflictPolicy::Refuse : answer);
    });
    connect(this, &BaseOperation::operationStopped, this, &DirectoryTransferOperation::forgetParts);
}

DirectoryTransferOperation::~DirectoryTransferOperation() = default;

void DirectoryTransferOperation::print(QDebug& debug) const
{
    debug << metaObject()->className() << ", type:" << transferType() << ", from:";
    printTarget(debug, from());
    debug << ", to:";
    printTarget(debug, to());
    debug << ", state:" << state() << ", errors:" << errors().size();
}

QList<OperationError> DirectoryTransferOperation::errors() const
{
    return TransferOperation::errors() + m_runner->errors();
}

bool DirectoryTransferOperation::accept(OperationVisitor* visitor)
{
    const auto self = sharedFromThis().staticCast<DirectoryTransferOperation>();
    return self && visitor->visit(self);
}

bool DirectoryTransferOperation::setRunning(bool running)
{
    if (!TransferOperation::setRunning(running))
        return false;
    qCDebug(lcFileSystem) << "Requesting sub-operations to" << (running ? "start" : "stop") << *this;
    if (running) {
        m_bytes.clear();
        m_bytesSum = 0;
        updateProgress();
        // Within one file system that does the whole. Whoever hears of the start is to be done first.
        if (from().fileSystem != to().fileSystem)
            QTimer::singleShot(0, this, &DirectoryTransferOperation::lookAtDestination);
    } else if (m_runner->isRunning()) {
        m_runner->stop();
    }
    return true;
}

/// What is there already decides where the parts go: its directory is read first.
void DirectoryTransferOperation::lookAtDestination()
{
    if (!isRunning())
        return;
    m_destinationLister =
        std::make_unique<RecursiveDirectoryLister>(to().fileSystem, to().fullPath, 1, nullptr);
    connect(m_destinationLister.get(), &RecursiveDirectoryLister::hasFinishedChanged, this,
            &DirectoryTransferOperation::onDestinationRead);
    m_destinationLister->start();
}

void DirectoryTransferOperation::onDestinationRead()
{
    if (!isRunning() || !m_destinationLister || !m_destinationLister->hasFinished())
        return;
    const bool isValid = m_destinationLister->isValid();
    m_destinationLister.release()->deleteLater(); // it is its signal
    const QString path = createJoinedPath(to().fullPath, m_name, false);
    if (!isValid)
        fail(tr("The directory <code>%1</code> could not be read").arg(to().fullPath.toHtmlEscaped()));
    else if (to().fileSystem->getType(path) == FileSystem::Unknown)
        startRunner();
    else // what the attempt before has made is the retry's own
        meetExisting(m_hasPlace ? ConflictPolicy::Replace : conflictPolicy());
}

/// Something has the directory's name at its destination.
void DirectoryTransferOperation::meetExisting(ConflictPolicy policy)
{
    if (!isRunning())
        return;
    const QString path = createJoinedPath(to().fullPath, m_name, false);
    const bool isDirectory = to().fileSystem->getType(path) == FileSystem::Directory;
    switch (policy) {
    case ConflictPolicy::Ask:
        if (!std::exchange(m_isNameAsked, true))
            askConflict({path, isDirectory});
        return;
    case ConflictPolicy::Replace:
        if (!isDirectory)
            return fail(
                tr("A file is in the way of the directory <code>%1</code>").arg(path.toHtmlEscaped()));
        return startRunner();
    case ConflictPolicy::KeepBoth:
        takeFreeName();
        return startRunner();
    case ConflictPolicy::Skip:
        setSkippedCount(1);
        return finish();
    case ConflictPolicy::Refuse:
        return fail(tr("<code>%1</code> exists already").arg(path.toHtmlEscaped()));
    }
}

void DirectoryTransferOperation::takeFreeName()
{
    const auto isTaken = [this](const QString& name) {
        const QString path = createJoinedPath(to().fullPath, name, false);
        return to().fileSystem->getType(path) != FileSystem::Unknown;
    };
    const QString name = m_name;
    for (int number = 2; isTaken(m_name); ++number)
        m_name = QStringLiteral("%1 (%2)").arg(name).arg(number);
}

void DirectoryTransferOperation::startRunner()
{
    if (isRunning())
        m_runner->start();
}

void DirectoryTransferOperation::setRetryOf(const TransferOperation& failed)
{
    TransferOperation::setRetryOf(failed);
    const auto* before = qobject_cast<const DirectoryTransferOperation*>(&failed);
    if (!before || !before->m_hasPlace)
        return;
    m_hasPlace = true;
    m_name = before->m_name;
    m_arrived = before->m_arrived;
    m_verified = before->m_verified;
    m_skipped = before->m_skipped;
}

/// The queue keeps what is over for the life of the process. A retry asks for what has arrived.
void DirectoryTransferOperation::forgetParts()
{
    m_lister->forget();
    m_bytes.clear();
    if (state() == Passed)
        m_arrived.clear();
}

void DirectoryTransferOperation::fail(const QString& message)
{
    addErrorText(message);
    abort();
}

void DirectoryTransferOperation::abort()
{
    if (!canAbort() || std::exchange(m_isStopping, true))
        return;
    const auto total = static_cast<double>(totalSizeBytes());
    // By its bytes: a runner that has failed is done with its progress.
    const double share = total > 0 ? std::min(1.0, static_cast<double>(transferredBytes()) / total) : 0.0;
    addErrorText(tr("<b>Directory transfer interrupted</b> at %1% of %2")
                     .arg(std::lround(share * 100))
                     .arg(fileSizeText(static_cast<qint64>(totalSizeBytes()))));
    qCInfo(lcFileSystem) << "Operation" << *this << "abort requested...";
    Q_EMIT operationAborted();
    m_destinationLister.reset();
    const bool isWorking = m_runner->isRunning();
    setRunning(false);
    // Otherwise the runner says when its part has stopped.
    if (!isWorking && m_runner->state() == RecursiveOperationRunner::Idle)
        setState(Failed);
}

void DirectoryTransferOperation::handleOperationRunnerStateChanged()
{
    qCDebug(lcFileSystem) << "Operation runner state changed to" << m_runner->state() << "in operation"
                          << *this;
    if (m_runner->state() == RecursiveOperationRunner::Failed) {
        qCInfo(lcFileSystem) << "Runner failed. About to abort operation" << *this;
        Q_EMIT errorsChanged();
        abort();
        qCInfo(lcFileSystem) << "Operation" << *this << "was aborted";
        setState(Failed);
    } else if (m_runner->state() == RecursiveOperationRunner::Finished) {
        qCInfo(lcFileSystem) << "Runner succeeded. About to finish operation" << *this;
        finish();
    }
}

void DirectoryTransferOperation::handleDirectoryListingHasFinishedChanged()
{
    qCDebug(lcFileSystem) << "Directory listing for" << m_lister->directoryPath()
                          << "has finished:" << m_lister->hasFinished();
    if (m_lister->hasFinished())
        Q_EMIT directoryListingFinished();
}

void DirectoryTransferOperation::updateProgress()
{
    setProgress(m_runner->progress());
}

int DirectoryTransferOperation::otherFiles() const
{
    return m_lister->otherFiles();
}

QSharedPointer<RecursiveDirectoryLister> DirectoryTransferOperation::directoryLister() const
{
    return m_lister;
}

QList<FileSystemPath> DirectoryTransferOperation::getPathList(RecursiveDirectoryLister::DirectoryItem& item)
{
    QList<FileSystemPath> paths;
    parseDirectoryPaths(paths, getParentPath(from().fullPath), getNameInPath(from().fullPath), item);
    if (transferType() == Move) {
        markLinked(paths, *from().fileSystem);
        appendEmptied(paths);
    }
    setTotalSizeBytes(static_cast<unsigned long long>(item.sizeBytes));
    countArrived(paths);
    checkRoom(item.sizeBytes);
    return paths;
}

/// What a retry leaves out has been transferred.
void DirectoryTransferOperation::countArrived(const QList<FileSystemPath>& paths)
{
    for (const FileSystemPath& path : paths)
        if (path.type == FileSystemPath::File && isThereAlready(path))
            m_bytesSum += path.sizeBytes;
    if (m_bytesSum > 0)
        updateTransferredByteCount();
}

/// A retry needs less; its files look for themselves.
void DirectoryTransferOperation::checkRoom(qint64 neededBytes)
{
    const qint64 free = to().fileSystem->availableBytes(to().fullPath);
    if (isRetry() || free < 0 || neededBytes <= free)
        return;
    fail(tr("There is not enough room: %1 are needed and %2 are free")
             .arg(fileSizeText(neededBytes), fileSizeText(free)));
}

QString DirectoryTransferOperation::destinationOf(const QString& sourcePath) const
{
    const QString source = normalizePath(from().fullPath);
    const qsizetype length = source.endsWith(u'/') ? source.size() : source.size() + 1;
    const QString below = normalizePath(sourcePath).mid(length);
    const QString root = createJoinedPath(to().fullPath, m_name, false);
    return below.isEmpty() ? root : createJoinedPath(root, below, false);
}

OperationPtr DirectoryTransferOperation::createSubOperation(FileSystemPath const& path)
{
    const FileSystemTarget target{to().fileSystem, destinationOf(path.path)};
    qCDebug(lcFileSystem) << "Creating a new transfer operation for"
                          << (path.type == FileSystemPath::File ? "file" : "directory") << path.path
                          << ", relative:" << target.fullPath.mid(to().fullPath.size());
    if (path.isEmptied) {
        const FileSystemTarget emptied{from().fileSystem, path.path};
        const auto removal = QSharedPointer<ModifyOperation>::create(emptied, ModifyOperation::Remove,
                                                                     ModifyOperation::Directory);
        removal->setOnlyEmpty(true);
        return removal;
    }
    if (path.type == FileSystemPath::File)
        return createFileOperation(path, target);
    const OperationPtr creation = m_factory->createDirectoryCreationOperation(target);
    if (auto* modification = qobject_cast<ModifyOperation*>(creation.data()))
        modification->setAcceptsExisting(true);
    if (const auto* runnable = qobject_cast<RunnableOperation*>(creation.data()))
        connect(runnable, &RunnableOperation::operationSucceeded, this, [this] { m_hasPlace = true; });
    return creation;
}

OperationPtr DirectoryTransferOperation::createFileOperation(const FileSystemPath& path,
                                                             const FileSystemTarget& to)
{
    ++m_fileCount;
    // The answer that left it out holds for a retry too.
    if (isThereAlready(path) || m_skipped.contains(path.path))
        return {};
    m_verified.remove(path.path);
    const FileSystemTarget source{from().fileSystem, path.path};
    OperationPtr operation;
    if (transferType() == Copy || path.isLinked)
        operation = m_factory->createCopyOperation(source, to);
    else if (transferType() == Move)
        operation = m_factory->createMoveOperation(source, to);
    else
        qCWarning(lcFileSystem) << "Unknown transfer operation type!";
    auto* transfer = qobject_cast<TransferOperation*>(operation.data());
    if (!transfer) {
        fail(tr("<code>%1</code> is not there any more").arg(path.path.toHtmlEscaped()));
        return {};
    }
    transfer->setParentOperation(sharedFromThis().staticCast<TransferOperation>());
    m_bytes.insert(path.path, 0);
    // Whose signal it is is told along: to look for the sender among thousands takes longer than the
    // transfer.
    connect(transfer, &TransferOperation::transferredBytesChanged, this,
            [this, path = path.path](size_t bytes) {
                handleTransferOperationTransferredBytesChanged(path, bytes);
            });
    connect(transfer, &RunnableOperation::operationSucceeded, this, [this, transfer] { noteEnd(*transfer); });
    return operation;
}

void DirectoryTransferOperation::noteEnd(const TransferOperation& transfer)
{
    const QString path = transfer.from().fullPath;
    if (transfer.skippedCount() > 0) {
        m_skipped.insert(path);
        return;
    }
    m_arrived.insert(path, transfer.to().fullPath);
    if (transfer.isVerified())
        m_verified.insert(path);
}

/// A retry leaves out what the attempt before has brought over, and nothing else: what only has the same name
/// and size may be another file.
bool DirectoryTransferOperation::isThereAlready(const FileSystemPath& path) const
{
    const auto arrived = m_arrived.constFind(path.path);
    return (transferType() == Copy || path.isLinked) && arrived != m_arrived.constEnd() &&
           to().fileSystem->fileSize(*arrived) == static_cast<qint64>(path.sizeBytes);
}

void DirectoryTransferOperation::handleTransferOperationTransferredBytesChanged(const QString& path,
                                                                                size_t bytes)
{
    const auto found = m_bytes.find(path);
    if (found == m_bytes.end())
        return;
    m_bytesSum += bytes - *found;
    *found = bytes;
    updateTransferredByteCount();
}

void DirectoryTransferOperation::updateTransferredByteCount()
{
    setTransferredBytes(m_bytesSum);
}

} // namespace vantrel
