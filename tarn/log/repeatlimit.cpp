#include "tarn/log/repeatlimit.h"

#include <algorithm>
#include <iterator>

namespace vantrel {

namespace {

constexpr std::uint64_t mostInASecond = 10;
constexpr std::size_t mostLines = 1000; // watched at the same time

} // namespace

std::string RepeatLimit::Held::text() const
{
    return std::to_string(times) + (times == 1 ? " time more: " : " times more: ") + line;
}

std::uint64_t RepeatLimit::Line::held() const
{
    return count > mostInASecond ? count - mostInASecond : 0;
}

bool RepeatLimit::admits(int level, std::string_view line, Clock::time_point now)
{
    if (const auto known = m_known.find({level, line}); known != m_known.end())
        return ++known->second->count <= mostInASecond;
    if (m_lines.size() == mostLines) {
        const auto harmless = std::ranges::find_if(m_lines, [](const Line& other) { return !other.held(); });
        if (harmless == m_lines.end())
            return admitsOther(level, line, now);
        m_known.erase({harmless->level, harmless->text});
        m_lines.erase(harmless); // the one that was first seen longest ago
    }
    m_lines.push_back({level, std::string(line), now + std::chrono::seconds(1), 1});
    m_known.emplace(std::pair(level, std::string_view(m_lines.back().text)), std::prev(m_lines.end()));
    return true;
}

bool RepeatLimit::admitsOther(int level, std::string_view line, Clock::time_point now)
{
    if (!m_others)
        m_others = Line{level, {}, now + std::chrono::seconds(1)};
    m_others->level = std::max(m_others->level, level);
    m_others->text = line;
    return ++m_others->count <= mostInASecond;
}

std::vector<RepeatLimit::Held> RepeatLimit::takeHeld(Clock::time_point now)
{
    std::vector<Held> held;
    while (!m_lines.empty() && m_lines.front().end <= now) {
        Line& line = m_lines.front();
        m_known.erase({line.level, line.text});
        if (const std::uint64_t times = line.held())
            held.push_back({line.level, std::move(line.text), times});
        m_lines.pop_front();
    }
    if (m_others && m_others->end <= now) {
        if (const std::uint64_t times = m_others->held())
            held.push_back({m_others->level, "other lines, the last of them: " + m_others->text, times});
        m_others.reset();
    }
    return held;
}

std::optional<RepeatLimit::Clock::time_point> RepeatLimit::nextHeld() const
{
    const auto first = std::ranges::find_if(m_lines, [](const Line& line) { return line.held() > 0; });
    std::optional<Clock::time_point> next;
    if (first != m_lines.end())
        next = first->end;
    if (m_others && m_others->held())
        next = next ? std::min(*next, m_others->end) : m_others->end;
    return next;
}

} // namespace vantrel
