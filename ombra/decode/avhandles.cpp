#include "ombra/decode/avhandles.h"

#include "tarn/log/log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

namespace vantrel::ombra {

namespace {

void forwardAvLog(void* source, int level, const char* format, va_list args)
{
    if (level > AV_LOG_WARNING)
        return;
    char line[1024];
    int prefix = 1;
    av_log_format_line2(source, level, format, args, line, sizeof line, &prefix);
    std::string text(line);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    // What a damaged file says to a decoder is no failure of ours: only the worst of it is worth a warning.
    const LogLevel ours = level <= AV_LOG_FATAL ? LogLevel::Warning : LogLevel::Debug;
    Log::write(ours, "vantrel.decode", text);
}

} // namespace

std::string avErrorText(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

void routeAvLog()
{
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_callback(forwardAvLog); });
}

} // namespace vantrel::ombra
