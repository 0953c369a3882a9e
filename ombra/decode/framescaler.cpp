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

/// What a screen is given for 16 bits that are linear in light: the transfer function of sRGB, IEC 61966-2-1.
const std::vector<std::uint8_t>& screenValues()
{
    static const std::vector<std::uint8_t> table = [] {
        std::vector<std::uint8_t> values(65536);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double light = static_cast<double>(i) / 65535;
            const double value =
                light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
            values[i] = static_cast<std::uint8_t>(std::lround(255 * value));
        }
        return values;
    }();
    return table;
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

void copyPixel(std::uint8_t* to, const std::uint8_t* from, bool alpha)
{
    if (!alpha) {
        std::memcpy(to, from, 3);
        return;
    }
    for (int i = 0; i < 3; ++i)
        to[i] = static_cast<std::uint8_t>((from[i] * from[3] + 127) / 255);
}

} // namespace

Ref<Surface> FrameScaler::scale(const DecodedPicture& picture, const Canvas& canvas)
{
    Ref<Surface> surface = blackSurface(canvas);
    if (!picture.frame)
        return surface;
    const AVFrame& frame = *picture.frame;
    const AVPixFmtDescriptor& descriptor = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const int turns = picture.quarterTurns;
    const Placement fit = place(canvas, picture.uprightWidth, picture.uprightHeight);

    // Values that are linear come multiplied with their alpha already: as they are, they stand on black.
    const bool alpha = (descriptor.flags & AV_PIX_FMT_FLAG_ALPHA) && frame.color_trc != AVCOL_TRC_LINEAR;
    const int scaledWidth = turns % 2 ? fit.height : fit.width;
    const int scaledHeight = turns % 2 ? fit.width : fit.height;
    if (!convert(frame, scaledWidth, scaledHeight, alpha))
        return surface;
    if (canvas.height <= 0)
        surface = blackSurface({fit.surfaceWidth, fit.surfaceHeight});
    const int bytes = alpha ? 4 : 3;
    for (int row = fit.y0; row < fit.y1; ++row) {
        const int y = row - fit.top;
        std::uint8_t* line = surface->pixels.data() + static_cast<std::size_t>(row) * surface->bytesPerLine;
        if (turns == 0 && !alpha) {
            std::memcpy(line + fit.x0 * 3,
                        m_scaled.data() + static_cast<std::size_t>(y) * m_stride + (fit.x0 - fit.left) * 3,
                        static_cast<std::size_t>(fit.x1 - fit.x0) * 3);
            continue;
        }
        for (int column = fit.x0; column < fit.x1; ++column) {
            const int x = column - fit.left;
            const int fromX = turns == 0   ? x
                              : turns == 1 ? y
                              : turns == 2 ? scaledWidth - 1 - x
                                           : scaledWidth - 1 - y;
            const int fromY = turns == 0   ? y
                              : turns == 1 ? scaledHeight - 1 - x
                              : turns == 2 ? scaledHeight - 1 - y
                                           : x;
            copyPixel(line + column * 3,
                      m_scaled.data() + static_cast<std::size_t>(fromY) * m_stride + fromX * bytes, alpha);
        }
    }
    return surface;
}

bool FrameScaler::convert(const AVFrame& frame, int width, int height, bool alpha)
{
    bool fullRange = frame.color_range == AVCOL_RANGE_JPEG;
    const AVPixelFormat from = plainFormat(frame.format, fullRange);
    const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(from);
    const bool linear = frame.color_trc == AVCOL_TRC_LINEAR;
    const AVPixelFormat to = linear ? AV_PIX_FMT_RGB48 : alpha ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGB24;
    const int flags =
        linear ? SWS_BILINEAR | SWS_FULL_CHR_H_INP | SWS_FULL_CHR_H_INT | SWS_ACCURATE_RND : SWS_BILINEAR;
    m_context.reset(sws_getCachedContext(m_context.release(), frame.width, frame.height, from, width, height,
                                         to, flags, nullptr, nullptr, nullptr));
    if (!m_context)
        return false;
    sws_setColorspaceDetails(m_context.get(), sws_getCoefficients(matrixOf(frame, format)), fullRange,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);

    // The scaler's fast loops may write past the end of a line: leave them room.
    m_stride = (width * (alpha ? 4 : 3) + 64 + 63) / 64 * 64;
    m_scaled.resize(static_cast<std::size_t>(m_stride) * (height + 1));
    if (linear)
        m_linear.resize(m_scaled.size());
    std::uint8_t* const target = linear ? reinterpret_cast<std::uint8_t*>(m_linear.data()) : m_scaled.data();
    std::uint8_t* planes[4] = {target, nullptr, nullptr, nullptr};
    const int strides[4] = {linear ? 2 * m_stride : m_stride, 0, 0, 0};
    if (sws_scale(m_context.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) <= 0)
        return false;
    if (linear)
        encodeLinear(width, height);
    return true;
}

void FrameScaler::encodeLinear(int width, int height)
{
    const std::vector<std::uint8_t>& values = screenValues();
    for (int row = 0; row < height; ++row) {
        const std::size_t line = static_cast<std::size_t>(row) * m_stride;
        std::transform(m_linear.begin() + static_cast<std::ptrdiff_t>(line),
                       m_linear.begin() + static_cast<std::ptrdiff_t>(line) + 3 * width,
                       m_scaled.begin() + static_cast<std::ptrdiff_t>(line),
                       [&](std::uint16_t light) { return values[light]; });
    }
}

} // namespace vantrel::ombra
