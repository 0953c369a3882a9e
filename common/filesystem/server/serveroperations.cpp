// What the server file system does for operations.

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/directorytransferoperation.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/recursiveremoveoperation.h"
#include "common/filesystem/server/serverchange.h"
#include "common/filesystem/server/serverdownload.h"
#include "common/filesystem/server/serverfilesystem_p.h"
#include "common/filesystem/server/serverupload.h"

namespace vantrel {

template <typename Transfer>
bool ServerFileSystemPrivate::initialize(const QSharedPointer<Transfer>& operation)
{
    const bool isFromHere = isHere(operation->from().fileSystem);
    const bool isToHere = isHere(operation->to().fileSystem);
    if (isFromHere && isToHere)
        return initializeLocalTransfer(operation);
    if (isToHere)
        return initializeIncomingTransfer(operation);
    return isFromHere && initializeOutgoingTransfer(operation);
}

bool ServerFileSystemPrivate::visit(QSharedPointer<FileTransferOperation> operation)
{
    return initialize(operation);
}

bool ServerFileSystemPrivate::visit(QSharedPointer<DirectoryTransferOperation> operation)
{
    return initialize(operation);
}

bool ServerFileSystemPrivate::visit(QSharedPointer<ModifyOperation> operation)
{
    if (!isHere(operation->target().fileSystem))
        return false;
    connect(operation.data(), &BaseOperation::operationStarted, this,
            [this, ref = QWeakPointer<ModifyOperation>(operation)] { doModification(ref); });
    return true;
}

bool ServerFileSystemPrivate::visit(QSharedPointer<RecursiveRemoveOperation> operation)
{
    return isHere(operation->target().fileSystem) && initializeDirectoryRemoval(operation);
}

bool ServerFileSystemPrivate::initializeLocalTransfer(const QSharedPointer<TransferOperation>& operation)
{
    connect(operation.data(), &BaseOperation::operationStarted, this,
            [this, ref = QWeakPointer<TransferOperation>(operation)] { doLocalTransfer(ref); });
    return true;
}

bool ServerFileSystemPrivate::initializeIncomingTransfer(
    const QSharedPointer<FileTransferOperation>& operation)
{
    connect(operation.data(), &BaseOperation::operationStarted, this,
            [this, ref = QWeakPointer<FileTransferOperation>(operation)] { doWriteTransfer(ref); });
    return true;
}

bool ServerFileSystemPrivate::initializeOutgoingTransfer(
    const QSharedPointer<FileTransferOperation>& operation)
{
    connect(operation.data(), &BaseOperation::operationStarted, this,
            [this, ref = QWeakPointer<FileTransferOperation>(operation)] { doReadTransfer(ref); });
    return true;
}

/// The parts of an upload tell nobody of what they changed: the whole does, at its end.
bool ServerFileSystemPrivate::initializeIncomingTransfer(
    const QSharedPointer<DirectoryTransferOperation>& operation)
{
    DirectoryTransferOperation* raw = operation.data();
    connect(raw, &DirectoryTransferOperation::directoryListingFinished, this,
            [this] { Q_EMIT m_q->isLoadingChanged(isLoading()); });
    connect(raw, &BaseOperation::operationStopped, this, [this, raw] {
        qCInfo(lcFileSystem) << "Directory transfer operation stopped. Operation:" << *raw;
        Q_EMIT m_q->isLoadingChanged(isLoading());
        const QString to = normalizePath(raw->to().fullPath);
        m_listings.markStale(to);
        tellTree(raw->destinationOf(raw->from().fullPath));
        Q_EMIT m_q->directoryChanged(FileSystemDirectory::fromFullPath(to));
    });
    return true;
}

bool ServerFileSystemPrivate::initializeOutgoingTransfer(
    const QSharedPointer<DirectoryTransferOperation>& operation)
{
    DirectoryTransferOperation* raw = operation.data();
    connect(raw, &DirectoryTransferOperation::directoryListingFinished, this,
            [this] { Q_EMIT m_q->isLoadingChanged(isLoading()); });
    connect(raw, &BaseOperation::operationStopped, this, [this, raw] {
        if (raw->transferType() == TransferOperation::Move) {
            const QString from = normalizePath(raw->from().fullPath);
            tellTree(from);
            m_listings.markStale(getParentPath(from));
            Q_EMIT m_q->directoryChanged(FileSystemDirectory::fromFullPath(from));
            Q_EMIT m_q->directoryChanged(FileSystemDirectory::fromFullPath(getParentPath(from)));
        }
        Q_EMIT m_q->isLoadingChanged(isLoading());
    });
    return true;
}

/// Those of the directories at and below the path that somebody shows are to be read again.
void ServerFileSystemPrivate::tellTree(const QString& path)
{
    for (const QString& directory : m_listings.markTreeStale(path))
        Q_EMIT m_q->directoryChanged(FileSystemDirectory::fromFullPath(directory));
}

bool ServerFileSystemPrivate::initializeDirectoryRemoval(
    const QSharedPointer<RecursiveRemoveOperation>& operation)
{
    const QWeakPointer<RecursiveRemoveOperation> ref(operation);
    connect(operation.data(), &RecursiveRemoveOperation::contentIsRemoved, this, [this, ref](bool succeeded) {
        const auto removal = ref.toStrongRef();
        if (!removal)
            return;
        qCInfo(lcFileSystem) << "Removal of sub-content" << (succeeded ? "succeeded" : "failed") << "for"
                             << *removal;
        if (!removal->isRunning())
            return; // it was aborted
        if (succeeded)
            doModification(ref);
        else
            finishOperation(ref, false, {directoryEntry(getParentPath(removal->target().fullPath))});
    });
    return true;
}

void ServerFileSystemPrivate::doWriteTransfer(const QWeakPointer<FileTransferOperation>& ref)
{
    const auto operation = ref.toStrongRef();
    if (!operation)
        return;
    if (!operation->input() || !operation->input()->isOpen()) {
        finishOperation(ref, false);
        return;
    }
    auto* task = new ServerUpload(this, operation);
    keepConnection(operation.data(),
                   connect(operation.data(), &RunnableOperation::targetIsReady, this, [this, ref, task] {
                       if (const auto transfer = ref.toStrongRef())
                           onUploadReady(transfer, task);
                   }));
    task->start();
}

void ServerFileSystemPrivate::onUploadReady(const QSharedPointer<FileTransferOperation>& operation,
                                            const ServerUpload* task)
{
    bool success = false;
    if (!operation->isReady(&success))
        return;
    if (success && operation->parentOperation())
        finishOperation(operation, true);
    else
        finishOperation(operation, success, {directoryEntry(getParentPath(task->destination()))});
}

void ServerFileSystemPrivate::doReadTransfer(const QWeakPointer<FileTransferOperation>& ref)
{
    const auto operation = ref.toStrongRef();
    if (!operation)
        return;
    if (!operation->output() || !operation->output()->isOpen()) {
        finishOperation(ref, false);
        return;
    }
    auto* task = new ServerDownload(this, operation);
    keepConnection(operation.data(),
                   connect(operation.data(), &RunnableOperation::targetIsReady, this, [this, ref, task] {
                       if (const auto transfer = ref.toStrongRef())
                           onDownloadReady(transfer, task);
                   }));
    task->start();
}

void ServerFileSystemPrivate::onDownloadReady(const QSharedPointer<FileTransferOperation>& operation,
                                              ServerDownload* task)
{
    bool success = false;
    if (!operation->isReady(&success))
        return;
    if (success && operation->transferType() == TransferOperation::Move)
        task->removeSource();
    else
        finishOperation(operation, success);
}

void ServerFileSystemPrivate::doLocalTransfer(const QWeakPointer<TransferOperation>& ref)
{
    if (const auto operation = ref.toStrongRef())
        (new ServerRelocation(this, operation))->start();
}

void ServerFileSystemPrivate::doModification(const QWeakPointer<ModifyOperation>& ref)
{
    if (const auto operation = ref.toStrongRef())
        (new ServerChange(this, operation))->start();
}

void ServerFileSystemPrivate::keepConnection(const BaseOperation* operation,
                                             const QMetaObject::Connection& connection)
{
    m_operationConnections[operation].append(connection);
}

ClientFileSystemInfo ServerFileSystemPrivate::directoryEntry(const QString& path)
{
    const FileSystemDirectory directory = FileSystemDirectory::fromFullPath(normalizePath(path));
    return {ClientFileSystemType::Directory, directory.name, directory.fullPath, 0, false};
}

void ServerFileSystemPrivate::finishOperation(const QWeakPointer<RunnableOperation>& ref, bool succeeded,
                                              const QList<ClientFileSystemInfo>& changes)
{
    const auto operation = ref.toStrongRef();
    if (!operation) {
        qCWarning(lcFileSystem) << "Finished operation that was already deleted";
        return;
    }
    qCDebug(lcFileSystem) << "Operation" << *operation << "finished. Running:" << operation->isRunning()
                          << "Succeeded:" << succeeded;
    for (const ClientFileSystemInfo& change : changes) {
        const bool isFile = change.type == ClientFileSystemType::File;
        if (!m_listings.markStale(isFile ? getParentPath(change.path) : change.path))
            qCWarning(lcFileSystem) << "Failed to find matching list request for path" << change.path
                                    << "in operation" << *operation;
    }
    for (const ClientFileSystemInfo& change : changes) {
        if (change.type == ClientFileSystemType::Directory)
            Q_EMIT m_q->directoryChanged(FileSystemDirectory::fromFullPath(change.path));
        else if (change.type == ClientFileSystemType::File)
            Q_EMIT m_q->fileChanged({change.name, change.sizeBytes,
                                     FileSystemDirectory::fromFullPath(getParentPath(change.path))});
    }
    disconnectOperation(operation);
    listWanted(); // before what is next in the queue has the client again
    if (!operation->isRunning())
        return;
    qCDebug(lcFileSystem) << "About to" << (succeeded ? "finish" : "abort") << "operation" << *operation;
    if (succeeded)
        operation->finish();
    else
        operation->abort();
}

void ServerFileSystemPrivate::disconnectOperation(const QSharedPointer<RunnableOperation>& operation)
{
    if (dropConnections(operation.data()))
        qCDebug(lcFileSystem) << "Removed operation" << *operation
                              << "active operations - Count:" << m_operationConnections.size();
    else
        qCDebug(lcFileSystem) << "Operation" << *operation
                              << "finished but it had no connected handler function";
}

bool ServerFileSystemPrivate::dropConnections(const BaseOperation* operation)
{
    const QList<QMetaObject::Connection> connections = m_operationConnections.take(operation);
    for (const QMetaObject::Connection& connection : connections)
        disconnect(connection);
    return !connections.isEmpty();
}

void ServerFileSystemPrivate::removeLeftover(const QString& path, int attempts)
{
    m_commands.ask(this, {ServerCommands::Kind::Remove,
                          [path](FileSystemClient& client) { return client.remove(path); },
                          [this, path, attempts](ServerCommands::Outcome outcome) {
                              if (outcome == ServerCommands::Outcome::LinkLost)
                                  removeLeftover(path, attempts);
                              else if (outcome == ServerCommands::Outcome::Failed && attempts > 1)
                                  removeLeftover(path, attempts - 1);
                              else
                                  m_listings.remove(path);
                          }});
}

void ServerFileSystemPrivate::putBack(const QString& aside, const QString& path, int attempts)
{
    m_commands.ask(this, {ServerCommands::Kind::Move,
                          [aside, path](FileSystemClient& client) { return client.move(aside, path); },
                          [this, aside, path, attempts](ServerCommands::Outcome outcome) {
                              if (outcome == ServerCommands::Outcome::LinkLost)
                                  return putBack(aside, path, attempts);
                              if (outcome == ServerCommands::Outcome::Failed && attempts > 1)
                                  return putBack(aside, path, attempts - 1);
                              tellTouched({getParentPath(path)});
                          }});
}

void ServerFileSystemPrivate::putBackUnlessReplaced(const QString& aside, const QString& path,
                                                    const QString& hidden)
{
    const auto decide = [this, aside, path, hidden](bool isRead) {
        // Later on hidden may have been removed, and tells nothing.
        if (!isRead || !m_listings.entry(path) || m_listings.entry(hidden))
            return putBack(aside, path);
        removeLeftover(aside);
        tellTouched({getParentPath(path)});
    };
    const QString from = getParentPath(hidden);
    const QString to = getParentPath(path);
    readFirst(from, [this, from, to, decide](bool isRead) {
        if (isRead && from != to)
            readFirst(to, decide);
        else
            decide(isRead);
    });
}

void ServerFileSystemPrivate::readFirst(const QString& directory, const std::function<void(bool)>& next,
                                        int attempts)
{
    const auto answer = [this, directory, next, attempts](ServerCommands::Outcome outcome) {
        if (outcome == ServerCommands::Outcome::LinkLost)
            readFirst(directory, next, attempts);
        else if (outcome == ServerCommands::Outcome::Failed && attempts > 1)
            readFirst(directory, next, attempts - 1);
        else
            next(outcome == ServerCommands::Outcome::Done);
    };
    m_commands.askFirst(this,
                        {ServerCommands::Kind::List,
                         [directory](FileSystemClient& client) { return client.list(directory); }, answer});
}

void ServerFileSystemPrivate::tellTouched(const QStringList& directories)
{
    for (const QString& directory : directories) {
        m_listings.markStale(directory);
        Q_EMIT m_q->directoryChanged(FileSystemDirectory::fromFullPath(directory));
    }
}

} // namespace vantrel
