#include "tarn/edid/edidblocks.h"

#include <algorithm>

namespace vantrel::edidblocks {

namespace {

enum DataBlock : std::uint8_t { Audio = 1, Video = 2, Vendor = 3, Extended = 7 };
enum ExtendedBlock : std::uint8_t { HdrStatic = 6, Preferences = 13, Video420 = 14, Map420 = 15 };

constexpr unsigned hdmi = 0x000c03, hdmiForum = 0xc45dd8; // identifiers of their vendors' blocks

/// The video code of a short descriptor, in which some have a bit that marks them as native.
int videoCode(std::uint8_t descriptor)
{
    return descriptor >= 129 && descriptor <= 192 ? descriptor & 0x7f : descriptor;
}

void addVideoCodes(Bytes codes, Edid& display)
{
    for (const std::uint8_t code : codes) {
        if (const VideoTiming* mode = findVic(videoCode(code)))
            addMode(display, *mode);
    }
}

void addAudio(Bytes descriptors, Edid& display)
{
    constexpr std::array<const char*, 15> formats{
        "",      "LPCM",    "AC-3",          "MPEG-1", "MP3", "MPEG-2", "AAC",    "DTS",
        "ATRAC", "One bit", "Enhanced AC-3", "DTS-HD", "MAT", "DST",    "WMA Pro"};
    constexpr std::array<int, 7> rates{32000, 44100, 48000, 88200, 96000, 176400, 192000};
    constexpr std::array<int, 3> bits{16, 20, 24};
    for (; descriptors.size() >= 3; descriptors = descriptors.subspan(3)) {
        const std::size_t format = descriptors[0] >> 3 & 15;
        if (format == 0 || format >= formats.size())
            continue;
        Edid::Audio audio{formats[format], (descriptors[0] & 7) + 1, {}, {}};
        for (std::size_t i = 0; i < rates.size(); ++i) {
            if (descriptors[1] >> i & 1)
                audio.rates.push_back(rates[i]);
        }
        for (std::size_t i = 0; format == 1 && i < bits.size(); ++i) {
            if (descriptors[2] >> i & 1)
                audio.bits.push_back(bits[i]);
        }
        if (std::ranges::find(display.audio, audio) == display.audio.end())
            display.audio.push_back(std::move(audio));
    }
}

/// The four modes that HDMI named before CTA-861 did.
void addHdmiModes(Bytes block, Edid& display)
{
    if (block.size() < 8 || !(block[7] & 0x20))
        return;
    const std::size_t at = 8 + (block[7] & 0x80 ? 2 : 0) + (block[7] & 0x40 ? 2 : 0);
    if (block.size() < at + 2)
        return;
    const std::size_t count = std::min<std::size_t>(block[at + 1] >> 5, block.size() - at - 2);
    constexpr std::array<int, 5> codes{0, 95, 94, 93, 98};
    for (const std::uint8_t code : block.subspan(at + 2, count)) {
        if (code < codes.size() && codes[code])
            addMode(display, *findVic(codes[code]));
    }
}

void readVendor(Bytes block, Edid& display)
{
    if (block.size() < 5)
        return;
    const unsigned vendor = block[0] | block[1] << 8 | static_cast<unsigned>(block[2]) << 16;
    if (vendor == hdmi) {
        if (display.interface.empty())
            display.interface = "HDMI";
        const int flags = block.size() > 5 ? block[5] : 0;
        const int depth = flags & 0x40 ? 16 : flags & 0x20 ? 12 : flags & 0x10 ? 10 : 8;
        display.bpc = std::max(display.bpc, depth);
        addHdmiModes(block, display);
    } else if (vendor == hdmiForum && block.size() > 4) {
        // More than what the limits of the base block can say of it.
        const std::int64_t clock = block[4] * std::int64_t{5'000'000};
        if (display.limits.maxDotClock && clock > display.limits.maxDotClock)
            display.limits.maxDotClock = clock;
    }
}

std::optional<VideoTiming> modeOf(int code)
{
    const VideoTiming* mode = findVic(code);
    return mode ? std::optional(*mode) : std::nullopt;
}

void readExtended(Bytes block, Edid& display, Preference& preference)
{
    if (block.empty())
        return;
    if (block[0] == HdrStatic && block.size() > 1) {
        display.hasHdr10 = block[1] & 0x04;
        display.hasHlg = block[1] & 0x08;
    } else if (block[0] == Preferences && block.size() > 1 && !preference.named) {
        preference.named = modeOf(block[1]); // no code of a mode: a detailed timing by its number
        if (preference.named)
            addMode(display, *preference.named);
    } else if (block[0] == Video420) {
        display.hasYcc420 = true;
        addVideoCodes(block.subspan(1), display);
    } else if (block[0] == Map420) {
        display.hasYcc420 = true;
    }
}

void readDataBlocks(Bytes blocks, Edid& display, Preference& preference)
{
    while (!blocks.empty()) {
        const std::size_t size = std::min<std::size_t>(blocks[0] & 31, blocks.size() - 1);
        const Bytes content = blocks.subspan(1, size);
        switch (blocks[0] >> 5) {
        case Audio:
            addAudio(content, display);
            break;
        case Video:
            addVideoCodes(content, display);
            if (!preference.first && !content.empty())
                preference.first = modeOf(videoCode(content[0]));
            break;
        case Vendor:
            readVendor(content, display);
            break;
        case Extended:
            readExtended(content, display, preference);
            break;
        default:
            break;
        }
        blocks = blocks.subspan(1 + size);
    }
}

/// A detailed timing of DisplayID's type I, or VII, which counts its clock in kHz.
void addDisplayIdTiming(Bytes bytes, int clockStep, Edid& display, Preference& preference)
{
    constexpr int mask = 0x7fff;
    VideoTiming mode;
    mode.dotClock = ((bytes[0] | bytes[1] << 8 | bytes[2] << 16) + std::int64_t{1}) * clockStep;
    mode.width = word(bytes, 4) + 1;
    mode.hTotal = mode.width + word(bytes, 6) + 1;
    mode.hFront = (word(bytes, 8) & mask) + 1;
    mode.hPolarity = word(bytes, 8) & ~mask ? 1 : -1;
    mode.hSync = word(bytes, 10) + 1;
    mode.height = word(bytes, 12) + 1;
    mode.vTotal = mode.height + word(bytes, 14) + 1;
    mode.vFront = (word(bytes, 16) & mask) + 1;
    mode.vPolarity = word(bytes, 16) & ~mask ? 1 : -1;
    mode.vSync = word(bytes, 18) + 1;
    const bool isInterlaced = bytes[3] & 0x10;
    if (isInterlaced)
        return; // which of its lines they count differs from maker to maker
    addMode(display, mode);
    const bool isPreferred = bytes[3] & 0x80;
    if (isPreferred && !preference.named)
        preference.named = mode;
}

} // namespace

void readCtaExtension(Block block, Edid& display, Preference& preference)
{
    const std::size_t timings = block[2] == 0 ? blockSize - 1 : block[2]; // 0: no room is kept for them
    if (block[1] >= 2) {
        display.hasBasicAudio = display.hasBasicAudio || block[3] & 0x40;
        display.hasYcc444 = display.hasYcc444 || block[3] & 0x20;
        display.hasYcc422 = display.hasYcc422 || block[3] & 0x10;
    }
    if (timings < 4 || timings > blockSize - 1)
        return;
    if (block[1] >= 3)
        readDataBlocks(block.subspan(4, timings - 4), display, preference);
    for (std::size_t at = timings; block[2] && at + descriptorSize < blockSize; at += descriptorSize) {
        const auto mode = detailedTiming(block.subspan(at, descriptorSize));
        if (!mode)
            break;
        addMode(display, *mode);
    }
}

void readDisplayIdExtension(Block block, Edid& display, Preference& preference)
{
    constexpr std::size_t timingSize = 20;
    Bytes blocks = block.subspan(5, std::min<std::size_t>(block[2], blockSize - 7));
    while (blocks.size() >= 3 && (blocks[0] || blocks[2])) {
        const std::size_t size = std::min<std::size_t>(blocks[2], blocks.size() - 3);
        const int clockStep = blocks[0] == 0x03 ? 10'000 : blocks[0] == 0x22 ? 1'000 : 0;
        for (std::size_t at = 3; clockStep && at + timingSize <= 3 + size; at += timingSize)
            addDisplayIdTiming(blocks.subspan(at, timingSize), clockStep, display, preference);
        blocks = blocks.subspan(3 + size);
    }
}

} // namespace vantrel::edidblocks
