#include "ombra/outputs/videomodes.h"

#include <array>
#include <cctype>
#include <cstdint>

namespace vantrel::ombra {

namespace {

// clang-format off
constexpr VideoMode modes[] = {
    {"1920x1080p50", "1920 x 1080p 50 Hz", 1920, 1080, 2640, 1125, 528, 44, 4, 5, 1, 1, false, 148'500'000},
    {"1920x1080p60", "1920 x 1080p 60 Hz", 1920, 1080, 2200, 1125, 88, 44, 4, 5, 1, 1, false, 148'500'000},
    {"1920x1080p59.94", "1920 x 1080p 59.94 Hz", 1920, 1080, 2200, 1125, 88, 44, 4, 5, 1, 1, false, 148'351'648},
    {"1920x1080p30", "1920 x 1080p 30 Hz", 1920, 1080, 2200, 1125, 88, 44, 4, 5, 1, 1, false, 74'250'000},
    {"1920x1080p25", "1920 x 1080p 25 Hz", 1920, 1080, 2640, 1125, 528, 44, 4, 5, 1, 1, false, 74'250'000},
    {"1920x1080p24", "1920 x 1080p 24 Hz", 1920, 1080, 2750, 1125, 638, 44, 4, 5, 1, 1, false, 74'250'000},
    {"1920x1080i50", "1920 x 1080i 50 Hz", 1920, 1080, 2640, 1125, 528, 44, 4, 10, 1, 1, true, 74'250'000},
    {"1920x1080i60", "1920 x 1080i 60 Hz", 1920, 1080, 2200, 1125, 88, 44, 4, 10, 1, 1, true, 74'250'000},
    {"1280x720p50", "1280 x 720p 50 Hz", 1280, 720, 1980, 750, 440, 40, 5, 5, 1, 1, false, 74'250'000},
    {"1280x720p60", "1280 x 720p 60 Hz", 1280, 720, 1650, 750, 110, 40, 5, 5, 1, 1, false, 74'250'000},
    {"3840x2160p60", "3840 x 2160p 60 Hz", 3840, 2160, 4400, 2250, 176, 88, 8, 10, 1, 1, false, 594'000'000},
    {"3840x2160p50", "3840 x 2160p 50 Hz", 3840, 2160, 5280, 2250, 1056, 88, 8, 10, 1, 1, false, 594'000'000},
    {"3840x2160p30", "3840 x 2160p 30 Hz", 3840, 2160, 4400, 2250, 176, 88, 8, 10, 1, 1, false, 297'000'000},
    {"3840x2160p25", "3840 x 2160p 25 Hz", 3840, 2160, 5280, 2250, 1056, 88, 8, 10, 1, 1, false, 297'000'000},
    {"3840x2160p24", "3840 x 2160p 24 Hz", 3840, 2160, 5500, 2250, 1276, 88, 8, 10, 1, 1, false, 297'000'000},
    {"1920x1200p60", "1920 x 1200p 60 Hz", 1920, 1200, 2080, 1235, 48, 32, 3, 6, 1, -1, false, 154'000'000},
    {"1600x1200p60", "1600 x 1200p 60 Hz", 1600, 1200, 2160, 1250, 64, 192, 1, 3, 1, 1, false, 162'000'000},
    {"1280x1024p60", "1280 x 1024p 60 Hz", 1280, 1024, 1688, 1066, 48, 112, 1, 3, 1, 1, false, 108'000'000},
    {"1024x768p60", "1024 x 768p 60 Hz", 1024, 768, 1344, 806, 24, 136, 3, 6, -1, -1, false, 65'000'000},
};
// clang-format on

using Block = std::array<std::uint8_t, 128>;

std::uint8_t low(int value)
{
    return static_cast<std::uint8_t>(value & 0xff);
}

/// The 18-byte detailed timing at an offset (VESA E-EDID, 3.10.2).
void writeTiming(Block& block, std::size_t at, const VideoMode& mode)
{
    const int lines = mode.interlaced ? mode.height / 2 : mode.height;
    const int hBlank = mode.hTotal - mode.width;
    const int vBlank = (mode.interlaced ? mode.vTotal / 2 : mode.vTotal) - lines;
    const int clock = mode.dotClock / 10'000;
    const int widthMm = 520;
    const int heightMm = 290;
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
    block[at + 12] = low(widthMm);
    block[at + 13] = low(heightMm);
    block[at + 14] = low((widthMm >> 8 << 4) | heightMm >> 8);
    block[at + 17] = low((mode.interlaced ? 0x80 : 0) | 0x18 | (mode.vPolarity > 0 ? 4 : 0) |
                         (mode.hPolarity > 0 ? 2 : 0));
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const int lower = std::tolower(static_cast<unsigned char>(c));
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

double VideoMode::refreshRate() const
{
    const double frames = static_cast<double>(dotClock) / (static_cast<double>(hTotal) * vTotal);
    return interlaced ? 2 * frames : frames;
}

std::span<const VideoMode> videoModes()
{
    return modes;
}

const VideoMode* findVideoMode(const std::string& id)
{
    for (const VideoMode& mode : modes) {
        if (id == mode.id)
            return &mode;
    }
    return nullptr;
}

std::string makeEdid(const VideoMode& preferred, const std::string& product)
{
    Block block{0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00};
    constexpr int maker = ('O' - '@') << 10 | ('M' - '@') << 5 | ('B' - '@');
    block[8] = low(maker >> 8);
    block[9] = low(maker);
    block[10] = 1;  // product code
    block[16] = 1;  // week
    block[17] = 34; // year less 1990
    block[18] = 1;  // EDID 1.3
    block[19] = 3;
    block[20] = 0x80; // digital
    block[21] = 52;   // cm
    block[22] = 29;
    block[23] = 120;  // gamma 2.2
    block[24] = 0x0a; // RGB, the first timing is preferred
    constexpr std::uint8_t primaries[] = {0xee, 0x91, 0xa3, 0x54, 0x4c, 0x99, 0x26, 0x0f, 0x50, 0x54}; // sRGB
    for (std::size_t i = 0; i < std::size(primaries); ++i)
        block[25 + i] = primaries[i];
    for (std::size_t i = 38; i < 54; ++i)
        block[i] = 1; // no standard timings
    writeTiming(block, 54, preferred);
    block[75] = 0xfc; // the product's name
    for (std::size_t i = 0; i < 13; ++i)
        block[77 + i] = i < product.size()    ? static_cast<std::uint8_t>(product[i])
                        : i == product.size() ? 0x0a
                                              : 0x20;
    block[93] = 0x10; // two descriptors unused
    block[111] = 0x10;
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : block)
        sum = static_cast<std::uint8_t>(sum + byte);
    block[127] = static_cast<std::uint8_t>(0x100 - sum);
    std::string hex;
    for (const std::uint8_t byte : block) {
        constexpr char digits[] = "0123456789abcdef";
        hex += digits[byte >> 4];
        hex += digits[byte & 15];
    }
    return hex;
}

bool isEdid(const std::string& hex)
{
    constexpr std::size_t blockDigits = 256;
    constexpr std::size_t maxBlocks = 256;
    if (hex.empty() || hex.size() % blockDigits != 0 || hex.size() > blockDigits * maxBlocks)
        return false;
    int sum = 0;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const int high = hexDigit(hex[i]);
        const int lowDigit = hexDigit(hex[i + 1]);
        if (high < 0 || lowDigit < 0)
            return false;
        const int byte = high * 16 + lowDigit;
        if (i < 16 && byte != (i == 0 || i == 14 ? 0x00 : 0xff))
            return false;
        sum += byte;
        if ((i + 2) % blockDigits == 0) {
            if (sum % 256 != 0)
                return false;
            sum = 0;
        }
    }
    return true;
}

} // namespace vantrel::ombra
