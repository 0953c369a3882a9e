#include "ombra/decode/graphicscard.h"

#include "ombra/decode/avhandles.h"
#include "tarn/log/log.h"

#include <atomic>
#include <mutex>

extern "C" {
#include <libavutil/hwcontext.h>
#include <libavutil/pixdesc.h>
}

namespace vantrel::ombra {

namespace {

std::atomic<bool> isAllowed{false};

void giveUp(const std::string& why)
{
    if (isAllowed.exchange(false))
        Log::write(LogLevel::Warning, "vantrel.decode",
                   "the processor decodes, since the graphics card does not: " + why);
}

/// Null where there is none. It is never closed: decoders hold it to the end.
AVBufferRef* device()
{
    static std::once_flag once;
    static AVBufferRef* found = nullptr;
    std::call_once(once, [] {
        const int made = av_hwdevice_ctx_create(&found, AV_HWDEVICE_TYPE_VAAPI, nullptr, nullptr, 0);
        if (made < 0)
            giveUp(avErrorText(made));
        else
            Log::write(LogLevel::Info, "vantrel.decode", "the graphics card decodes what it can");
    });
    return found;
}

/// Asked again without the card's own where the card does not decode that after all.
AVPixelFormat choose(AVCodecContext* decoder, const AVPixelFormat* formats)
{
    const AVPixelFormat* plain = nullptr;
    for (const AVPixelFormat* at = formats; *at != AV_PIX_FMT_NONE; ++at) {
        if (*at == AV_PIX_FMT_VAAPI && isAllowed)
            return *at;
        const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(*at);
        if (!plain && format && !(format->flags & AV_PIX_FMT_FLAG_HWACCEL))
            plain = at;
    }
    if (isAllowed)
        Log::write(LogLevel::Info, "vantrel.decode",
                   std::string("the processor decodes this ") + avcodec_get_name(decoder->codec_id));
    return plain ? *plain : AV_PIX_FMT_NONE;
}

} // namespace

void GraphicsCard::allow()
{
    isAllowed = true;
}

void GraphicsCard::offerTo(AVCodecContext& decoder)
{
    if (!isAllowed || !device())
        return;
    decoder.hw_device_ctx = av_buffer_ref(device());
    decoder.get_format = choose;
}

bool GraphicsCard::fetch(AVFrame& frame)
{
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if (!format || !(format->flags & AV_PIX_FMT_FLAG_HWACCEL))
        return true;
    const AvPtr<AVFrame> plain(av_frame_alloc());
    const bool isIts = plain && frame.hw_frames_ctx;
    int done = isIts ? av_hwframe_transfer_data(plain.get(), &frame, 0) : AVERROR(EINVAL);
    if (done >= 0)
        done = av_frame_copy_props(plain.get(), &frame);
    if (done < 0) {
        giveUp(avErrorText(done));
        return false;
    }
    av_frame_unref(&frame);
    av_frame_move_ref(&frame, plain.get());
    return true;
}

} // namespace vantrel::ombra
