#include "ombra/sound/speakers.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libswresample/swresample.h>
}

namespace vantrel::ombra {

namespace {

constexpr std::size_t room = 64; // channels each way: so many are divided, whatever the layouts have

bool mixDown(std::vector<float>& shares, int from, int to)
{
    AVChannelLayout in = {}, out = {};
    av_channel_layout_default(&in, from);
    av_channel_layout_default(&out, to);
    std::vector<double> matrix(room * room);
    const bool known = in.order == AV_CHANNEL_ORDER_NATIVE && out.order == AV_CHANNEL_ORDER_NATIVE;
    if (!known || swr_build_matrix2(&in, &out, M_SQRT1_2, M_SQRT1_2, 0, 1, 1, matrix.data(), room,
                                    AV_MATRIX_ENCODING_NONE, nullptr) < 0)
        return false;
    const auto inputs = static_cast<std::size_t>(from);
    for (std::size_t i = 0; i < shares.size(); ++i)
        shares[i] = static_cast<float>(matrix[i / inputs * room + i % inputs]);
    return true;
}

} // namespace

std::vector<float> speakerShares(int mediumChannels, int deviceChannels)
{
    const auto from = static_cast<std::size_t>(std::max(0, mediumChannels));
    const auto to = static_cast<std::size_t>(std::max(0, deviceChannels));
    std::vector<float> shares(from * to, 0.0f);
    if (from > to && mixDown(shares, mediumChannels, deviceChannels))
        return shares;
    for (std::size_t i = 0; i < std::min(from, to); ++i)
        shares[i * from + i] = 1;
    if (from == 1 && to > 1)
        shares[1] = 1;
    return shares;
}

} // namespace vantrel::ombra
