#include "ombra/show/contenturl.h"

#include <charconv>
#include <string_view>

namespace vantrel::ombra {

std::string contentUrl(const std::filesystem::path& relative)
{
    constexpr std::string_view plain = "-._~!$&'()*+,;=:@/";
    constexpr char digits[] = "0123456789ABCDEF";
    std::string url = "file:///";
    for (const char c : relative.generic_string()) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (letter || plain.find(c) != std::string_view::npos) {
            url += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            url += '%';
            url += digits[byte >> 4];
            url += digits[byte & 15];
        }
    }
    return url;
}

std::string sequencePattern(const std::string& fileName, int& number)
{
    const std::size_t dot = fileName.rfind('.');
    if (dot == std::string::npos || dot == 0)
        return {};
    const std::size_t end = fileName.find_last_of("0123456789", dot - 1);
    if (end == std::string::npos || end + 1 != dot)
        return {};
    std::size_t start = end;
    while (start > 0 && fileName[start - 1] >= '0' && fileName[start - 1] <= '9')
        --start;
    const std::size_t width = end - start + 1;
    const auto [stop, code] = std::from_chars(fileName.data() + start, fileName.data() + end + 1, number);
    if (code != std::errc() || width < 2 || width > 9)
        return {};
    return fileName.substr(0, start) + "%0" + std::to_string(width) + "d" + fileName.substr(dot);
}

} // namespace vantrel::ombra
