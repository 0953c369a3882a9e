#pragma once

#include "tarn/log/log.h"
#include "tarn/log/logfile.h"
#include "tarn/log/repeatlimit.h"

#include <mutex>
#include <optional>

namespace vantrel {

/// Writes the log as lines of text with the time of the day, from info upwards, to a file or to standard
/// error; what repeats is counted. Its owner sets it as the log's sink; any thread may write.
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
    void append(LogLevel level, std::string_view text);

    std::mutex m_mutex; // for what follows
    std::optional<LogFile> m_file;
    RepeatLimit m_repeats;
};

} // namespace vantrel
