#include "tarn/media/entryaddress.h"

#include <charconv>

namespace vantrel {

namespace {

bool parseNumber(std::string_view text, int& out)
{
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return false;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), out);
    return code == std::errc() && end == text.data() + text.size();
}

} // namespace

std::string EntryAddress::toString(bool full) const
{
    if (!full && !isValid())
        return {};
    std::string text = std::to_string(major);
    if (minor != 0)
        text += "." + std::to_string(minor);
    return text;
}

bool EntryAddress::parseString(std::string_view text)
{
    EntryAddress parsed;
    const std::size_t dot = text.find('.');
    if (!parseNumber(text.substr(0, dot), parsed.major))
        return false;
    if (dot != std::string_view::npos && !parseNumber(text.substr(dot + 1), parsed.minor))
        return false;
    if (!parsed.isValid())
        return false;
    *this = parsed;
    return true;
}

} // namespace vantrel
