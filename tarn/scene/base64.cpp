#include "tarn/scene/base64.h"

namespace vantrel::base64 {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string encode(std::span<const std::uint8_t> bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < count ? bytes[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= count ? alphabet[group >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> decode(std::string_view text)
{
    if (text.size() % 4 != 0)
        return {};
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPadding = i >= text.size() - padding;
        const std::size_t digit = isPadding ? 0 : alphabet.find(text[i]);
        if (digit == std::string_view::npos)
            return {};
        group = group << 6 | static_cast<std::uint32_t>(digit);
        if (i % 4 == 3) {
            for (int shift = 16; shift >= 0; shift -= 8)
                bytes.push_back(static_cast<std::uint8_t>(group >> shift));
            group = 0;
        }
    }
    bytes.resize(bytes.size() - padding);
    return bytes;
}

} // namespace vantrel::base64
