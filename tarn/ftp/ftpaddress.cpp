#include "tarn/ftp/ftpaddress.h"

#include <array>
#include <charconv>

namespace vantrel {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Six numbers from the beginning of the text on.
bool readSix(std::string_view text, std::array<unsigned, 6>& out)
{
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (i > 0 && (at == end || *at++ != ','))
            return false;
        const auto [next, code] = std::from_chars(at, end, out[i]);
        if (code != std::errc())
            return false;
        at = next;
    }
    return true;
}

} // namespace

bool parsePassiveReply(std::string_view text, FtpAddress& out)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::array<unsigned, 6> numbers{};
        if (!isDigit(text[i]) || (i > 0 && isDigit(text[i - 1])) || !readSix(text.substr(i), numbers))
            continue;
        for (const unsigned number : numbers) {
            if (number > 255)
                return false;
        }
        out.port = static_cast<std::uint16_t>(numbers[4] * 256 + numbers[5]);
        out.host.clear();
        for (std::size_t k = 0; k < 4; ++k)
            out.host += (k > 0 ? "." : "") + std::to_string(numbers[k]);
        return out.port != 0;
    }
    return false;
}

bool parseExtendedPassiveReply(std::string_view text, std::uint16_t& port)
{
    const auto open = text.find('(');
    if (open == std::string_view::npos || open + 1 >= text.size() || isDigit(text[open + 1]))
        return false;
    const char delimiter = text[open + 1];
    std::size_t at = open + 1;
    for (int i = 0; i < 2; ++i) {
        at = text.find(delimiter, at + 1);
        if (at == std::string_view::npos)
            return false;
    }
    const std::string_view number = text.substr(at + 1);
    const auto [end, code] = std::from_chars(number.data(), number.data() + number.size(), port);
    return code == std::errc() && end != number.data() + number.size() && *end == delimiter && port != 0;
}

std::string portCommand(std::string_view ipv4, std::uint16_t port)
{
    std::string text = "PORT " + std::string(ipv4);
    for (char& c : text)
        c = c == '.' ? ',' : c;
    return text + ',' + std::to_string(port / 256) + ',' + std::to_string(port % 256) + "\r\n";
}

std::string extendedPortCommand(std::string_view address, bool isIpv6, std::uint16_t port)
{
    return std::string("EPRT |") + (isIpv6 ? '2' : '1') + '|' + std::string(address) + '|' +
           std::to_string(port) + "|\r\n";
}

} // namespace vantrel
