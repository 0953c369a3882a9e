#pragma once

#include <ctime>

namespace vantrel::test {

/// Milliseconds for which this thread has had a processor: what else runs on the machine does not count.
inline double threadWorkMs()
{
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

} // namespace vantrel::test
