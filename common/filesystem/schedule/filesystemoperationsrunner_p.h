#pragma once

#include "common/filesystem/operations/targetwatch.h"
#include "common/filesystem/schedule/filesystemoperationsrunner.h"

#include <QTimer>

namespace vantrel {

class TransferOperation;

/// The queue behind FileSystemOperationsRunner.
class FileSystemOperationsRunnerPrivate : public QObject
{
    Q_OBJECT

public:
    FileSystemOperationsRunnerPrivate(FileSystemOperationsRunner* runner, AbstractOperationFactory* factory);

    OperationPtr createCopyOperation(const FileSystemTarget& from, const FileSystemTarget& to);
    OperationPtr createMoveOperation(const FileSystemTarget& from, const FileSystemTarget& to);
    /// Takes what the factory made into the queue; null stays null.
    OperationPtr add(const OperationPtr& operation);
    bool contains(const OperationPtr& operation) const { return allOperations.contains(operation); }

    AbstractOperationFactory* factory;
    OperationPtrList allOperations; // in the order of creation
    OperationPtr activeOperation;   // null when idle

public Q_SLOTS:
    void runNextOperation();
    void onOperationFinished();
    void onGivenUp(const QString& message);
    void showNotificationForFailedOperation();

private:
    void wake();
    void start(const OperationPtr& operation);
    OperationPtr findNextPending();
    void showNotificationOnFailure(const OperationPtr& operation);
    void notifyOfTransfer(const TransferOperation& operation);

    FileSystemOperationsRunner* m_runner;
    TargetWatch m_watch;
    QTimer m_timer;
    qsizetype m_firstOpen = 0; // in allOperations: all before it are over
    bool m_isWoken = false;
};

} // namespace vantrel
