#pragma once

#include "tarn/log/log.h"

#include <source_location>
#include <string>

namespace vantrel::ombra {

/// One line of the server's log; control characters, which texts from outside may hold, are written as "?".
inline void logLine(LogLevel level, const char* module, std::string text,
                    std::source_location where = std::source_location::current())
{
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            c = '?';
    }
    const char* file = where.file_name();
    Log::write_fmt(level, {file, where.function_name()}, module, "%s", text.c_str());
}

} // namespace vantrel::ombra
