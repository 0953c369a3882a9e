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

std::string NumberedName::pattern(int width) const
{
    return prefix + "%0" + std::to_string(width) + "d" + suffix;
}

std::optional<NumberedName> parseNumberedName(const std::string& fileName)
{
    constexpr std::string_view decimal = "0123456789";
    const std::size_t dot = fileName.rfind('.');
    if (dot == std::string::npos || dot == 0)
        return std::nullopt;
    const std::size_t before = fileName.find_last_not_of(decimal, dot - 1);
    const std::size_t start = before == std::string::npos ? 0 : before + 1;
    NumberedName name{fileName.substr(0, start), fileName.substr(dot), 0, static_cast<int>(dot - start),
                      false};
    if (name.digits < 1 || name.digits > 9)
        return std::nullopt;
    std::from_chars(fileName.data() + start, fileName.data() + dot, name.number);
    name.padded = name.digits > 1 && fileName[start] == '0';
    return name;
}

std::vector<std::string> sequencePatterns(const std::string& fileName)
{
    std::vector<std::string> patterns;
    if (const auto name = parseNumberedName(fileName)) {
        for (int width = name->padded ? name->digits : 1; width <= name->digits; ++width)
            patterns.push_back(name->pattern(width));
    }
    return patterns;
}

} // namespace vantrel::ombra
