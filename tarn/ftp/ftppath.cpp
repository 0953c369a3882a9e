#include "tarn/ftp/ftppath.h"

namespace vantrel {

std::string quoteListPath(std::string_view path)
{
    std::string quoted;
    quoted.reserve(path.size() + 16);
    for (const char c : path) {
        if (c == '\\' || c == '[' || c == ']' || c == ' ')
            quoted += '\\';
        quoted += c;
    }
    return quoted;
}

bool isFtpArgument(std::string_view text)
{
    return !text.empty() && text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

} // namespace vantrel
