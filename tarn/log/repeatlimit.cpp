#include "tarn/log/repeatlimit.h"

#include <algorithm>

namespace vantrel {

namespace {

constexpr std::uint64_t mostInASecond = 10;
constexpr std::size_t mostLines = 64; // watched at the same time; they are few that repeat

} // namespace

std::string RepeatLimit::Held::text() const
{
    return std::to_string(times) + (times == 1 ? " time more: " : " times more: ") + line;
}

bool RepeatLimit::admits(int level, std::string_view line, Clock::time_point now)
{
    const auto known = std::ranges::find_if(
        m_lines, [&](const Line& other) { return other.level == level && other.text == line; });
    if (known != m_lines.end())
        return ++known->count <= mostInASecond;
    if (m_lines.size() == mostLines) {
        const auto harmless =
            std::ranges::find_if(m_lines, [](const Line& other) { return other.count <= mostInASecond; });
        if (harmless == m_lines.end())
            return true;
        m_lines.erase(harmless); // the one that was first seen longest ago
    }
    m_lines.push_back({level, std::string(line), now + std::chrono::seconds(1), 1});
    return true;
}

std::vector<RepeatLimit::Held> RepeatLimit::takeHeld(Clock::time_point now)
{
    std::vector<Held> held;
    std::erase_if(m_lines, [&](Line& line) {
        if (now < line.end)
            return false;
        if (line.count > mostInASecond)
            held.push_back({line.level, std::move(line.text), line.count - mostInASecond});
        return true;
    });
    return held;
}

} // namespace vantrel
