#pragma once

#include <deque>

namespace vantrel::ombra {

/// How the real screen of an output does.
struct ScreenFigures
{
    double rate = 0;           // pictures a second; 0 where there is none
    int dropped = 0, late = 0; // pictures, in the last minute
    double decodeLoad = 0;     // share of the time there is that decoding takes
    double paintLoad = 0;      // share of the time between two beats that painting a picture takes
    bool bySoftware = false;   // painted by the processor
};

/// How much a count that only grows has grown within the last minute, for who looks at it each second.
class LastMinute
{
public:
    int grown(long long count)
    {
        m_counts.push_back(count);
        if (m_counts.size() > seconds + 1)
            m_counts.pop_front();
        return static_cast<int>(count - m_counts.front());
    }

private:
    static constexpr std::size_t seconds = 60;
    std::deque<long long> m_counts{0}; // the oldest first
};

} // namespace vantrel::ombra
