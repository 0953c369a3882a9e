#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/operations/abstractoperationfactory.h"
#include "common/filesystem/operations/modifyoperation.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/filesystem/schedule/filesystemoperationsrunner_p.h"
#include "common/notification/notificationmanagerimpl.h"

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int pollInterval = 1000; // milliseconds; only a fallback: what changes wakes the queue at once

QString textOf(const QList<OperationError>& errors)
{
    QString text;
    for (const OperationError& error : errors)
        text += u'\n' + error.message;
    return text;
}

bool isWaiting(const OperationPtr& operation)
{
    return !operation->isRunning() && !operation->hasFinished();
}

void notify(const QString& title, const QString& details)
{
    NotificationManagerImpl::instance()->createNotification(Notification::ErrorMessage, title, details);
}

} // namespace

FileSystemOperationsRunnerPrivate::FileSystemOperationsRunnerPrivate(
    FileSystemOperationsRunner* runner, AbstractOperationFactory* operationFactory)
    : factory(operationFactory)
    , m_runner(runner)
{
    connect(&m_timer, &QTimer::timeout, this, &FileSystemOperationsRunnerPrivate::runNextOperation);
    connect(&m_watch, &TargetWatch::changed, this, &FileSystemOperationsRunnerPrivate::wake);
    m_timer.start(pollInterval);
}

OperationPtr FileSystemOperationsRunnerPrivate::createCopyOperation(const FileSystemTarget& from,
                                                                    const FileSystemTarget& to)
{
    return add(factory->createCopyOperation(from, to));
}

OperationPtr FileSystemOperationsRunnerPrivate::createMoveOperation(const FileSystemTarget& from,
                                                                    const FileSystemTarget& to)
{
    return add(factory->createMoveOperation(from, to));
}

OperationPtr FileSystemOperationsRunnerPrivate::add(const OperationPtr& operation)
{
    if (!operation)
        return operation;
    allOperations.append(operation);
    for (const FileSystemTarget& target : operation->targets())
        if (target.fileSystem)
            connect(target.fileSystem, &FileSystem::givenUp, this,
                    &FileSystemOperationsRunnerPrivate::onGivenUp, Qt::UniqueConnection);
    Q_EMIT m_runner->pendingOperationsChanged();
    Q_EMIT m_runner->allOperationsChanged();
    showNotificationOnFailure(operation);
    connect(operation.data(), &BaseOperation::operationStopped, this, [this, raw = operation.data()] {
        if (raw == activeOperation.data())
            return;
        Q_EMIT m_runner->pendingOperationsChanged();
        Q_EMIT m_runner->finishedOperationsChanged();
    });
    wake(); // not before its caller is done with it
    return operation;
}

void FileSystemOperationsRunnerPrivate::wake()
{
    if (std::exchange(m_isWoken, true))
        return;
    QMetaObject::invokeMethod(this, &FileSystemOperationsRunnerPrivate::runNextOperation,
                              Qt::QueuedConnection);
}

void FileSystemOperationsRunnerPrivate::runNextOperation()
{
    m_isWoken = false;
    if (activeOperation && !activeOperation->hasFinished())
        return;
    const OperationPtr next = findNextPending();
    if (!next)
        return;
    for (const FileSystemTarget& target : next->targets())
        if (!target.fileSystem)
            qCInfo(lcFileSystem) << "fileSystem not defined in operation" << *next;
    if (const FileSystem* blocking = m_watch.blocking(*next)) {
        qCDebug(lcFileSystem) << "File system" << blocking->fileSystemName() << "isn't ready for operation"
                              << *next;
        return;
    }
    start(next);
}

/// Large selections are many operations: those that are over are not looked at again.
OperationPtr FileSystemOperationsRunnerPrivate::findNextPending()
{
    while (m_firstOpen < allOperations.size() && allOperations.at(m_firstOpen)->hasFinished())
        ++m_firstOpen;
    const auto open = allOperations.cbegin() + m_firstOpen;
    const auto next = std::find_if(open, allOperations.cend(), isWaiting);
    return next == allOperations.cend() ? OperationPtr() : *next;
}

/// Nothing waits for a file system that does not come back, and holds up what is behind it.
void FileSystemOperationsRunnerPrivate::onGivenUp(const QString& message)
{
    const QObject* const left = sender();
    const OperationPtrList operations = allOperations.mid(m_firstOpen);
    for (const OperationPtr& operation : operations) {
        auto* runnable = qobject_cast<RunnableOperation*>(operation.data());
        const bool isConcerned =
            std::ranges::any_of(operation->targets(),
                                [left](const FileSystemTarget& target) { return target.fileSystem == left; });
        if (!runnable || !isConcerned || operation->hasFinished())
            continue;
        runnable->addErrorText(message);
        runnable->abort();
    }
    wake();
}

void FileSystemOperationsRunnerPrivate::start(const OperationPtr& operation)
{
    activeOperation = operation;
    connect(operation.data(), &BaseOperation::operationStopped, this,
            &FileSystemOperationsRunnerPrivate::onOperationFinished);
    const auto waiting = std::count_if(allOperations.cbegin() + m_firstOpen, allOperations.cend(), isWaiting);
    qCInfo(lcFileSystem) << "About to run next operation" << *operation
                         << "- Pending operations:" << waiting - 1;
    auto* runnable = qobject_cast<RunnableOperation*>(operation.data());
    if (!runnable) {
        qCWarning(lcFileSystem) << "Failed to start operation" << *operation;
        disconnect(operation.data(), &BaseOperation::operationStopped, this, nullptr);
        activeOperation.reset();
        return;
    }
    runnable->run();
    Q_EMIT m_runner->allOperationsChanged();
    Q_EMIT m_runner->pendingOperationsChanged();
    Q_EMIT m_runner->activeOperationsChanged();
}

void FileSystemOperationsRunnerPrivate::onOperationFinished()
{
    if (!activeOperation || sender() != activeOperation.data()) {
        qCCritical(lcFileSystem) << "Unexpected operation finished sender";
        return;
    }
    qCInfo(lcFileSystem) << "Active operation finished. Clearing it for the next operation.";
    activeOperation->disconnect(this);
    activeOperation.reset();
    Q_EMIT m_runner->allOperationsChanged();
    Q_EMIT m_runner->activeOperationsChanged();
    Q_EMIT m_runner->finishedOperationsChanged();
    wake(); // the one that ends is still in the midst of saying so
}

void FileSystemOperationsRunnerPrivate::showNotificationOnFailure(const OperationPtr& operation)
{
    qCDebug(lcFileSystem) << "Observing failure notifications on" << *operation;
    if (auto* runnable = qobject_cast<RunnableOperation*>(operation.data()))
        connect(runnable, &RunnableOperation::operationAborted, this,
                &FileSystemOperationsRunnerPrivate::showNotificationForFailedOperation);
}

void FileSystemOperationsRunnerPrivate::showNotificationForFailedOperation()
{
    // Who cancels what has not begun need not be told.
    const bool isPending = std::ranges::any_of(allOperations, [this](const OperationPtr& operation) {
        return operation.data() == sender() && operation != activeOperation && !operation->isRunning();
    });
    if (isPending)
        return;
    if (!activeOperation || sender() != activeOperation.data()) {
        qCCritical(lcFileSystem) << "Unexpected operation finished sender";
        return;
    }
    if (const auto* transfer = qobject_cast<const TransferOperation*>(activeOperation.data()))
        notifyOfTransfer(*transfer);
    else if (const auto* change = qobject_cast<const ModifyOperation*>(activeOperation.data()))
        notify(tr("<b>File operation failed</b>"),
               tr("<code>%1</code>").arg(change->target().fullPath.toHtmlEscaped()) +
                   textOf(change->errors()));
}

void FileSystemOperationsRunnerPrivate::notifyOfTransfer(const TransferOperation& operation)
{
    const QList<OperationError> errors = operation.errors();
    qCInfo(lcFileSystem) << "Transfer operation" << operation << "failed. Error count:" << errors.size()
                         << "- Showing notification about it...";
    notify(tr("<b>Transfer operation failed</b>"),
           tr("From <code>%1</code> to <code>%2</code>")
                   .arg(operation.from().fullPath.toHtmlEscaped(), operation.to().fullPath.toHtmlEscaped()) +
               textOf(errors));
}

} // namespace vantrel
