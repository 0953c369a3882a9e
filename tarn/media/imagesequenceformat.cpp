#include "tarn/media/imagesequenceformat.h"

#include "tarn/media/mediasuffixes.h"
#include "tarn/media/numberfields.h"

#include <charconv>
#include <utility>

namespace vantrel {

ImageSequenceFormat::ImageSequenceFormat(std::string prefix, int width, std::string suffix)
    : m_prefix(std::move(prefix))
    , m_suffix(std::move(suffix))
    , m_width(width)
{
}

std::optional<ImageSequenceFormat> ImageSequenceFormat::parse(std::string_view path)
{
    std::optional<ImageSequenceFormat> other;
    const std::size_t name = path.rfind('/') + 1; // 0 without one
    for (std::size_t at = path.find('%', name); at != std::string_view::npos; at = path.find('%', at + 1)) {
        int width = 0;
        const char* const begin = path.data() + at + 1;
        const char* const end = path.data() + path.size();
        if (begin == end || *begin < '0' || *begin > '9')
            continue;
        const auto [rest, code] = std::from_chars(begin, end, width);
        if (rest - begin < 2 || rest == end || *rest != 'd')
            continue;
        const bool isWidth = code == std::errc() && width >= 1 && width <= maxWidth;
        const std::string_view behind(rest + 1, end);
        const bool isFirst = beginsWithSuffix(behind);
        if (isWidth && (isFirst || !other))
            other.emplace(std::string(path.substr(0, at)), width, std::string(behind));
        if (isFirst)
            return isWidth ? other : std::nullopt;
    }
    return other;
}

std::span<const std::string_view> ImageSequenceFormat::getSupportedImageExtensions()
{
    return pictureSuffixes;
}

std::string ImageSequenceFormat::toString() const
{
    return m_prefix + "%0" + std::to_string(m_width) + "d" + m_suffix;
}

std::string ImageSequenceFormat::file(std::size_t number) const
{
    std::string digits = std::to_string(number);
    if (digits.size() < static_cast<std::size_t>(m_width))
        digits.insert(0, static_cast<std::size_t>(m_width) - digits.size(), '0');
    return m_prefix + digits + m_suffix;
}

} // namespace vantrel
