#pragma once

#include <functional>
#include <source_location>
#include <string>
#include <string_view>

namespace vantrel {

enum class LogLevel : int { Trace = 0, Debug = 1, Info = 2, Warning = 3, Error = 4 };

/// Where a line of the log comes from: a source's name without its path and ending, a function, and a line or
/// 0. Made from `{}` it is the place of the call; names that readers of logs know are given by hand.
struct LogLoc
{
    LogLoc(const std::source_location& where = std::source_location::current());
    LogLoc(std::string_view sourceName, std::string_view functionName, unsigned lineNumber = 0)
        : file(sourceName)
        , function(functionName)
        , line(lineNumber)
    {
    }

    std::string_view file;
    std::string_view function;
    unsigned line = 0;
};

/// A text from outside as a line of a log may show it: line breaks and other control characters are escaped
/// ("\n", "\x1b"), and it is cut after 2048 bytes, never within a character.
std::string scrubbed(std::string_view text);

/// The one log of everything that knows no Qt. Lines go to the sink, which any thread may call; without one
/// to standard error, as LogWriter writes them. A message is scrubbed before anyone gets it, since most of
/// them quote names from outside.
class Log
{
public:
    using Sink =
        std::function<void(LogLevel, const LogLoc&, std::string_view module, std::string_view message)>;

    static void setSink(Sink sink);
    static void write(LogLevel level, std::string_view module, std::string_view message,
                      const std::source_location& where = std::source_location::current());
    static void write_fmt(LogLevel level, const LogLoc& location, const std::string& module,
                          const char* format, ...) __attribute__((format(printf, 4, 5)));
};

} // namespace vantrel
