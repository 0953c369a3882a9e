#pragma once

#include <cstdio>

namespace vantrel::bench {

/// One line of bench/run's table; the ratio is the better the larger.
inline void row(const char* name, const char* peer, double ours, double theirs, const char* unit, double goal)
{
    const double ratio = theirs / ours;
    std::printf(
        "{\"name\":\"%s\",\"peer\":\"%s\",\"ours\":%.4f,\"theirs\":%.4f,\"unit\":\"%s\",\"ratio\":%.4f,"
        "\"goal\":%.4f,\"met\":%s}\n",
        name, peer, ours, theirs, unit, ratio, goal, ratio >= goal ? "true" : "false");
    std::fflush(stdout);
}

} // namespace vantrel::bench
