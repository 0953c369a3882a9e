#pragma once

#include "common/filesystem/local/jobcontrol.h"

#include <QObject>
#include <QStringList>

class QThreadPool;

namespace vantrel {

/// How a job on the disk ended.
struct JobResult
{
    enum Outcome {
        Done,
        Skipped, // somebody chose to leave it out
        Exists,  // refused, since something of the name is there
        Inside,  // refused, since the target lies inside of the source
        Missing, // there is nothing to work on
        Failed,
        Canceled,
    };

    Outcome outcome = Failed;
    /// Where it ended up.
    QString destination;
    /// Sentences for the operator, with names escaped.
    QStringList errors;
    /// What was left out of it, or itself, since something of its name was there.
    int skipped = 0;
};

/// Work on the disk that takes longer than a picture of the screen, done beside the main thread. Lives on the
/// main thread and deletes itself after finished(); its owner waits for the pool before it goes.
class FileJob : public QObject
{
    Q_OBJECT

public:
    using Work = std::function<JobResult(JobControl&)>;

    /// policy is what the work does about items that are there already.
    FileJob(Work work, ConflictPolicy policy, QObject* parent);
    ~FileJob() override;

    void start(QThreadPool* pool);
    /// The work stops at its next step and undoes what is half done; finished() still comes.
    void cancel();
    void answer(ConflictPolicy answer, bool forAll);

Q_SIGNALS:
    /// In the unit of the work, bytes or items.
    void progressed(quint64 done, quint64 total);
    void conflictFound(vantrel::TransferConflict conflict);
    void finished(vantrel::JobResult result);

private:
    void report();

    Work m_work;
    std::atomic<bool> m_isReporting = false;
    JobControl m_control;
};

} // namespace vantrel
