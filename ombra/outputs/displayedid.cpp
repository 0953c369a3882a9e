#include "ombra/outputs/displayedid.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>

namespace vantrel::ombra {

namespace {

using Block = std::array<std::uint8_t, 128>;

std::uint8_t low(std::int64_t value)
{
    return static_cast<std::uint8_t>(value & 0xff);
}

/// A detailed timing (VESA E-EDID 1.4, 3.10.2).
void writeTiming(Block& block, std::size_t at, const DisplayTraits& display)
{
    const VideoTiming& mode = display.preferred;
    const int lines = mode.interlaced ? mode.height / 2 : mode.height;
    const int hBlank = mode.hTotal - mode.width;
    const int vBlank = (mode.interlaced ? mode.vTotal / 2 : mode.vTotal) - lines;
    const auto clock = mode.dotClock / 10'000;
    block[at] = low(clock);
    block[at + 1] = low(clock >> 8);
    block[at + 2] = low(mode.width);
    block[at + 3] = low(hBlank);
    block[at + 4] = low((mode.width >> 8 << 4) | hBlank >> 8);
    block[at + 5] = low(lines);
    block[at + 6] = low(vBlank);
    block[at + 7] = low((lines >> 8 << 4) | vBlank >> 8);
    block[at + 8] = low(mode.hFront);
    block[at + 9] = low(mode.hSync);
    block[at + 10] = low((mode.vFront & 15) << 4 | (mode.vSync & 15));
    block[at + 11] =
        low((mode.hFront >> 8) << 6 | (mode.hSync >> 8) << 4 | (mode.vFront >> 4) << 2 | mode.vSync >> 4);
    block[at + 12] = low(display.widthMm);
    block[at + 13] = low(display.heightMm);
    block[at + 14] = low((display.widthMm >> 8 << 4) | display.heightMm >> 8);
    block[at + 17] = low((mode.interlaced ? 0x80 : 0) | 0x18 | (mode.vPolarity > 0 ? 4 : 0) |
                         (mode.hPolarity > 0 ? 2 : 0));
}

void writeText(Block& block, std::size_t at, std::uint8_t tag, std::string_view text)
{
    block[at + 3] = tag;
    for (std::size_t i = 0; i < 13; ++i)
        block[at + 5 + i] = i < text.size()    ? static_cast<std::uint8_t>(text[i])
                            : i == text.size() ? 0x0a
                                               : 0x20;
}

void writeLimits(Block& block, std::size_t at, const DisplayTraits& display)
{
    block[at + 3] = 0xfd;
    block[at + 5] = 24;
    block[at + 6] = low(display.maxRate);
    block[at + 7] = 15;
    block[at + 8] = low(display.maxLineRate);
    block[at + 9] = low(display.maxDotClock / 10'000'000);
    block[at + 10] = 1; // no formula of timings
    block[at + 11] = 0x0a;
    std::fill_n(block.begin() + static_cast<std::ptrdiff_t>(at) + 12, 6, std::uint8_t{0x20});
}

void close(Block& block)
{
    block[127] = 0;
    block[127] = low(0x100 - std::accumulate(block.begin(), block.end(), 0) % 256);
}

Block baseBlock(const DisplayTraits& display)
{
    Block block{0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00};
    constexpr int maker = ('O' - '@') << 10 | ('M' - '@') << 5 | ('B' - '@');
    block[8] = low(maker >> 8);
    block[9] = low(maker);
    block[10] = 1;  // product code
    block[16] = 12; // week
    block[17] = 36; // year less 1990
    block[18] = 1;
    block[19] = 4;
    block[20] = low(0x80 | (display.bpc / 2 - 2) << 4 | 5); // digital, on DisplayPort
    block[21] = low(display.widthMm / 10);
    block[22] = low(display.heightMm / 10);
    block[23] = 120;  // gamma 2.2
    block[24] = 0x06; // sRGB, the preferred mode is its own
    constexpr std::uint8_t primaries[] = {0xee, 0x91, 0xa3, 0x54, 0x4c, 0x99, 0x26, 0x0f, 0x50, 0x54}; // sRGB
    std::ranges::copy(primaries, block.begin() + 25);
    std::fill_n(block.begin() + 38, 16, std::uint8_t{1}); // no standard timings
    writeTiming(block, 54, display);
    writeText(block, 72, 0xfc, display.product);
    writeText(block, 90, 0xff, display.serial);
    writeLimits(block, 108, display);
    block[126] = 1; // extension
    close(block);
    return block;
}

Block extension(const DisplayTraits& display)
{
    Block block{0x02, 0x03, 0x00, 0xc1}; // to the edge, basic audio, one mode of its own
    std::size_t at = 4;
    block[at++] = low(0x40 | static_cast<std::int64_t>(display.videoCodes.size()));
    for (const int code : display.videoCodes)
        block[at++] = low(code);
    constexpr int blocks[] = {0x23, 0x09, 0x07, 0x07, // LPCM
                              0x83, 0x01, 0x00, 0x00, // on the front speakers
                              0xe2, 0x00, 0x4a};      // range of levels as told, never overscanned
    for (const int byte : blocks)
        block[at++] = low(byte);
    block[2] = low(static_cast<std::int64_t>(at));
    close(block);
    return block;
}

} // namespace

std::string makeEdid(const DisplayTraits& display)
{
    std::string hex;
    for (const Block& block : {baseBlock(display), extension(display)}) {
        for (const std::uint8_t byte : block) {
            constexpr char digits[] = "0123456789abcdef";
            hex += digits[byte >> 4];
            hex += digits[byte & 15];
        }
    }
    return hex;
}

} // namespace vantrel::ombra
