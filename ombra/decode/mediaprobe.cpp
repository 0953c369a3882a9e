#include "ombra/decode/mediaprobe.h"

#include "ombra/decode/avinput.h"
#include "ombra/decode/mediaurl.h"
#include "ombra/decode/pictureend.h"
#include "ombra/decode/soundprogramme.h"
#include "ombra/decode/unplayable.h"
#include "ombra/decode/videoreader.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace vantrel::ombra {

namespace {

const std::atomic<bool> never{false};

void setError(std::string* error, std::string text)
{
    if (error)
        *error = std::move(text);
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
    const AVCodecDescriptor* kind = avcodec_descriptor_get(sound.codec_id);
    if (kind) {
        info.audioKind = kind->long_name ? kind->long_name : kind->name;
    } else if (sound.codec_tag != 0) {
        char tag[AV_FOURCC_MAX_STRING_SIZE] = {};
        info.audioKind = std::string("of the kind \"") + av_fourcc_make_string(tag, sound.codec_tag) + "\"";
    }
    const auto programme = SoundProgramme::open(file, never, nullptr);
    info.unsupportedAudio = !programme || programme->isPartial();
    info.partialAudio = programme && programme->isPartial();
    if (programme && input.sounds().size() > 1)
        info.audioChannels = programme->channels();
    return programme ? programme->duration() : 0;
}

std::string fieldOrderOf(const AVCodecParameters& pictures)
{
    switch (pictures.field_order) {
    case AV_FIELD_PROGRESSIVE:
        return "progressive";
    case AV_FIELD_TT: // as shown: "BT" means coded bottom first, shown top first
    case AV_FIELD_BT:
        return "top field first";
    case AV_FIELD_BB:
    case AV_FIELD_TB:
        return "bottom field first";
    default:
        return {};
    }
}

/// Of the pictures, else of any stream, else of the whole file.
std::string timecodeOf(const AvInput& input)
{
    const auto read = [](const AVDictionary* tags) {
        const AVDictionaryEntry* entry = av_dict_get(tags, "timecode", nullptr, 0);
        return textOf(entry ? entry->value : nullptr);
    };
    std::string text = input.video() ? read(input.video()->metadata) : std::string();
    for (unsigned i = 0; text.empty() && i < input.format()->nb_streams; ++i)
        text = read(input.format()->streams[i]->metadata);
    return text.empty() ? read(input.format()->metadata) : text;
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
    info.fieldOrder = fieldOrderOf(pictures);
    info.fps = input.fps();
    info.bitRate = bitRateOf(input);
    info.duration = input.duration();
    info.frames =
        input.video()->nb_frames > 0 ? input.video()->nb_frames : std::llround(info.duration * info.fps);
}

/// Sound alone.
void probeSound(const AvInput& input, double sound, MediaInfo& info, std::string* error)
{
    info.type = MediaType::AudioFile;
    info.codec = info.audioCodec;
    info.duration = input.duration();
    info.playable = sound > 0;
    if (!info.playable)
        setError(error, "Its sound (" + info.audioKind + ") cannot be decoded here. Convert it.");
}

/// With so many seconds of sound.
void probePictures(std::unique_ptr<AvInput> input, double sound, MediaInfo& info, std::string* error)
{
    describePictures(*input, info);
    if (info.type == MediaType::VideoFile && sound > info.duration + AudioReader::padding)
        info.duration = sound; // it plays on behind the pictures
    std::string why;
    const auto reader = VideoReader::open(std::move(input), &why, VideoReader::Decoding::ByProcessor);
    Picture picture;
    info.playable = reader && reader->seek(0, picture);
    if (!reader)
        setError(error, "Its pictures cannot be decoded here (" + why + "). Convert it.");
    else if (!info.playable)
        setError(error, "No picture of it can be decoded: the file is damaged. Copy it again.");
}

std::optional<MediaInfo> probeFile(const std::filesystem::path& file, std::string* error)
{
    std::error_code code;
    if (!std::filesystem::is_regular_file(file, code)) {
        setError(error, missingReason(file));
        return std::nullopt;
    }
    MediaInfo info;
    std::string why;
    std::unique_ptr<AvInput> input = AvInput::open(file, never, &why);
    // The library takes any text for a picture of letters.
    const bool isText = input && std::string_view(input->format()->iformat->name) == "tty";
    if (!input || isText) {
        setError(error, unplayableReason(file, why));
        return info;
    }
    const double sound = input->audio() ? describeSound(file, *input, info) : 0;
    info.startTimecode = timecodeOf(*input);
    if (input->video())
        probePictures(std::move(input), sound, info, error);
    else
        probeSound(*input, sound, info, error);
    if (info.playable && info.duration > 0)
        info.cutOff = findCutOff(file);
    if (!info.cutOff && isPictureCutOff(file)) {
        info.isPictureCutOff = true;
        if (!info.playable)
            setError(error, unplayableReason(file, {}));
    }
    return info;
}

} // namespace

std::optional<MediaInfo> probeMedia(const std::filesystem::path& file, std::string* error)
{
    const auto pattern = parseSequencePattern(file);
    std::error_code code;
    if (!pattern || std::filesystem::exists(file, code))
        return probeFile(file, error);
    const std::vector<int> numbers = findSequenceNumbers(*pattern);
    if (numbers.empty()) {
        setError(error, missingReason(file));
        return std::nullopt;
    }
    std::optional<MediaInfo> info = probeFile(sequencePicture(*pattern, numbers.front()), error);
    if (info) {
        info->type = MediaType::ImageSequence;
        info->frames = static_cast<std::int64_t>(numbers.back()) - numbers.front() + 1;
        info->fps = 25;
        info->duration = static_cast<double>(info->frames) / info->fps;
        info->missing = info->frames - static_cast<std::int64_t>(numbers.size());
        const auto gap = std::ranges::adjacent_find(numbers, [](int a, int b) { return b != a + 1; });
        info->firstMissing = gap == numbers.end() ? 0 : *gap + 1;
    }
    return info;
}

} // namespace vantrel::ombra
