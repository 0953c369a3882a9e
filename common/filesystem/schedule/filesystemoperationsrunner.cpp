#include "common/filesystem/schedule/filesystemoperationsrunner.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/abstractoperationfactory.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/filesystem/schedule/filesystemoperationsrunner_p.h"

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

template <typename Predicate>
OperationPtrList filtered(const OperationPtrList& all, Predicate predicate)
{
    OperationPtrList result;
    std::ranges::copy_if(all, std::back_inserter(result), predicate);
    return result;
}

} // namespace

FileSystemOperationsRunner::FileSystemOperationsRunner(AbstractOperationFactory* factory, QObject* parent)
    : FileSystemOperations(parent)
    , m_private(std::make_unique<FileSystemOperationsRunnerPrivate>(this, factory))
{
}

FileSystemOperationsRunner::~FileSystemOperationsRunner() = default;

OperationPtrList FileSystemOperationsRunner::allOperations() const
{
    return m_private->allOperations;
}

OperationPtrList FileSystemOperationsRunner::activeOperations() const
{
    return filtered(m_private->allOperations,
                    [](const OperationPtr& operation) { return operation->isRunning(); });
}

OperationPtrList FileSystemOperationsRunner::pendingOperations() const
{
    return filtered(m_private->allOperations, [](const OperationPtr& operation) {
        return !operation->isRunning() && !operation->hasFinished();
    });
}

OperationPtrList FileSystemOperationsRunner::finishedOperations() const
{
    return filtered(m_private->allOperations,
                    [](const OperationPtr& operation) { return operation->hasFinished(); });
}

OperationPtrList FileSystemOperationsRunner::findOperations(FileSystem* fileSystem, QString path) const
{
    const FileSystemTarget sought{fileSystem, path};
    return filtered(m_private->allOperations,
                    [&](const OperationPtr& operation) { return operation->targets().contains(sought); });
}

OperationPtr FileSystemOperationsRunner::rename(FileSystem* source, QString path, QString newName)
{
    if (getNameInPath(path) == newName) {
        qCInfo(lcFileSystem) << "Skipping rename with same outcome. Path:" << path << "->" << newName;
        return {};
    }
    return m_private->add(m_private->factory->createRenameOperation({source, normalizePath(path)}, newName));
}

OperationPtr FileSystemOperationsRunner::remove(FileSystem* source, QString path)
{
    return m_private->add(m_private->factory->createRemoveOperation({source, normalizePath(path)}));
}

OperationPtr FileSystemOperationsRunner::createDirectory(FileSystem* source, QString path)
{
    return m_private->add(
        m_private->factory->createDirectoryCreationOperation({source, normalizePath(path)}));
}

OperationPtr FileSystemOperationsRunner::createFile(FileSystem* source, QString path)
{
    return m_private->add(m_private->factory->createFileCreationOperation({source, normalizePath(path)}));
}

OperationPtr FileSystemOperationsRunner::move(FileSystem* fromFileSystem, QString fromPath,
                                              FileSystem* toFileSystem, QString toPath)
{
    const FileSystemTarget from{fromFileSystem, normalizePath(fromPath)};
    const FileSystemTarget to{toFileSystem, normalizePath(toPath)};
    if (from == to) {
        qCInfo(lcFileSystem) << "Skipping move to same path:" << from.fullPath;
        return {};
    }
    return m_private->createMoveOperation(from, to);
}

OperationPtr FileSystemOperationsRunner::copy(FileSystem* fromFileSystem, QString fromPath,
                                              FileSystem* toFileSystem, QString toPath)
{
    const FileSystemTarget from{fromFileSystem, normalizePath(fromPath)};
    const FileSystemTarget to{toFileSystem, normalizePath(toPath)};
    if (from == to) {
        qCInfo(lcFileSystem) << "Skipping copy to same path:" << from.fullPath;
        return {};
    }
    return m_private->createCopyOperation(from, to);
}

OperationPtr FileSystemOperationsRunner::retryOperation(OperationPtr operation)
{
    const auto* failed = qobject_cast<const TransferOperation*>(operation.data());
    if (!failed || failed->state() != RunnableOperation::Failed)
        return {};
    const OperationPtr retry = failed->transferType() == TransferOperation::Move
                                   ? m_private->createMoveOperation(failed->from(), failed->to())
                                   : m_private->createCopyOperation(failed->from(), failed->to());
    if (auto* transfer = qobject_cast<TransferOperation*>(retry.data()))
        transfer->setRetryOf(*failed);
    return retry;
}

bool FileSystemOperationsRunner::startOperation(OperationPtr operation)
{
    if (!operation)
        return false;
    if (operation->isRunning()) {
        qCInfo(lcFileSystem) << "Unable to start operation" << *operation << "since it's already running";
        return false;
    }
    auto* runnable = qobject_cast<RunnableOperation*>(operation.data());
    if (!runnable) {
        qCWarning(lcFileSystem) << "Unable to start operation that is not runnable:" << *operation;
        return false;
    }
    if (!m_private->contains(operation)) {
        qCWarning(lcFileSystem) << "Unable to start operation" << *operation
                                << "that is not part of the runner";
        return false;
    }
    if (operation->hasFinished()) {
        qCInfo(lcFileSystem) << "Unable to start operation" << *operation << "since it has already finished";
        return false;
    }
    if (runnable->isRunning()) {
        qCInfo(lcFileSystem) << "Unable to start operation" << *operation << "since it's alread running";
        return false;
    }
    runnable->run();
    return true;
}

bool FileSystemOperationsRunner::stopOperation(OperationPtr operation)
{
    if (!operation)
        return false;
    if (!operation->isRunning()) {
        qCInfo(lcFileSystem) << "Unable to stop operation" << *operation << "since it's not running";
        return false;
    }
    auto* runnable = qobject_cast<RunnableOperation*>(operation.data());
    if (!runnable) {
        qCWarning(lcFileSystem) << "Unable to stop operation that is not runnable:" << *operation;
        return false;
    }
    if (!m_private->contains(operation)) {
        qCWarning(lcFileSystem) << "Unable to stop operation" << *operation
                                << "that is not part of the runner";
        return false;
    }
    if (operation->hasFinished()) {
        qCInfo(lcFileSystem) << "Unable to start operation" << *operation << "since it has already finished";
        return false;
    }
    runnable->abort();
    return true;
}

void FileSystemOperationsRunner::abortAllOperations()
{
    qCInfo(lcFileSystem) << "Canceling all operations...";
    // Those that wait first, so that none of them starts when the active one ends.
    for (const OperationPtr& operation : pendingOperations())
        if (auto* runnable = qobject_cast<RunnableOperation*>(operation.data()))
            runnable->abort();
    const OperationPtr active = m_private->activeOperation;
    if (auto* runnable = qobject_cast<RunnableOperation*>(active.data()))
        runnable->abort();
}

} // namespace vantrel
