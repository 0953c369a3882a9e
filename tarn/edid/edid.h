#pragma once

#include "tarn/edid/videotiming.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// What a display says of itself, read here since Debian 12 has no library that does it: libdisplay-info
/// comes with Debian 13 (VESA E-EDID 1.3 and 1.4, with extension blocks of CTA-861 and DisplayID).
struct Edid
{
    struct Limits // of what it takes; 0 for one that it does not name
    {
        int minRate = 0, maxRate = 0;         // pictures a second
        int minLineRate = 0, maxLineRate = 0; // kHz
        std::int64_t maxDotClock = 0;         // Hz
    };
    struct Audio // one kind of sound that it plays
    {
        std::string format;
        int channels = 0;
        std::vector<int> rates; // Hz
        std::vector<int> bits;  // of a sample; of LPCM alone

        bool operator==(const Audio&) const = default;
    };

    std::string maker;              // three letters
    int productCode = 0;            // the maker's own
    std::uint32_t serialNumber = 0; // 0 for none
    std::string product;
    std::string serialText;
    int week = 0; // 0 where unknown
    int year = 0;
    bool isModelYear = false; // the year is that of the model, and not the one in which it was made
    int version = 1, revision = 0;
    bool isDigital = false;
    std::string interface; // "DisplayPort"; empty where unknown
    int bpc = 0;           // bits of a colour channel; 0 where unknown
    bool hasYcc444 = false, hasYcc422 = false, hasYcc420 = false;
    bool hasHdr10 = false, hasHlg = false;
    int widthMm = 0, heightMm = 0;  // of its picture; 0 where unknown
    std::vector<VideoTiming> modes; // in its own order, none twice
    std::optional<VideoTiming> preferred;
    Limits limits;
    bool hasBasicAudio = false; // two channels of LPCM, whatever else it names
    std::vector<Audio> audio;
};

/// Reads whole blocks of 128 bytes. False, with a sentence of what is wrong, for what is no EDID; whatNot is
/// left as it is then. Parts of extensions that make no sense are passed over, as in displays of the field.
bool readEdid(std::span<const std::uint8_t> bytes, Edid& out, std::string* whyNot);

/// The bytes of hexadecimal digits in either case; nothing for a text that holds anything else.
std::optional<std::vector<std::uint8_t>> bytesOfHex(std::string_view digits);

/// Why a display could not show a mode; empty where it can, as far as its EDID says.
std::string whyNotShown(const Edid& display, const VideoTiming& mode);

} // namespace vantrel
