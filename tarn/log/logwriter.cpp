#include "tarn/log/logwriter.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <system_error>
#include <utility>

namespace vantrel {

namespace {

const char* mark(LogLevel level)
{
    static constexpr const char* marks[] = {"trace", "debug", "info", "warning", "error"};
    const auto at = static_cast<std::size_t>(level);
    return at < std::size(marks) ? marks[at] : "?";
}

/// "2026-11-25 20:15:00.123", local time.
std::string timeStamp()
{
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    std::tm day{};
    localtime_r(&seconds, &day);
    char text[40];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &day);
    const auto milliseconds = duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::snprintf(text + length, sizeof text - length, ".%03d", static_cast<int>(milliseconds));
    return text;
}

} // namespace

LogWriter::LogWriter(const std::filesystem::path& file)
    : m_file(file)
{
}

LogWriter::~LogWriter()
{
    m_teller = {}; // waits for its end
    tellHeld(RepeatLimit::Clock::time_point::max());
}

void LogWriter::write(LogLevel level, const LogLoc& location, std::string_view module,
                      std::string_view message)
{
    if (level <= LogLevel::Debug)
        return;
    const std::string source = location.line > 0
                                   ? std::string(location.file) + ':' + std::to_string(location.line)
                                   : std::string(location.file);
    const std::string text = std::string(module) + ' ' + source + ": " + std::string(message);
    const auto now = RepeatLimit::Clock::now();
    const std::lock_guard lock(m_mutex);
    tellHeld(now);
    if (m_repeats.admits(static_cast<int>(level), text, now))
        return append(level, text);
    if (std::exchange(m_isHolding, true))
        return;
    try {
        if (!m_teller.joinable())
            m_teller = std::jthread([this](const std::stop_token& stop) { tellInTime(stop); });
    } catch (const std::system_error&) { // no thread to be had: the next line brings the count
        m_isHolding = false;
    }
    m_held.notify_one();
}

/// Else the count of a flood that has ended would wait for the next line, which may come hours later.
void LogWriter::tellInTime(const std::stop_token& stop)
{
    std::unique_lock lock(m_mutex);
    while (m_held.wait(lock, stop, [this] { return m_isHolding; })) {
        if (const auto next = m_repeats.nextHeld())
            m_held.wait_until(lock, stop, *next, [] { return false; });
        if (stop.stop_requested())
            return;
        tellHeld(RepeatLimit::Clock::now());
        m_isHolding = m_repeats.nextHeld().has_value();
    }
}

void LogWriter::tellHeld(RepeatLimit::Clock::time_point now)
{
    for (const RepeatLimit::Held& held : m_repeats.takeHeld(now))
        append(static_cast<LogLevel>(held.level), held.text());
}

void LogWriter::append(LogLevel level, std::string_view text)
{
    const std::string line = timeStamp() + ' ' + mark(level) + ' ' + std::string(text);
    if (!m_file || !m_file->append(line))
        std::fprintf(stderr, "%s\n", line.c_str());
}

} // namespace vantrel
