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

/// A text from outside as a line of a log may show it: line breaks and other control characters are escaped,
/// as
/// "\n" or "\x1b", and it is cut after 2048 bytes, never within a character.
std::string scrubbed(std::string_view text);

/// The library's log. Lines go to the sink, which any thread may call; without one to standard error. A
/// message is scrubbed before anyone gets it, since most of them quote names from outside.
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
