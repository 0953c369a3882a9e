#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// Keeps a line that comes over and over from filling a log: the same line is written at most ten times a
/// second, and what came beyond is counted. Whoever writes a log owns one and guards it.
class RepeatLimit
{
public:
    using Clock = std::chrono::steady_clock;

    /// What was held back of a line within one second.
    struct Held
    {
        int level = 0; // as it was given
        std::string line;
        std::uint64_t times = 0;

        /// "27 times more: the line"
        std::string text() const;
    };

    /// Whether the line is to be written.
    bool admits(int level, std::string_view line, Clock::time_point now = Clock::now());
    /// What was held back in the seconds that are over by then, each once; to be asked before admits().
    std::vector<Held> takeHeld(Clock::time_point now = Clock::now());

private:
    struct Line
    {
        int level;
        std::string text;
        Clock::time_point end; // of the second that its first one began
        std::uint64_t count = 0;
    };

    std::vector<Line> m_lines;
};

} // namespace vantrel
