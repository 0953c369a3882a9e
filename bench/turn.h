#pragma once

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <ctime>

namespace vantrel::bench {

/// Milliseconds for which this thread had a processor.
inline double spentMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

/// Turns of the event loop until the condition holds; the longest of them, in milliseconds, or below 0 after
/// the patience.
template <typename Condition>
double longestTurn(const Condition& isDone, int patienceMs = 10000)
{
    double longest = 0;
    QTimer end;
    end.setSingleShot(true);
    end.start(patienceMs);
    while (!isDone()) {
        if (!end.isActive())
            return -1;
        const double before = spentMs();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        longest = std::max(longest, spentMs() - before);
    }
    return longest;
}

} // namespace vantrel::bench
