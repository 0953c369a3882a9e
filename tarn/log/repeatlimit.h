#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantrel {

/// Keeps a line that comes over and over from filling a log: the same line is written at most ten times a
/// second, and what came beyond is counted. A thousand different floods at once are told apart; of what
/// floods beyond them the lines have one limit among them. Whoever writes a log owns one and guards it.
class RepeatLimit
{
public:
    using Clock = std::chrono::steady_clock;

    RepeatLimit() = default;
    RepeatLimit(const RepeatLimit&) = delete;
    RepeatLimit& operator=(const RepeatLimit&) = delete;

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
    /// When takeHeld() will have something to tell; nothing while nothing is held back.
    std::optional<Clock::time_point> nextHeld() const;

private:
    struct Line
    {
        int level;
        std::string text;
        Clock::time_point end; // of the second that its first one began
        std::uint64_t count = 0;

        std::uint64_t held() const;
    };
    using Lines = std::list<Line>;

    bool admitsOther(int level, std::string_view line, Clock::time_point now);

    Lines m_lines;                                                       // in the order of their ends
    std::map<std::pair<int, std::string_view>, Lines::iterator> m_known; // by what stands in m_lines
    std::optional<Line> m_others; // all that are not told apart; its text is the last of them
};

} // namespace vantrel
