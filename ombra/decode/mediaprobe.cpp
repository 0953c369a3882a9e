#include "ombra/decode/mediaprobe.h"

#include "ombra/decode/avinput.h"
#include "ombra/decode/mediaurl.h"
#include "ombra/decode/soundprogramme.h"
#include "ombra/decode/videoreader.h"

#include <cmath>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace vantrel::ombra {

namespace {

const std::atomic<bool> never{false};

void setError(std::string* error, const char* text)
{
    if (error)
        *error = text;
}

std::string textOf(const char* text)
{
    return text ? text : "";
}

ColorSpace colorSpaceOf(const AVCodecParameters& pictures)
{
    switch (pictures.color_space) {
    case AVCOL_SPC_RGB:
        return ColorSpace::Rgb;
    case AVCOL_SPC_BT709:
        return ColorSpace::Bt709;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return ColorSpace::Bt601;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return ColorSpace::Bt2020;
    case AVCOL_SPC_SMPTE240M:
        return ColorSpace::Smpte240m;
    case AVCOL_SPC_FCC:
        return ColorSpace::Fcc;
    case AVCOL_SPC_YCGCO:
        return ColorSpace::YCgCo;
    default:
        break;
    }
    // Stills seldom say it, but their pixels do.
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(pictures.format));
    const bool isRgb = format && (format->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL));
    return isRgb ? ColorSpace::Rgb : ColorSpace::Unknown;
}

/// What the stream says of itself, or else what the whole file does where there is nothing beside it.
std::int64_t bitRateOf(const AvInput& input)
{
    const std::int64_t own = input.video()->codecpar->bit_rate;
    if (own > 0 || input.format()->nb_streams > 1)
        return std::max<std::int64_t>(own, 0);
    return std::max<std::int64_t>(input.format()->bit_rate, 0);
}

/// Seconds of it; 0 where none can be decoded.
double describeSound(const std::filesystem::path& file, const AvInput& input, MediaInfo& info)
{
    const AVCodecParameters& sound = *input.audio()->codecpar;
    info.audioCodec = avcodec_get_name(sound.codec_id);
    info.audioProfile = textOf(avcodec_profile_name(sound.codec_id, sound.profile));
    info.audioChannels = sound.ch_layout.nb_channels;
    info.sampleRate = sound.sample_rate;
    const auto programme = SoundProgramme::open(file, never, nullptr);
    info.unsupportedAudio = !programme || programme->isPartial();
    if (programme && input.sounds().size() > 1)
        info.audioChannels = programme->channels();
    return programme ? programme->duration() : 0;
}

void describePictures(const AvInput& input, MediaInfo& info)
{
    const AVCodecParameters& pictures = *input.video()->codecpar;
    info.codec = avcodec_get_name(pictures.codec_id);
    info.profile = textOf(avcodec_profile_name(pictures.codec_id, pictures.profile));
    info.colorSpace = colorSpaceOf(pictures);
    info.pixelFormat = textOf(av_get_pix_fmt_name(static_cast<AVPixelFormat>(pictures.format)));
    const bool turned = input.quarterTurns() % 2;
    const AVRational aspect = av_guess_sample_aspect_ratio(input.format(), input.video(), nullptr);
    if (aspect.num > 0 && aspect.den > 0)
        info.pixelAspect =
            turned ? Rational<int>{aspect.den, aspect.num} : Rational<int>{aspect.num, aspect.den};
    info.width = turned ? pictures.height : pictures.width;
    info.height = turned ? pictures.width : pictures.height;
    if (input.isStill()) {
        info.type = MediaType::ImageFile;
        info.frames = 1;
        return;
    }
    info.type = MediaType::VideoFile;
    info.fps = input.fps();
    info.bitRate = bitRateOf(input);
    info.duration = input.duration();
    info.frames =
        input.video()->nb_frames > 0 ? input.video()->nb_frames : std::llround(info.duration * info.fps);
}

std::optional<MediaInfo> probeFile(const std::filesystem::path& file, std::string* error)
{
    std::error_code code;
    if (!std::filesystem::is_regular_file(file, code)) {
        setError(error, "there is no such file");
        return std::nullopt;
    }
    MediaInfo info;
    std::unique_ptr<AvInput> input = AvInput::open(file, never, error);
    if (!input)
        return info;
    const double sound = input->audio() ? describeSound(file, *input, info) : 0;
    if (!input->video()) {
        info.type = MediaType::AudioFile;
        info.codec = info.audioCodec;
        info.duration = input->duration();
        info.playable = sound > 0;
        if (!info.playable)
            setError(error, "its sound cannot be decoded");
        return info;
    }
    describePictures(*input, info);
    if (info.type == MediaType::VideoFile && sound > info.duration + AudioReader::padding)
        info.duration = sound; // it plays on behind the pictures
    const auto reader = VideoReader::open(std::move(input), {160, 90}, error);
    Picture picture;
    info.playable = reader && reader->seek(0, picture);
    if (reader && !info.playable)
        setError(error, "no picture of it can be decoded");
    return info;
}

} // namespace

std::optional<MediaInfo> probeMedia(const std::filesystem::path& file, std::string* error)
{
    const auto pattern = parseSequencePattern(file);
    std::error_code code;
    if (!pattern || std::filesystem::exists(file, code))
        return probeFile(file, error);
    const auto range = findSequenceRange(*pattern);
    if (!range) {
        setError(error, "the image sequence has no pictures");
        return std::nullopt;
    }
    std::optional<MediaInfo> info = probeFile(pattern->file(range->first), error);
    if (info) {
        info->type = MediaType::ImageSequence;
        info->frames = static_cast<std::int64_t>(range->second) - range->first + 1;
        info->fps = 25;
        info->duration = static_cast<double>(info->frames) / info->fps;
    }
    return info;
}

} // namespace vantrel::ombra
