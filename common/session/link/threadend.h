#pragma once

#include <atomic>

namespace vantrel {

/// What a thread did is seen by whoever has waited for its end. Qt's own waiting does as much, but in
/// binaries that the thread sanitizer does not follow.
class ThreadEnd
{
public:
    /// On the thread, for as long as it works.
    class Work
    {
    public:
        explicit Work(ThreadEnd& end)
            : m_end(end)
        {
        }
        ~Work() { m_end.m_isOver.store(true, std::memory_order_release); }
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

    private:
        ThreadEnd& m_end;
    };

    /// After the wait for the thread.
    void see() const { static_cast<void>(m_isOver.load(std::memory_order_acquire)); }

private:
    std::atomic<bool> m_isOver{false};
};

} // namespace vantrel
