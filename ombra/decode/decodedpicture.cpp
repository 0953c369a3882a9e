#include "ombra/decode/decodedpicture.h"

#include <algorithm>
#include <cstdlib>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace vantrel::ombra {

namespace {

/// Cameras write how they were held into their stills.
int exifQuarterTurns(const AVFrame& frame)
{
    const AVDictionaryEntry* entry = av_dict_get(frame.metadata, "Orientation", nullptr, 0);
    const int orientation = entry ? std::atoi(entry->value) : 1;
    return orientation == 6 ? 1 : orientation == 3 ? 2 : orientation == 8 ? 3 : 0;
}

/// Whether values are proportional to light: floating point without a word of it is.
bool isLinear(const AVFrame& frame, const AVPixFmtDescriptor& format)
{
    return frame.color_trc == AVCOL_TRC_LINEAR ||
           (frame.color_trc == AVCOL_TRC_UNSPECIFIED && (format.flags & AV_PIX_FMT_FLAG_FLOAT));
}

/// More than standard definition, whichever way it stands.
bool isLarge(const AVFrame& frame)
{
    return std::max(frame.width, frame.height) >= 1280 || std::min(frame.width, frame.height) > 576;
}

void sayWhatIsMeant(AVFrame& frame, const AVPixFmtDescriptor& format)
{
    if (isLinear(frame, format))
        frame.color_trc = AVCOL_TRC_LINEAR;
    if (!(format.flags & AV_PIX_FMT_FLAG_RGB) && frame.colorspace == AVCOL_SPC_UNSPECIFIED)
        frame.colorspace = isLarge(frame) ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

} // namespace

std::size_t DecodedPicture::bytes() const
{
    std::size_t sum = 0;
    for (int i = 0; frame && i < AV_NUM_DATA_POINTERS && frame->buf[i]; ++i)
        sum += frame->buf[i]->size;
    return sum;
}

bool DecodedPicture::hasAlpha() const
{
    const AVPixFmtDescriptor* format =
        frame ? av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame->format)) : nullptr;
    return format && (format->flags & AV_PIX_FMT_FLAG_ALPHA);
}

Ref<DecodedPicture> makePicture(const AVFrame& frame, int quarterTurns, AVRational streamAspect)
{
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
    if (!descriptor || frame.width < 1 || frame.height < 1 || !sws_isSupportedInput(format))
        return nullptr;
    auto picture = makeRef<DecodedPicture>();
    picture->frame.reset(av_frame_clone(&frame));
    if (!picture->frame)
        return nullptr;
    sayWhatIsMeant(*picture->frame, *descriptor);
    picture->quarterTurns = (quarterTurns + exifQuarterTurns(frame)) % 4;
    const AVRational aspect = frame.sample_aspect_ratio.num > 0 ? frame.sample_aspect_ratio : streamAspect;
    picture->uprightWidth = frame.width;
    picture->uprightHeight = frame.height;
    if (aspect.num > 0 && aspect.den > 0)
        picture->uprightWidth = std::clamp(picture->uprightWidth * av_q2d(aspect), 1.0, 1e6);
    if (picture->quarterTurns % 2)
        std::swap(picture->uprightWidth, picture->uprightHeight);
    return picture;
}

} // namespace vantrel::ombra
