#include "common/filesystem/local/jobcontrol.h"

#include <chrono>

namespace vantrel {

namespace {

constexpr qint64 reportIntervalMs = 50;

qint64 nowMs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

JobControl::JobControl(ConflictPolicy policy, std::function<void()> onReport,
                       std::function<void(TransferConflict)> onQuestion)
    : m_onReport(std::move(onReport))
    , m_onQuestion(std::move(onQuestion))
    , m_policy(policy)
{
}

void JobControl::cancel()
{
    const std::lock_guard lock(m_mutex);
    m_isCanceled = true;
    m_changed.notify_all();
}

void JobControl::answer(ConflictPolicy answer, bool forAll)
{
    const std::lock_guard lock(m_mutex);
    m_answer = answer == ConflictPolicy::Ask ? ConflictPolicy::Refuse : answer;
    if (forAll)
        m_policy = *m_answer;
    m_changed.notify_all();
}

JobControl::Progress JobControl::progress() const
{
    return {m_done, m_total};
}

void JobControl::setTotal(quint64 total)
{
    m_total = total;
    m_onReport();
}

void JobControl::addDone(quint64 done)
{
    m_done += done;
    const qint64 now = nowMs();
    if (now - m_lastReportMs < reportIntervalMs)
        return;
    m_lastReportMs = now;
    m_onReport();
}

ConflictPolicy JobControl::decide(const TransferConflict& conflict)
{
    std::unique_lock lock(m_mutex);
    if (m_policy != ConflictPolicy::Ask)
        return m_policy;
    m_answer.reset();
    lock.unlock();
    m_onQuestion(conflict);
    lock.lock();
    m_changed.wait(lock, [this] { return m_answer || m_isCanceled; });
    return m_answer.value_or(ConflictPolicy::Refuse);
}

} // namespace vantrel
