#include "ombra/decode/framescaler.h"

#include <algorithm>
#include <cmath>
#include <cstring>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace vantrel::ombra {

namespace {

struct Fit
{
    int width, height;               // of the picture, upright
    int left, top;                   // of the picture on the surface
    int surfaceWidth, surfaceHeight; // pixels
};

Fit fitInto(Canvas canvas, double width, double height)
{
    if (canvas.height <= 0) {
        const double scale = std::min(1.0, canvas.width / width);
        const int w = std::max(1, static_cast<int>(std::lround(width * scale)));
        const int h = std::clamp(static_cast<int>(std::lround(height * scale)), 1, 4 * canvas.width);
        return {w, h, 0, 0, w, h};
    }
    const double scale = std::min(canvas.width / width, canvas.height / height);
    const int w = std::clamp(static_cast<int>(std::lround(width * scale)), 1, canvas.width);
    const int h = std::clamp(static_cast<int>(std::lround(height * scale)), 1, canvas.height);
    return {w, h, (canvas.width - w) / 2, (canvas.height - h) / 2, canvas.width, canvas.height};
}

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
    const Fit fit = fitInto(m_canvas, width, height);

    const bool alpha = descriptor->flags & AV_PIX_FMT_FLAG_ALPHA;
    const int scaledWidth = turns % 2 ? fit.height : fit.width;
    const int scaledHeight = turns % 2 ? fit.width : fit.height;
    if (!convert(frame, scaledWidth, scaledHeight, alpha))
        return nullptr;

    auto surface = makeRef<Surface>();
    surface->format = Surface::formatRgb24;
    surface->width = fit.surfaceWidth;
    surface->height = fit.surfaceHeight;
    surface->bytesPerLine = fit.surfaceWidth * 3;
    surface->pixels.assign(static_cast<std::size_t>(surface->bytesPerLine) * fit.surfaceHeight, 0);
    const int bytes = alpha ? 4 : 3;
    for (int y = 0; y < fit.height; ++y) {
        std::uint8_t* line = surface->pixels.data() +
                             static_cast<std::size_t>(fit.top + y) * surface->bytesPerLine + fit.left * 3;
        if (turns == 0 && !alpha) {
            std::memcpy(line, m_scaled.data() + static_cast<std::size_t>(y) * m_stride, fit.width * 3);
            continue;
        }
        for (int x = 0; x < fit.width; ++x) {
            const int fromX = turns == 0   ? x
                              : turns == 1 ? y
                              : turns == 2 ? scaledWidth - 1 - x
                                           : scaledWidth - 1 - y;
            const int fromY = turns == 0   ? y
                              : turns == 1 ? scaledHeight - 1 - x
                              : turns == 2 ? scaledHeight - 1 - y
                                           : x;
            copyPixel(line + x * 3,
                      m_scaled.data() + static_cast<std::size_t>(fromY) * m_stride + fromX * bytes, alpha);
        }
    }
    return surface;
}

bool FrameScaler::convert(const AVFrame& frame, int width, int height, bool alpha)
{
    bool fullRange = frame.color_range == AVCOL_RANGE_JPEG;
    const AVPixelFormat from = plainFormat(frame.format, fullRange);
    const AVPixelFormat to = alpha ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGB24;
    m_context.reset(sws_getCachedContext(m_context.release(), frame.width, frame.height, from, width, height,
                                         to, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!m_context)
        return false;
    // Without a mark, high definition is BT.709 and everything smaller BT.601.
    const bool hd = frame.colorspace == AVCOL_SPC_BT709 ||
                    (frame.colorspace == AVCOL_SPC_UNSPECIFIED && frame.height >= 720);
    const int matrix = hd                                         ? SWS_CS_ITU709
                       : frame.colorspace == AVCOL_SPC_BT2020_NCL ? SWS_CS_BT2020
                                                                  : SWS_CS_ITU601;
    sws_setColorspaceDetails(m_context.get(), sws_getCoefficients(matrix), fullRange,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);

    // The scaler's fast loops may write past the end of a line: leave them room.
    m_stride = (width * (alpha ? 4 : 3) + 64 + 63) / 64 * 64;
    m_scaled.resize(static_cast<std::size_t>(m_stride) * (height + 1));
    std::uint8_t* planes[4] = {m_scaled.data(), nullptr, nullptr, nullptr};
    const int strides[4] = {m_stride, 0, 0, 0};
    return sws_scale(m_context.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) > 0;
}

} // namespace vantrel::ombra
