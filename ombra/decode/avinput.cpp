#include "ombra/decode/avinput.h"

#include "ombra/decode/graphicscard.h"

#include <algorithm>
#include <cmath>
#include <string_view>

extern "C" {
#include <libavutil/display.h>
}

namespace vantrel::ombra {

namespace {

constexpr int damagedPacketsAtMost = 500;

constexpr double fallbackFps = 25;

/// Rates that were worked out from rounded times mean the usual one beside them: n, or n * 1000 / 1001.
double usualRate(double rate)
{
    const double whole = std::round(rate);
    for (const double usual : {whole, whole * 1000 / 1001}) {
        if (std::abs(rate - usual) < usual * 1e-5)
            return usual;
    }
    return rate;
}

void setError(std::string* error, std::string text)
{
    if (error)
        *error = std::move(text);
}

AVStream* bestStream(AVFormatContext* format, AVMediaType type)
{
    const int index = av_find_best_stream(format, type, -1, -1, nullptr, 0);
    if (index >= 0)
        return format->streams[index];
    // Sound of an unknown kind tells neither channels nor rate, and is there all the same.
    for (unsigned i = 0; type == AVMEDIA_TYPE_AUDIO && i < format->nb_streams; ++i) {
        if (format->streams[i]->codecpar->codec_type == type)
            return format->streams[i];
    }
    return nullptr;
}

/// The usual decoders of VP8 and VP9 pass over what is transparent, which stands beside the pictures.
const AVCodec* decoderOf(const AVStream* stream)
{
    const AVCodecID id = stream->codecpar->codec_id;
    const AVDictionaryEntry* alpha = av_dict_get(stream->metadata, "alpha_mode", nullptr, 0);
    const AVCodec* codec = nullptr;
    if (alpha && std::string_view(alpha->value) == "1" && (id == AV_CODEC_ID_VP8 || id == AV_CODEC_ID_VP9))
        codec = avcodec_find_decoder_by_name(id == AV_CODEC_ID_VP8 ? "libvpx" : "libvpx-vp9");
    return codec ? codec : avcodec_find_decoder(id);
}

} // namespace

std::unique_ptr<AvInput> AvInput::open(const std::filesystem::path& file, const std::atomic<bool>& stop,
                                       std::string* error, Read read)
{
    routeAvLog();
    std::error_code code;
    if (!std::filesystem::is_regular_file(file, code)) { // a pipe would block for ever
        setError(error, "there is no such file");
        return nullptr;
    }
    std::unique_ptr<AvInput> input(new AvInput(stop));
    AVFormatContext* format = avformat_alloc_context();
    if (!format) {
        setError(error, "out of memory");
        return nullptr;
    }
    input->m_gate = {"file:" + file.string(), format->io_open};
    format->opaque = &input->m_gate;
    format->io_open = openOnlyOwn;
    format->interrupt_callback = {
        [](void* flag) { return static_cast<const std::atomic<bool>*>(flag)->load() ? 1 : 0; },
        const_cast<std::atomic<bool>*>(&stop)};

    AVDictionary* options = nullptr;
    av_dict_set(&options, "pattern_type", "none", 0); // a "%" in a still's name is just a character
    const int opened = avformat_open_input(&format, input->m_gate.url.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (opened < 0) {
        setError(error, avErrorText(opened));
        return nullptr;
    }
    input->m_format.reset(format);
    if (const int found = avformat_find_stream_info(format, nullptr); found < 0) {
        setError(error, avErrorText(found));
        return nullptr;
    }
    input->m_video = bestStream(format, AVMEDIA_TYPE_VIDEO);
    if (input->m_video && (input->m_video->disposition & AV_DISPOSITION_ATTACHED_PIC))
        input->m_video = nullptr;
    input->m_audio = bestStream(format, AVMEDIA_TYPE_AUDIO);
    if (!input->m_video && !input->m_audio) {
        setError(error, "there is neither picture nor sound in it");
        return nullptr;
    }
    const bool sound = input->m_audio && (read == Read::Sound || !input->m_video);
    const AVStream* wanted = sound ? input->m_audio : input->m_video;
    for (unsigned i = 0; i < format->nb_streams; ++i)
        format->streams[i]->discard = format->streams[i] == wanted ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    return input;
}

std::vector<AVStream*> AvInput::sounds() const
{
    std::vector<AVStream*> streams;
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        if (m_format->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            streams.push_back(m_format->streams[i]);
    }
    return streams;
}

bool AvInput::chooseSound(std::size_t index)
{
    const std::vector<AVStream*> streams = sounds();
    if (index >= streams.size())
        return false;
    m_audio->discard = AVDISCARD_ALL;
    m_audio = streams[index];
    m_audio->discard = AVDISCARD_DEFAULT;
    return true;
}

int AvInput::openOnlyOwn(AVFormatContext* context, AVIOContext** out, const char* url, int flags,
                         AVDictionary** options)
{
    const auto* gate = static_cast<const Gate*>(context->opaque);
    if (gate->url != url)
        return AVERROR(EACCES);
    return gate->open(context, out, url, flags, options);
}

bool AvInput::isStill() const
{
    const std::string_view name = m_format->iformat->name;
    return m_video && (name == "image2" || name.ends_with("_pipe")) && m_video->nb_frames <= 1;
}

double AvInput::fps() const
{
    if (!m_video)
        return fallbackFps;
    const double rate = av_q2d(av_guess_frame_rate(m_format.get(), m_video, nullptr));
    return std::isfinite(rate) && rate > 0 && rate <= 1000 ? usualRate(rate) : fallbackFps;
}

double AvInput::duration() const
{
    const AVStream* stream = m_video ? m_video : m_audio;
    if (stream->duration != AV_NOPTS_VALUE && stream->duration > 0)
        return static_cast<double>(stream->duration) * av_q2d(stream->time_base);
    if (m_video && m_video->nb_frames > 0)
        return static_cast<double>(m_video->nb_frames) / fps();
    if (m_format->duration != AV_NOPTS_VALUE && m_format->duration > 0)
        return static_cast<double>(m_format->duration) / AV_TIME_BASE;
    return 0;
}

int AvInput::quarterTurns() const
{
    if (!m_video)
        return 0;
    std::size_t size = 0;
    const std::uint8_t* matrix = av_stream_get_side_data(m_video, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (!matrix || size < 9 * sizeof(std::int32_t))
        return 0;
    const double angle = av_display_rotation_get(reinterpret_cast<const std::int32_t*>(matrix));
    return std::isfinite(angle) ? (static_cast<int>(std::lround(-angle / 90)) % 4 + 4) % 4 : 0;
}

AvPtr<AVCodecContext> AvInput::openDecoder(AVStream* stream, std::string* error, GraphicsCard* card) const
{
    const AVCodec* codec = decoderOf(stream);
    if (!codec) {
        setError(error, std::string("no decoder for ") + avcodec_get_name(stream->codecpar->codec_id));
        return nullptr;
    }
    AvPtr<AVCodecContext> decoder(avcodec_alloc_context3(codec));
    int result = decoder ? avcodec_parameters_to_context(decoder.get(), stream->codecpar) : AVERROR(ENOMEM);
    if (result >= 0) {
        decoder->pkt_timebase = stream->time_base;
        decoder->thread_count = stream == m_audio || isStill() ? 1 : 2;
        if (card)
            card->offerTo(*decoder);
        result = avcodec_open2(decoder.get(), codec, nullptr);
    }
    if (result < 0) {
        setError(error, avErrorText(result));
        return nullptr;
    }
    return decoder;
}

bool AvInput::feedDecoder(AVCodecContext* decoder, const AVStream* stream, AVPacket* packet, bool& draining,
                          const std::function<void(const AVPacket&)>& before,
                          const std::function<bool(int)>& goesOn) const
{
    if (draining)
        return false;
    for (int damaged = 0; damaged < damagedPacketsAtMost && !stopped();) {
        const int read = av_read_frame(m_format.get(), packet);
        if (read == AVERROR(EAGAIN) || read == AVERROR_INVALIDDATA) {
            ++damaged;
            continue;
        }
        if (read < 0) {
            draining = true;
            return avcodec_send_packet(decoder, nullptr) >= 0;
        }
        const bool ours = packet->stream_index == stream->index;
        if (ours && before)
            before(*packet);
        const int sent = ours ? avcodec_send_packet(decoder, packet) : 0;
        av_packet_unref(packet);
        if (sent < 0 && goesOn && !goesOn(sent))
            return false;
        if (sent < 0)
            ++damaged;
        else if (ours)
            return true;
    }
    return false;
}

} // namespace vantrel::ombra
