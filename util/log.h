#pragma once

#include <functional>
#include <string>

namespace vantrel::util {

/// One line that value code has to say. Levels count from trace (0) to error (4), as everywhere in the
/// system.
struct LogRecord
{
    int level = 0;
    const char* source = ""; // source's name without its path
    int line = 0;
    const char* function = "";
    std::string message;
};

using LogSink = std::function<void(const LogRecord&)>;

/// Where the records go; without a sink to standard error. Set once at start, before other threads run.
void setLogSink(LogSink sink);
void log(const LogRecord& record);

} // namespace vantrel::util
