#include "ombra/engine/mix.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

MixShares mixShares(TakeTransitionType type, double weight)
{
    const double w = std::clamp(weight, 0.0, 1.0);
    switch (type) {
    case TakeTransitionType::DirectCut:
        return {0, 1};
    case TakeTransitionType::DipToColor:
        return {std::max(0.0, 1 - 2 * w), std::max(0.0, 2 * w - 1)};
    case TakeTransitionType::Crossfade:
        break;
    }
    return {1 - w, w};
}

Ref<Surface> mix(const Ref<Surface>& from, const Ref<Surface>& to, TakeTransitionType type, double weight)
{
    if (type == TakeTransitionType::DirectCut || from->pixels.size() != to->pixels.size())
        return to;
    const MixShares shares = mixShares(type, weight);
    const bool dip = type == TakeTransitionType::DipToColor;
    const auto a = static_cast<unsigned>(std::lround(shares.from * 256));
    const auto b = dip ? static_cast<unsigned>(std::lround(shares.to * 256)) : 256 - a;
    if (a == 256)
        return from;
    if (b == 256)
        return to;

    auto result = makeRef<Surface>();
    result->format = to->format;
    result->width = to->width;
    result->height = to->height;
    result->bytesPerLine = to->bytesPerLine;
    result->pixels.resize(to->pixels.size());
    const std::uint8_t* one = from->pixels.data();
    const std::uint8_t* two = to->pixels.data();
    std::uint8_t* out = result->pixels.data();
    for (std::size_t i = 0, count = result->pixels.size(); i < count; ++i)
        out[i] = static_cast<std::uint8_t>((one[i] * a + two[i] * b) >> 8);
    return result;
}

} // namespace vantrel::ombra
