#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace vantrel {

enum class LogLevel : int { Trace = 0, Debug = 1, Info = 2, Warning = 3, Error = 4 };

/// Where a line comes from: a source's name without its path, and a function.
struct LogLoc
{
    const char* file = "";
    const char* function = "";
};

/// The library's log. Lines go to the sink, which any thread may call; without one to standard error.
class Log
{
public:
    using Sink =
        std::function<void(LogLevel, const LogLoc&, std::string_view module, std::string_view message)>;

    static void setSink(Sink sink);
    static void write_fmt(LogLevel level, const LogLoc& location, const std::string& module,
                          const char* format, ...) __attribute__((format(printf, 4, 5)));
};

} // namespace vantrel
