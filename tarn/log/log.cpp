#include "tarn/log/log.h"

#include "tarn/log/logwriter.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>

namespace vantrel {

namespace {

constexpr std::size_t longestLine = 2048; // bytes

std::mutex mutex;

std::shared_ptr<const Log::Sink>& currentSink()
{
    static std::shared_ptr<const Log::Sink> sink;
    return sink;
}

std::string formatted(const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length <= 0)
        return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

/// "toStr" of "const char* vantrel::toStr(vantrel::EndAction)".
std::string_view bareFunction(std::string_view signature)
{
    const std::string_view name = signature.substr(0, signature.find('('));
    return name.substr(name.find_last_of(": ") + 1);
}

std::string_view bareFile(std::string_view path)
{
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return name.substr(0, name.rfind('.'));
}

void deliver(LogLevel level, const LogLoc& location, std::string_view module, std::string_view text)
{
    const std::string message = scrubbed(text);
    std::shared_ptr<const Log::Sink> sink;
    {
        const std::lock_guard lock(mutex);
        sink = currentSink();
    }
    // Called without the lock: a sink may log, or replace itself.
    if (sink) {
        (*sink)(level, location, module, message);
    } else {
        static LogWriter standardError;
        standardError.write(level, location, module, message);
    }
}

/// How many bytes of a text's beginning are one control character or line break; 0 for anything else.
std::size_t controlAt(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x20 || first == 0x7f)
        return 1;
    if (first == 0xc2 && text.size() > 1 && (static_cast<unsigned char>(text[1]) & 0xe0) == 0x80)
        return 2; // U+0080 to U+009F
    return text.starts_with("\u2028") || text.starts_with("\u2029") ? 3 : 0;
}

void appendEscaped(std::string& out, std::string_view control)
{
    for (const char c : control) {
        char code[5];
        std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        out += c == '\n' ? "\\n" : c == '\r' ? "\\r" : c == '\t' ? "\\t" : code;
    }
}

} // namespace

LogLoc::LogLoc(const std::source_location& where)
    : file(bareFile(where.file_name()))
    , function(bareFunction(where.function_name()))
    , line(where.line())
{
}

std::string scrubbed(std::string_view text)
{
    std::string line;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t control = controlAt(text.substr(at));
        std::size_t end = at + std::max<std::size_t>(control, 1);
        while (control == 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80)
            ++end; // the rest of a character
        const std::size_t before = line.size();
        if (control > 0)
            appendEscaped(line, text.substr(at, control));
        else
            line += text.substr(at, end - at);
        if (line.size() > longestLine) {
            line.resize(before);
            return line + "...";
        }
        at = end;
    }
    return line;
}

void Log::setSink(Sink sink)
{
    auto shared = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
    const std::lock_guard lock(mutex);
    currentSink() = std::move(shared);
}

void Log::write(LogLevel level, std::string_view module, std::string_view message,
                const std::source_location& where)
{
    deliver(level, where, module, message);
}

void Log::write_fmt(LogLevel level, const LogLoc& location, const std::string& module, const char* format,
                    ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string message = formatted(format, arguments);
    va_end(arguments);
    deliver(level, location, module, message);
}

} // namespace vantrel
