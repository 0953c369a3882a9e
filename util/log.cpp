#include "util/log.h"

#include <cstdio>
#include <utility>

namespace vantrel::util {

namespace {

LogSink& currentSink()
{
    static LogSink sink;
    return sink;
}

} // namespace

void setLogSink(LogSink sink)
{
    currentSink() = std::move(sink);
}

void log(const LogRecord& record)
{
    if (const LogSink& sink = currentSink())
        sink(record);
    else
        std::fprintf(stderr, "%s:%d (%s): %s\n", record.source, record.line, record.function,
                     record.message.c_str());
}

} // namespace vantrel::util
