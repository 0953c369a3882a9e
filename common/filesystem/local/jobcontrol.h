#pragma once

#include "common/filesystem/operations/conflictpolicy.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

namespace vantrel {

/// What joins a job on a worker thread with the main thread: progress, questions and answers, and the wish to
/// stop. Owned by its FileJob.
class JobControl
{
public:
    struct Progress
    {
        quint64 done = 0;
        quint64 total = 0;
    };

    /// onReport and onQuestion are called on the worker thread.
    JobControl(ConflictPolicy policy, std::function<void()> onReport,
               std::function<void(TransferConflict)> onQuestion);

    // The main thread's side.
    void cancel();
    void answer(ConflictPolicy answer, bool forAll);
    Progress progress() const;

    // The worker's side.
    bool isCanceled() const { return m_isCanceled; }
    void setTotal(quint64 total);
    /// Tells the main thread, at most every 50 ms.
    void addDone(quint64 done);
    /// What is to be done about the item: never Ask. Waits for an answer where the policy is to ask; Refuse
    /// once canceled.
    ConflictPolicy decide(const TransferConflict& conflict);

private:
    std::atomic<bool> m_isCanceled = false;
    std::atomic<quint64> m_done = 0;
    std::atomic<quint64> m_total = 0;
    qint64 m_lastReportMs = 0;
    std::function<void()> m_onReport;
    std::function<void(TransferConflict)> m_onQuestion;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    ConflictPolicy m_policy;
    std::optional<ConflictPolicy> m_answer;
};

} // namespace vantrel
