#pragma once

#include "common/filesystem/operations/filesystempath.h"
#include "common/filesystem/operations/runnableoperation.h"
#include "common/filesystem/operations/targetwatch.h"

#include <QTimer>

#include <memory>

namespace vantrel {

class RecursiveDirectoryLister;
class SubOperationCreator;

/// Carries out an operation on a directory: has it listed, makes an operation for each item and runs these
/// one after the other, each as soon as the one before has ended and the file systems can take it. The
/// operation on the directory owns it; main thread only. What only settles on a disk does not hold up the
/// next.
class RecursiveOperationRunner : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    Q_PROPERTY(RunnerState state READ state NOTIFY stateChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(
        QList<QWeakPointer<vantrel::BaseOperation>> operations READ operations NOTIFY operationsChanged)

public:
    enum RunnerState {
        Idle = 0,
        Listing = 1,
        RunningOperations = 2,
        Failed = 3,
        Finished = 4,
    };
    Q_ENUM(RunnerState)

    struct RunningEntry
    {
        FileSystemPath path;
        OperationPtr operation;
    };
    using EntryPtr = std::shared_ptr<RunningEntry>;

    /// The creator outlives this.
    explicit RecursiveOperationRunner(SubOperationCreator* creator, QObject* parent = nullptr);
    ~RecursiveOperationRunner() override;

    bool isRunning() const;
    RunnerState state() const { return m_state; }
    /// From 0 to 1: by bytes of files, or by items where these have none.
    double progress() const { return m_progress; }
    /// The one that runs, those that wait, those that are done. Empty once the runner has ended.
    QList<QWeakPointer<BaseOperation>> operations() const;
    bool hasErrors() const { return m_state == Failed; }
    /// Of the sub-operation that failed.
    QList<OperationError> errors() const { return m_errors; }
    /// The sub-operation that runs now; null between two.
    OperationPtr activeOperation() const;

public Q_SLOTS:
    void start();
    /// Ends it as failed, with the sub-operation that runs.
    void stop();

Q_SIGNALS:
    void isRunningChanged();
    void stateChanged();
    void progressChanged();
    void operationsChanged();

private:
    void handleDirectoryListerHasFinishedChanged();
    void createEntries();
    void startOperations();
    void runNextOperation();
    bool closeActive();
    bool makeRoom();
    bool mayPrepareNext() const;
    void close(const EntryPtr& entry);
    bool closeSettled();
    bool areTargetsReady(const OperationPtr& operation);
    void wake();
    void startNext(EntryPtr& place);
    void finishRunner(bool succeeded);
    void endWith(bool succeeded);
    void updateProgress();
    void addListingError(const RecursiveDirectoryLister& lister);

    SubOperationCreator* m_creator;
    RunnerState m_state = Idle;
    double m_progress = 0;
    QWeakPointer<RecursiveDirectoryLister> m_lister;
    QTimer m_timer;
    EntryPtr m_active;
    EntryPtr m_next; // gets ready, while the active one has the line
    QList<EntryPtr> m_settling;
    QList<EntryPtr> m_pending;
    QList<EntryPtr> m_finished;
    QList<OperationError> m_errors;

    QList<FileSystemPath> m_paths; // of which entries are still to be made
    qsizetype m_nextPath = 0;      // in m_paths
    TargetWatch m_watch;
    bool m_isWoken = false;
    bool m_isFailing = false;            // it ends when all that settles has done so
    bool m_isWaiting = false;            // for a file system, which has been said
    unsigned long long m_totalBytes = 0; // of the files of all entries
    unsigned long long m_doneBytes = 0;  // of the finished ones
    qsizetype m_doneItems = 0;
    qint64 m_progressTime = -1; // milliseconds; of the last update
};

QDebug operator<<(QDebug debug, const RecursiveOperationRunner& runner);

} // namespace vantrel
