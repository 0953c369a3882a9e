#include "ombra/decode/graphicscard.h"

#include "ombra/decode/avhandles.h"
#include "tarn/log/log.h"

#include <filesystem>
#include <mutex>
#include <set>

extern "C" {
#include <libavutil/hwcontext.h>
#include <libavutil/pixdesc.h>
}

namespace vantrel::ombra {

namespace {

bool isOnDevice(int format)
{
    const AVPixFmtDescriptor* known = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format));
    return known && (known->flags & AV_PIX_FMT_FLAG_HWACCEL);
}

class VaApi : public DecodingDevice
{
public:
    void offerTo(AVCodecContext& decoder) override
    {
        if (!device())
            return;
        decoder.hw_device_ctx = av_buffer_ref(device());
        decoder.get_format = choose;
    }

    int fetch(AVFrame& frame) override
    {
        if (!isOnDevice(frame.format))
            return 0;
        const AvPtr<AVFrame> plain(av_frame_alloc());
        const bool isIts = plain && frame.hw_frames_ctx;
        int done = isIts ? av_hwframe_transfer_data(plain.get(), &frame, 0) : AVERROR(EINVAL);
        if (done >= 0)
            done = av_frame_copy_props(plain.get(), &frame);
        if (done < 0)
            return done;
        av_frame_unref(&frame);
        av_frame_move_ref(&frame, plain.get());
        return 0;
    }

private:
    /// Null where there is none. It is never closed: decoders hold it to the end.
    AVBufferRef* device()
    {
        std::call_once(m_once, [this] {
            routeAvLog();
            AVDictionary* options = nullptr;
            av_dict_set(&options, "connection_type", "drm", 0); // a desktop may end, and would take us along
            const int made = av_hwdevice_ctx_create(&m_device, AV_HWDEVICE_TYPE_VAAPI, nullptr, options, 0);
            av_dict_free(&options);
            Log::write(LogLevel::Info, "vantrel.decode",
                       made < 0 ? "the processor decodes: no graphics card can be had by VA-API (" +
                                      avErrorText(made) + "); it takes a driver, and the right to /dev/dri"
                                : "the graphics card decodes what it can");
        });
        return m_device;
    }

    /// Asked again without the card's own where the card does not decode that after all.
    static AVPixelFormat choose(AVCodecContext* decoder, const AVPixelFormat* formats)
    {
        AVPixelFormat plain = AV_PIX_FMT_NONE;
        for (const AVPixelFormat* at = formats; *at != AV_PIX_FMT_NONE; ++at) {
            if (*at == AV_PIX_FMT_VAAPI) {
                GraphicsCard::note(*decoder, true);
                return *at;
            }
            if (plain == AV_PIX_FMT_NONE && !isOnDevice(*at))
                plain = *at;
        }
        GraphicsCard::note(*decoder, false);
        Log::write(LogLevel::Debug, "vantrel.decode",
                   std::string("the processor decodes this ") + avcodec_get_name(decoder->codec_id));
        return plain;
    }

    std::once_flag m_once;
    AVBufferRef* m_device = nullptr;
};

/// The machine's, and the media that it failed with.
struct Shared
{
    std::mutex mutex;
    std::shared_ptr<DecodingDevice> device;
    std::set<std::string> failed;
};

/// Never ends: decoders may last longer than what is static.
Shared& shared()
{
    static auto* const all = new Shared;
    return *all;
}

/// Another file of that name is another medium.
std::string keyOf(const std::string& url)
{
    const std::string file = url.starts_with("file:") ? url.substr(5) : url;
    std::error_code code;
    const auto changed = std::filesystem::last_write_time(file, code);
    return file + '\n' + std::to_string(changed.time_since_epoch().count());
}

std::shared_ptr<DecodingDevice> deviceFor(const std::string& medium)
{
    const std::lock_guard lock(shared().mutex);
    return shared().failed.contains(medium) ? nullptr : shared().device;
}

} // namespace

void GraphicsCard::allow()
{
    allow(std::make_unique<VaApi>());
}

void GraphicsCard::allow(std::unique_ptr<DecodingDevice> device)
{
    const std::lock_guard lock(shared().mutex);
    shared().device = std::move(device);
}

GraphicsCard::GraphicsCard(std::string medium)
    : m_medium(std::move(medium))
    , m_key(keyOf(m_medium))
{
}

void GraphicsCard::offerTo(AVCodecContext& decoder)
{
    m_device = deviceFor(m_key);
    if (!m_device)
        return;
    decoder.opaque = this;
    m_device->offerTo(decoder);
}

void GraphicsCard::note(const AVCodecContext& decoder, bool isByCard)
{
    static_cast<GraphicsCard*>(decoder.opaque)->m_decodes = isByCard;
}

bool GraphicsCard::fetch(AVFrame& frame)
{
    const int done = m_device && !m_hasFailed ? m_device->fetch(frame) : 0;
    if (done < 0)
        fail(avErrorText(done));
    return done >= 0;
}

void GraphicsCard::fail(const std::string& why)
{
    if (!m_decodes || m_hasFailed)
        return;
    m_hasFailed = true;
    {
        const std::lock_guard lock(shared().mutex);
        shared().failed.insert(m_key);
    }
    Log::write(LogLevel::Warning, "vantrel.decode",
               "the graphics card did not decode '" + std::filesystem::path(m_medium).filename().string() +
                   "': " + why + "; the processor goes on with it");
}

} // namespace vantrel::ombra
