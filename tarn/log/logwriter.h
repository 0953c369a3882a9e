#pragma once

#include "tarn/log/log.h"
#include "tarn/log/logfile.h"
#include "tarn/log/repeatlimit.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

namespace vantrel {

/// Writes the log as lines of text with the time of the day, from info upwards, to a file or to standard
/// error; what repeats is counted. Its owner sets it as the log's sink; any thread may write. A count is told
/// as soon as its second is over, by a thread of the writer's own that begins with the first.
class LogWriter
{
public:
    /// To standard error.
    LogWriter() = default;
    /// To a file; to standard error while its disk takes nothing.
    explicit LogWriter(const std::filesystem::path& file);
    /// Tells what was held back last.
    ~LogWriter();
    LogWriter(const LogWriter&) = delete;
    LogWriter& operator=(const LogWriter&) = delete;

    void write(LogLevel level, const LogLoc& location, std::string_view module, std::string_view message);

private:
    void tellHeld(RepeatLimit::Clock::time_point now);
    void tellInTime(const std::stop_token& stop);
    void append(LogLevel level, std::string_view text);

    std::mutex m_mutex; // for what follows
    std::optional<LogFile> m_file;
    RepeatLimit m_repeats;
    bool m_isHolding = false; // something that the teller has to tell
    std::condition_variable_any m_held;
    std::jthread m_teller;
};

} // namespace vantrel
