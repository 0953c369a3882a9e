#pragma once

#include "tarn/log/log.h"

#include <source_location>
#include <string>

namespace vantrel::ombra {

/// One line of the server's log. Texts from outside are passed as they are; the sink keeps them on one line.
inline void logLine(LogLevel level, const char* module, const std::string& text,
                    std::source_location where = std::source_location::current())
{
    const char* file = where.file_name();
    Log::write_fmt(level, {file, where.function_name()}, module, "%s", text.c_str());
}

} // namespace vantrel::ombra
