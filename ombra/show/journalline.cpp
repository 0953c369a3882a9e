#include "ombra/show/journalline.h"

#include <boost/crc.hpp>

#include <charconv>
#include <cstdio>

namespace vantrel::ombra {

namespace {

std::uint32_t checksum(std::string_view text)
{
    boost::crc_32_type crc;
    crc.process_bytes(text.data(), text.size());
    return crc.checksum();
}

} // namespace

std::string encodeJournalLine(const Json& entry)
{
    const std::string text = entry.toString();
    char sum[10];
    std::snprintf(sum, sizeof sum, "%08x ", checksum(text));
    return sum + text + "\n";
}

bool decodeJournalLine(std::string_view line, Json& out)
{
    if (line.size() < 10 || line[8] != ' ')
        return false;
    std::uint32_t sum = 0;
    const auto [end, code] = std::from_chars(line.data(), line.data() + 8, sum, 16);
    if (code != std::errc() || end != line.data() + 8)
        return false;
    const std::string_view text = line.substr(9);
    return checksum(text) == sum && Json::parseString(text, out);
}

} // namespace vantrel::ombra
