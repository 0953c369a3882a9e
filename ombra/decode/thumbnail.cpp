#include "ombra/decode/thumbnail.h"

#include "ombra/decode/avhandles.h"
#include "ombra/decode/framescaler.h"
#include "ombra/decode/picturereader.h"
#include "tarn/media/mediaenums.h"

#include <algorithm>

namespace vantrel::ombra {

namespace {

const std::atomic<bool> never{false};

AvPtr<AVFrame> toYuv(const Surface& surface)
{
    AvPtr<AVFrame> frame(av_frame_alloc());
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = surface.width;
    frame->height = surface.height;
    frame->color_range = AVCOL_RANGE_JPEG;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    const AvPtr<SwsContext> scaler(sws_getContext(surface.width, surface.height, AV_PIX_FMT_RGB24,
                                                  surface.width, surface.height, AV_PIX_FMT_YUV420P,
                                                  SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!scaler)
        return nullptr;
    const int* coefficients = sws_getCoefficients(SWS_CS_ITU601);
    sws_setColorspaceDetails(scaler.get(), coefficients, 1, coefficients, 1, 0, 1 << 16, 1 << 16);
    const std::uint8_t* planes[] = {surface.pixels.data()};
    const int strides[] = {surface.bytesPerLine};
    if (sws_scale(scaler.get(), planes, strides, 0, surface.height, frame->data, frame->linesize) <= 0)
        return nullptr;
    return frame;
}

std::vector<std::uint8_t> encodeJpeg(const Surface& surface, std::string* error)
{
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MJPEG);
    const AvPtr<AVCodecContext> encoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    const AvPtr<AVFrame> frame = toYuv(surface);
    const AvPtr<AVPacket> packet(av_packet_alloc());
    int result = encoder && frame ? 0 : AVERROR(ENOMEM);
    if (result >= 0) {
        encoder->width = surface.width;
        encoder->height = surface.height;
        encoder->pix_fmt = AV_PIX_FMT_YUV420P;
        encoder->color_range = AVCOL_RANGE_JPEG;
        encoder->strict_std_compliance = FF_COMPLIANCE_UNOFFICIAL;
        encoder->time_base = {1, 25};
        encoder->flags |= AV_CODEC_FLAG_QSCALE;
        encoder->global_quality = 4 * FF_QP2LAMBDA;
        frame->quality = encoder->global_quality;
        result = avcodec_open2(encoder.get(), codec, nullptr);
    }
    if (result >= 0)
        result = avcodec_send_frame(encoder.get(), frame.get());
    if (result >= 0)
        result = avcodec_receive_packet(encoder.get(), packet.get());
    if (result < 0) {
        if (error)
            *error = avErrorText(result);
        return {};
    }
    return {packet->data, packet->data + packet->size};
}

} // namespace

std::vector<std::uint8_t> renderThumbnail(const std::filesystem::path& file, double seconds, int width,
                                          std::string* error)
{
    const auto reader = openReader({file, std::nullopt}, never, error);
    if (!reader)
        return {};
    Picture picture;
    if (reader->type() == MediaType::AudioFile || !reader->seek(seconds, picture)) {
        if (error)
            *error = "there is no picture in it";
        return {};
    }
    return encodeJpeg(*FrameScaler().scale(*picture.image, {std::clamp(width, 16, 4096), 0}), error);
}

} // namespace vantrel::ombra
