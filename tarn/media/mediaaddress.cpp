#include "tarn/media/mediaaddress.h"

#include <charconv>

namespace vantrel {

namespace {

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Drops the words from the front of the text, case ignored; false when it begins otherwise.
bool skip(std::string_view& text, std::string_view words)
{
    if (text.size() < words.size())
        return false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (lower(text[i]) != words[i])
            return false;
    }
    text.remove_prefix(words.size());
    return true;
}

bool takeNumber(std::string_view& text, std::int32_t& out)
{
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return false;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), out);
    if (code != std::errc())
        return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

} // namespace

std::string MediaAddress::toString() const
{
    if (!isValid())
        return {};
    return "brume://collections/" + std::to_string(collection) + "/slots/" + std::to_string(slot);
}

bool MediaAddress::parseString(std::string_view text)
{
    MediaAddress parsed;
    if (!skip(text, "brume://collection"))
        return false;
    skip(text, "s");
    if (!skip(text, "/") || !takeNumber(text, parsed.collection) || !skip(text, "/slots/") ||
        !takeNumber(text, parsed.slot) || !text.empty())
        return false;
    *this = parsed;
    return true;
}

std::string entryUrl(int playlist, const EntryAddress& entry)
{
    return "brume://playlists/" + std::to_string(playlist) + "/entries/" + entry.toString(true);
}

bool parseEntryUrl(std::string_view text, int& playlist, EntryAddress& entry)
{
    std::int32_t number = 0;
    EntryAddress address;
    if (!skip(text, "brume://playlist"))
        return false;
    skip(text, "s");
    if (!skip(text, "/") || !takeNumber(text, number) || number < 1 || !skip(text, "/entries/") ||
        !address.parseString(text))
        return false;
    playlist = number;
    entry = address;
    return true;
}

} // namespace vantrel
