#include "ombra/decode/framescaler.h"

#include "ombra/decode/decodedpicture.h"
#include "ombra/decode/placement.h"

#include <algorithm>
#include <cmath>
#include <cstring>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace vantrel::ombra {

namespace {

/// The formats with a "j" are the plain ones in full range; the scaler takes the range apart.
AVPixelFormat plainFormat(int format, bool& fullRange)
{
    switch (format) {
    case AV_PIX_FMT_YUVJ420P:
        fullRange = true;
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        fullRange = true;
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
        fullRange = true;
        return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P:
        fullRange = true;
        return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ411P:
        fullRange = true;
        return AV_PIX_FMT_YUV411P;
    default:
        return static_cast<AVPixelFormat>(format);
    }
}

/// The matrix of a frame. Between two RGB formats there is none to choose.
int matrixOf(const AVFrame& frame, const AVPixFmtDescriptor& format)
{
    if (format.flags & AV_PIX_FMT_FLAG_RGB)
        return SWS_CS_DEFAULT;
    switch (frame.colorspace) {
    case AVCOL_SPC_BT709:
        return SWS_CS_ITU709;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    case AVCOL_SPC_SMPTE240M:
        return SWS_CS_SMPTE240M;
    case AVCOL_SPC_FCC:
        return SWS_CS_FCC;
    default:
        return SWS_CS_ITU601;
    }
}

/// From a pixel of red, green, blue, or of blue, green, red, with its alpha behind, over what is there.
void blendPixel(std::uint8_t* to, const std::uint8_t* from)
{
    for (int i = 0; i < 3; ++i)
        to[i] = static_cast<std::uint8_t>((from[i] * from[3] + to[i] * (255 - from[3]) + 127) / 255);
}

AVPixelFormat formatOf(PixelTarget::Order order, bool hasAlpha)
{
    if (order == PixelTarget::Order::Rgb)
        return hasAlpha ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGB24;
    return hasAlpha ? AV_PIX_FMT_BGRA : AV_PIX_FMT_BGR0;
}

/// The scaler's fast loops write whole blocks: what they write behind a line must be the line's own.
bool isWholeBlocks(int width, int bytesPerPixel)
{
    return width * bytesPerPixel % 64 == 0;
}

} // namespace

Ref<Surface> FrameScaler::scale(const DecodedPicture& picture, const Canvas& canvas)
{
    if (!picture.frame)
        return blackSurface(canvas);
    const Placement at = ombra::place(canvas, picture.uprightWidth, picture.uprightHeight);
    Ref<Surface> surface = blackSurface({at.surfaceWidth, at.surfaceHeight});
    draw(picture, at, {PixelTarget::Order::Rgb, surface->pixels.data(), surface->bytesPerLine}, Care::Quick);
    return surface;
}

bool FrameScaler::draw(const DecodedPicture& picture, const Placement& at, const PixelTarget& target,
                       Care care)
{
    if (!picture.frame)
        return false;
    const AVFrame& frame = *picture.frame;
    const bool isSideways = picture.quarterTurns % 2;
    const Wish wish{isSideways ? at.height : at.width,
                    isSideways ? at.width : at.height,
                    picture.hasAlpha(),
                    ScreenLight::kindOf(frame) != ScreenLight::Kind::Usual,
                    target.order,
                    care};
    const bool isCut =
        at.x0 != at.left || at.y0 != at.top || at.x1 - at.x0 != at.width || at.y1 - at.y0 != at.height;
    // Between formats of RGB it takes the room behind the lines along.
    const bool isRgb =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format))->flags & AV_PIX_FMT_FLAG_RGB;
    if (picture.quarterTurns == 0 && !isCut && !wish.hasAlpha && !wish.isDeep && !isRgb &&
        isWholeBlocks(at.width, target.bytesPerPixel()))
        return convert(frame, wish,
                       target.pixels + static_cast<std::ptrdiff_t>(at.top) * target.bytesPerLine +
                           at.left * target.bytesPerPixel(),
                       target.bytesPerLine);
    if (!convert(frame, wish))
        return false;
    place(wish, picture.quarterTurns, at, target);
    return true;
}

/// What of the picture is seen, turned, from the scaled one.
void FrameScaler::place(const Wish& wish, int turns, const Placement& at, const PixelTarget& target) const
{
    const int bytes = wish.bytesPerPixel();
    const int step = target.bytesPerPixel();
    for (int row = at.y0; row < at.y1; ++row) {
        const int y = row - at.top;
        std::uint8_t* line = target.pixels + static_cast<std::ptrdiff_t>(row) * target.bytesPerLine;
        if (turns == 0 && !wish.hasAlpha) {
            std::memcpy(line + at.x0 * step,
                        m_scaled.data() + static_cast<std::size_t>(y) * m_stride + (at.x0 - at.left) * bytes,
                        static_cast<std::size_t>(at.x1 - at.x0) * bytes);
            continue;
        }
        for (int column = at.x0; column < at.x1; ++column) {
            const int x = column - at.left;
            const int fromX = turns == 0   ? x
                              : turns == 1 ? y
                              : turns == 2 ? wish.width - 1 - x
                                           : wish.width - 1 - y;
            const int fromY = turns == 0   ? y
                              : turns == 1 ? wish.height - 1 - x
                              : turns == 2 ? wish.height - 1 - y
                                           : x;
            const std::uint8_t* from =
                m_scaled.data() + static_cast<std::size_t>(fromY) * m_stride + fromX * bytes;
            if (wish.hasAlpha)
                blendPixel(line + column * step, from);
            else
                std::memcpy(line + column * step, from, 3);
        }
    }
}

bool FrameScaler::convert(const AVFrame& frame, const Wish& wish)
{
    // The scaler's fast loops may write past the end of a line: leave them room.
    m_stride = (wish.width * wish.bytesPerPixel() + 64 + 63) / 64 * 64;
    m_scaled.resize(static_cast<std::size_t>(m_stride) * (wish.height + 1));
    if (!wish.isDeep)
        return convert(frame, wish, m_scaled.data(), m_stride);
    m_deep.resize(static_cast<std::size_t>(m_stride) * (wish.height + 1));
    if (!convert(frame, wish, reinterpret_cast<std::uint8_t*>(m_deep.data()), 2 * m_stride))
        return false;
    encode(frame, wish);
    return true;
}

bool FrameScaler::convert(const AVFrame& frame, const Wish& wish, std::uint8_t* to, int bytesPerLine)
{
    bool fullRange = frame.color_range == AVCOL_RANGE_JPEG;
    const AVPixelFormat from = plainFormat(frame.format, fullRange);
    const AVPixelFormat format = wish.isDeep ? (wish.hasAlpha ? AV_PIX_FMT_RGBA64 : AV_PIX_FMT_RGB48)
                                             : formatOf(wish.order, wish.hasAlpha);
    int flags = SWS_BILINEAR;
    if (wish.care == Care::Exact || wish.isDeep)
        flags |= SWS_ACCURATE_RND;
    if (wish.isDeep)
        flags |= SWS_FULL_CHR_H_INP | SWS_FULL_CHR_H_INT;
    m_context.reset(sws_getCachedContext(m_context.release(), frame.width, frame.height, from, wish.width,
                                         wish.height, format, flags, nullptr, nullptr, nullptr));
    if (!m_context)
        return false;
    sws_setColorspaceDetails(m_context.get(),
                             sws_getCoefficients(matrixOf(frame, *av_pix_fmt_desc_get(from))), fullRange,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
    std::uint8_t* planes[4] = {to, nullptr, nullptr, nullptr};
    const int strides[4] = {bytesPerLine, 0, 0, 0};
    return sws_scale(m_context.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) > 0;
}

/// From what is not made for a screen.
void FrameScaler::encode(const AVFrame& frame, const Wish& wish)
{
    m_light.follow(frame);
    for (int row = 0; row < wish.height; ++row) {
        const std::size_t line = static_cast<std::size_t>(row) * m_stride;
        m_light.encode(m_deep.data() + line, m_scaled.data() + line, wish.width, wish.hasAlpha,
                       wish.order == PixelTarget::Order::Bgrx, wish.bytesPerPixel());
    }
}

} // namespace vantrel::ombra
