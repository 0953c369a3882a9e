#include "ombra/decode/framescaler.h"

#include "ombra/decode/decodedsurface.h"
#include "ombra/decode/placement.h"

#include <algorithm>
#include <cmath>
#include <cstring>

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

/// Whether values are proportional to light: floating point without a word of it is.
bool isLinear(const AVFrame& frame, const AVPixFmtDescriptor& format)
{
    return frame.color_trc == AVCOL_TRC_LINEAR ||
           (frame.color_trc == AVCOL_TRC_UNSPECIFIED && (format.flags & AV_PIX_FMT_FLAG_FLOAT));
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

/// More than standard definition, whichever way it stands.
bool isLarge(const AVFrame& frame)
{
    return std::max(frame.width, frame.height) >= 1280 || std::min(frame.width, frame.height) > 576;
}

/// The matrix of a frame. Without a mark, what is large is BT.709. Between two RGB formats there is none to
/// choose.
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
    case AVCOL_SPC_UNSPECIFIED:
        return isLarge(frame) ? SWS_CS_ITU709 : SWS_CS_ITU601;
    default:
        return SWS_CS_ITU601;
    }
}

/// The frame itself, not a copy of it, which says what is only meant: its matrix, and that it is linear.
AvPtr<AVFrame> keep(const AVFrame& frame, const AVPixFmtDescriptor& format)
{
    AvPtr<AVFrame> kept(av_frame_clone(&frame));
    if (!kept)
        return nullptr;
    if (isLinear(frame, format))
        kept->color_trc = AVCOL_TRC_LINEAR;
    if (!(format.flags & AV_PIX_FMT_FLAG_RGB) && frame.colorspace == AVCOL_SPC_UNSPECIFIED)
        kept->colorspace = isLarge(frame) ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    return kept;
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

Ref<Surface> FrameScaler::scale(const AVFrame& frame, int quarterTurns, AVRational streamAspect)
{
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if (!descriptor || frame.width < 1 || frame.height < 1 || (descriptor->flags & AV_PIX_FMT_FLAG_HWACCEL))
        return nullptr;
    const int turns = (quarterTurns + exifQuarterTurns(frame)) % 4;
    const AVRational aspect = frame.sample_aspect_ratio.num > 0 ? frame.sample_aspect_ratio : streamAspect;
    double width = frame.width;
    double height = frame.height;
    if (aspect.num > 0 && aspect.den > 0)
        width = std::clamp(width * av_q2d(aspect), 1.0, 1e6);
    if (turns % 2)
        std::swap(width, height);
    const Placement fit = place(m_canvas, width, height);

    // Values that are linear come multiplied with their alpha already: as they are, they stand on black.
    const bool alpha = (descriptor->flags & AV_PIX_FMT_FLAG_ALPHA) && !isLinear(frame, *descriptor);
    const int scaledWidth = turns % 2 ? fit.height : fit.width;
    const int scaledHeight = turns % 2 ? fit.width : fit.height;
    if (!convert(frame, scaledWidth, scaledHeight, alpha))
        return nullptr;

    auto surface = makeRef<DecodedSurface>();
    if (m_canvas.keepsFrames)
        surface->decoded = keep(frame, *descriptor);
    surface->quarterTurns = turns;
    surface->uprightWidth = width;
    surface->uprightHeight = height;
    surface->scaling = m_canvas.scaling;
    surface->format = Surface::formatRgb24;
    surface->width = fit.surfaceWidth;
    surface->height = fit.surfaceHeight;
    surface->bytesPerLine = fit.surfaceWidth * 3;
    surface->pixels.assign(static_cast<std::size_t>(surface->bytesPerLine) * fit.surfaceHeight, 0);
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
    const bool linear = isLinear(frame, format);
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
