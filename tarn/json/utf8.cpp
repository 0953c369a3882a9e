#include "tarn/json/utf8.h"

#include <cstdint>
#include <cstring>

namespace vantrel::utf8 {

namespace {

bool inRange(char c, unsigned low, unsigned high) noexcept
{
    const unsigned byte = static_cast<unsigned char>(c);
    return byte >= low && byte <= high;
}

} // namespace

const char* skipSequence(const char* p, const char* end) noexcept
{
    const unsigned lead = static_cast<unsigned char>(*p);
    const auto left = end - p;
    if (lead >= 0xC2 && lead <= 0xDF)
        return left >= 2 && inRange(p[1], 0x80, 0xBF) ? p + 2 : nullptr;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF; // no surrogates
        return left >= 3 && inRange(p[1], low, high) && inRange(p[2], 0x80, 0xBF) ? p + 3 : nullptr;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF; // up to U+10FFFF
        const bool good =
            left >= 4 && inRange(p[1], low, high) && inRange(p[2], 0x80, 0xBF) && inRange(p[3], 0x80, 0xBF);
        return good ? p + 4 : nullptr;
    }
    return nullptr;
}

bool isValid(std::string_view text) noexcept
{
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p < end) {
        std::uint64_t word = 0;
        if (end - p >= 8) {
            std::memcpy(&word, p, 8);
            if ((word & 0x8080808080808080u) == 0) {
                p += 8;
                continue;
            }
        }
        p = static_cast<signed char>(*p) >= 0 ? p + 1 : skipSequence(p, end);
        if (!p)
            return false;
    }
    return true;
}

std::string repaired(std::string_view text)
{
    std::string out;
    out.reserve(text.size() + 8);
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p < end) {
        const char* next = static_cast<signed char>(*p) >= 0 ? p + 1 : skipSequence(p, end);
        if (next) {
            out.append(p, next);
            p = next;
        } else {
            out += "\xEF\xBF\xBD";
            ++p;
        }
    }
    return out;
}

void append(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

} // namespace vantrel::utf8
