#include "tarn/log/log.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>

namespace vantrel {

namespace {

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

void toStandardError(LogLevel level, std::string_view module, const std::string& message)
{
    static constexpr const char* marks[] = {"trace", "debug", "info", "warning", "error"};
    const auto at = static_cast<std::size_t>(level);
    std::fprintf(stderr, "%s %.*s: %s\n", at < std::size(marks) ? marks[at] : "?",
                 static_cast<int>(module.size()), module.data(), message.c_str());
}

} // namespace

void Log::setSink(Sink sink)
{
    auto shared = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
    const std::lock_guard lock(mutex);
    currentSink() = std::move(shared);
}

void Log::write_fmt(LogLevel level, const LogLoc& location, const std::string& module, const char* format,
                    ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string message = formatted(format, arguments);
    va_end(arguments);

    std::shared_ptr<const Sink> sink;
    {
        const std::lock_guard lock(mutex);
        sink = currentSink();
    }
    // Called without the lock: a sink may log, or replace itself.
    if (sink)
        (*sink)(level, location, module, message);
    else if (level > LogLevel::Debug)
        toStandardError(level, module, message);
}

} // namespace vantrel
