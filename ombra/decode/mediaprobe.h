#pragma once

#include "ombra/decode/mediaend.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/rational.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace vantrel::ombra {

/// What a media file holds.
struct MediaInfo
{
    MediaType type = MediaType::Unknown;
    double duration = 0; // seconds; 0 for stills
    double fps = 0;      // pictures a second; 0 without moving pictures
    int width = 0;       // pixels as shown, that is, after rotation
    int height = 0;
    Rational<int> pixelAspect{1, 1};
    ColorSpace colorSpace = ColorSpace::Unknown;
    std::string pixelFormat;
    std::int64_t bitRate = 0; // of the pictures, bits a second; 0 where nothing tells
    std::string codec;        // of the pictures, or of the sound where there are none
    std::string profile;      // of the codec; often empty
    std::string audioCodec;   // empty without sound
    std::string audioProfile;
    int audioChannels = 0;
    int sampleRate = 0; // Hz
    bool playable = false;
    bool unsupportedAudio = false; // there is sound that is not played
    bool partialAudio = false;     // only some of it is not
    std::string audioKind;         // of such sound, as an operator may know it
    std::int64_t frames = 0;       // 1 for stills
    std::int64_t missing = 0;      // pictures that a sequence lacks between its first and last
    int firstMissing = 0;
    std::string startTimecode; // "10:00:00:00"; empty where there is none
    std::string fieldOrder;    // see MediaMetadata; empty where nothing tells
    std::optional<CutOff> cutOff;
    bool isPictureCutOff = false; // of a still
};

/// Opens a file, or the first picture of a sequence ("frame_%05d.png"), and decodes a picture of it, so that
/// playable holds what it says. Nothing, and the reason, when the file is missing; a damaged file gives a
/// record that is not playable, and the reason, which is a sentence for operators. Blocks; any thread.
std::optional<MediaInfo> probeMedia(const std::filesystem::path& file, std::string* error);

} // namespace vantrel::ombra
