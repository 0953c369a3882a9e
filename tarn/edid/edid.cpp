#include "tarn/edid/edid.h"

#include "tarn/edid/edidblocks.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace vantrel {

using namespace edidblocks;

namespace {

constexpr std::array<std::uint8_t, 8> header{0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00};

// clang-format off
/// Modes of computers long gone that established timings name.
constexpr VideoTiming text70{720, 400, 900, 449, 18, 108, 12, 2, -1, 1, false, 28'320'000};
constexpr VideoTiming text88{720, 400, 900, 449, 18, 108, 21, 2, -1, 1, false, 35'500'000};
constexpr VideoTiming apple480{640, 480, 864, 525, 64, 64, 3, 3, -1, -1, false, 30'240'000};
constexpr VideoTiming apple624{832, 624, 1152, 667, 32, 64, 1, 3, -1, -1, false, 57'284'000};
constexpr VideoTiming apple870{1152, 870, 1456, 915, 48, 128, 3, 3, 1, 1, false, 100'000'000};
// clang-format on

/// By the bit of the established timings I and II, from the highest.
const VideoTiming* establishedTiming(std::size_t bit)
{
    static const std::array<const VideoTiming*, 17> timings{
        &text70,       &text88,       findDmt(0x04), &apple480,     findDmt(0x05), findDmt(0x06),
        findDmt(0x08), findDmt(0x09), findDmt(0x0a), findDmt(0x0b), &apple624,     findDmt(0x0f),
        findDmt(0x10), findDmt(0x11), findDmt(0x12), findDmt(0x24), &apple870};
    return timings[bit];
}

/// The IDs of the established timings III, likewise.
constexpr std::array<int, 44> establishedMore{
    0x01, 0x02, 0x03, 0x07, 0x0e, 0x0c, 0x13, 0x15, 0x16, 0x17, 0x18, 0x19, 0x20, 0x21, 0x23,
    0x25, 0x27, 0x2e, 0x2f, 0x30, 0x31, 0x29, 0x2a, 0x2b, 0x2c, 0x39, 0x3a, 0x3b, 0x3c, 0x33,
    0x34, 0x35, 0x36, 0x37, 0x3e, 0x3f, 0x41, 0x42, 0x44, 0x45, 0x46, 0x47, 0x49, 0x4a};

bool isSet(Bytes bits, std::size_t index)
{
    return bits[index / 8] & 0x80 >> index % 8;
}

void addStandard(std::uint8_t first, std::uint8_t second, Edid& display)
{
    if (first == 0 || (first == 1 && second == 1))
        return;
    const int width = (first + 31) * 8;
    const int rate = (second & 63) + 60;
    constexpr std::array<std::array<int, 2>, 4> shapes{{{16, 10}, {4, 3}, {5, 4}, {16, 9}}};
    const bool isSquare = second >> 6 == 0 && display.version == 1 && display.revision < 3;
    const auto [across, down] = shapes[second >> 6];
    const int height = isSquare ? width : width * down / across;
    const auto known = std::ranges::find_if(dmtTimings(), [&](const StandardTiming& one) {
        return one.timing.width == width && one.timing.height == height && !one.timing.interlaced &&
               std::lround(one.timing.refreshRate()) == rate;
    });
    addMode(display, known != dmtTimings().end() ? known->timing : cvtTiming(width, height, rate, false));
}

std::string textOf(Bytes descriptor)
{
    std::string text;
    for (const std::uint8_t byte : descriptor.subspan(5, 13)) {
        if (byte < 0x20 || byte > 0x7e) // a line break ends it, and what is no text is none of it
            break;
        text += static_cast<char>(byte);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

void readLimits(Bytes descriptor, Edid& display)
{
    const int offsets = display.revision >= 4 ? descriptor[4] : 0;
    const auto limit = [&](std::size_t at, bool isOffset) { return descriptor[at] + (isOffset ? 255 : 0); };
    display.limits.minRate = limit(5, (offsets & 3) == 3);
    display.limits.maxRate = limit(6, offsets & 2);
    display.limits.minLineRate = limit(7, (offsets & 12) == 12);
    display.limits.maxLineRate = limit(8, offsets & 8);
    display.limits.maxDotClock = descriptor[9] * std::int64_t{10'000'000};
}

/// CVT's own codes of three bytes each; the preferred rate of each is taken.
void addCvtCodes(Bytes descriptor, Edid& display)
{
    for (std::size_t at = 6; at + 3 <= descriptorSize; at += 3) {
        const int lines = ((descriptor[at] | (descriptor[at + 1] & 0xf0) << 4) + 1) * 2;
        constexpr std::array<std::array<int, 2>, 4> shapes{{{4, 3}, {16, 9}, {16, 10}, {15, 9}}};
        constexpr std::array<int, 4> rates{50, 60, 75, 85};
        if (descriptor[at] == 0 && descriptor[at + 1] == 0 && descriptor[at + 2] == 0)
            continue;
        const auto [across, down] = shapes[descriptor[at + 1] >> 2 & 3];
        const int rate = rates[descriptor[at + 2] >> 5 & 3];
        const bool isReduced = rate == 60 && !(descriptor[at + 2] & 0x08);
        addMode(display, cvtTiming(lines * across / down, lines, rate, isReduced));
    }
}

void readDescriptor(Bytes descriptor, Edid& display)
{
    if (word(descriptor, 0) != 0) {
        if (const auto mode = detailedTiming(descriptor))
            addMode(display, *mode);
        return;
    }
    switch (descriptor[3]) {
    case 0xff:
        display.serialText = textOf(descriptor);
        break;
    case 0xfc:
        display.product = textOf(descriptor);
        break;
    case 0xfd:
        readLimits(descriptor, display);
        break;
    case 0xfa:
        for (std::size_t i = 5; i < 17; i += 2)
            addStandard(descriptor[i], descriptor[i + 1], display);
        break;
    case 0xf8:
        addCvtCodes(descriptor, display);
        break;
    case 0xf7:
        for (std::size_t i = 0; i < establishedMore.size(); ++i) {
            if (isSet(descriptor.subspan(6), i))
                addMode(display, *findDmt(establishedMore[i]));
        }
        break;
    default:
        break;
    }
}

void readIdentity(Bytes block, Edid& display)
{
    const int letters = block[8] << 8 | block[9];
    for (const int shift : {10, 5, 0})
        display.maker += static_cast<char>('@' + (letters >> shift & 31));
    display.productCode = word(block, 10);
    display.serialNumber =
        static_cast<std::uint32_t>(word(block, 12)) | static_cast<std::uint32_t>(word(block, 14)) << 16;
    display.isModelYear = block[16] == 0xff;
    display.week = block[16] <= 54 ? block[16] : 0;
    display.year = 1990 + block[17];
    display.version = block[18];
    display.revision = block[19];
}

void readFeatures(Bytes block, Edid& display)
{
    display.isDigital = block[20] & 0x80;
    if (block[21] && block[22]) { // else it is the shape alone
        display.widthMm = block[21] * 10;
        display.heightMm = block[22] * 10;
    }
    if (!display.isDigital || display.revision < 4)
        return;
    constexpr std::array<int, 8> depths{0, 6, 8, 10, 12, 14, 16, 0};
    constexpr std::array<const char*, 6> interfaces{"", "DVI", "HDMI", "HDMI", "MDDI", "DisplayPort"};
    display.bpc = depths[block[20] >> 4 & 7];
    if (const std::size_t kind = block[20] & 15; kind < interfaces.size())
        display.interface = interfaces[kind];
    display.hasYcc444 = block[24] & 0x08;
    display.hasYcc422 = block[24] & 0x10;
}

void readBaseBlock(Bytes block, Edid& display)
{
    readIdentity(block, display);
    readFeatures(block, display);
    // Detailed modes come first, since they are what the display is made for.
    for (std::size_t at = 54; at < 126; at += descriptorSize) {
        const Bytes descriptor = block.subspan(at, descriptorSize);
        readDescriptor(descriptor, display);
        if (!display.preferred)
            display.preferred = detailedTiming(descriptor);
    }
    for (std::size_t i = 0; i < 17; ++i) {
        if (isSet(block.subspan(35), i))
            addMode(display, *establishedTiming(i));
    }
    for (std::size_t at = 38; at < 54; at += 2)
        addStandard(block[at], block[at + 1], display);
}

bool fail(std::string* whyNot, const std::string& sentence)
{
    if (whyNot)
        *whyNot = sentence;
    return false;
}

} // namespace

bool readEdid(std::span<const std::uint8_t> bytes, Edid& out, std::string* whyNot)
{
    if (bytes.size() < header.size() || !std::ranges::equal(header, bytes.first(header.size())))
        return fail(whyNot, "It does not begin as an EDID does.");
    if (bytes.size() % blockSize != 0 || bytes.size() / blockSize > 256)
        return fail(whyNot, "It has " + std::to_string(bytes.size()) +
                                " bytes, and an EDID has 1 to 256 blocks of 128 bytes.");
    for (std::size_t at = 0; at < bytes.size(); at += blockSize) {
        const Bytes block = bytes.subspan(at, blockSize);
        if (std::accumulate(block.begin(), block.end(), 0) % 256 != 0)
            return fail(whyNot, "The checksum of its block " + std::to_string(at / blockSize) + " is wrong.");
    }
    if (bytes[18] != 1)
        return fail(whyNot, "It is of version " + std::to_string(bytes[18]) + ", which nobody knows.");
    Edid display;
    readBaseBlock(bytes.first(blockSize), display);
    const bool isNamed = bytes[24] & 0x02; // the first detailed mode as the preferred one
    Preference preference;
    for (std::size_t at = blockSize; at < bytes.size(); at += blockSize) {
        const Block block = bytes.subspan(at).first<blockSize>();
        if (block[0] == 0x02)
            readCtaExtension(block, display, preference);
        else if (block[0] == 0x70)
            readDisplayIdExtension(block, display, preference);
    }
    if (preference.named && !(isNamed && display.preferred))
        display.preferred = preference.named;
    if (!display.preferred)
        display.preferred = preference.first;
    if (!display.preferred && !display.modes.empty())
        display.preferred = display.modes.front();
    out = std::move(display);
    return true;
}

std::optional<std::vector<std::uint8_t>> bytesOfHex(std::string_view digits)
{
    const auto value = [](char c) {
        return c >= '0' && c <= '9'   ? c - '0'
               : c >= 'a' && c <= 'f' ? c - 'a' + 10
               : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                      : -1;
    };
    if (digits.size() % 2 != 0)
        return std::nullopt;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = value(digits[i]), low = value(digits[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
    return bytes;
}

std::string whyNotShown(const Edid& display, const VideoTiming& mode)
{
    if (std::ranges::find(display.modes, mode) != display.modes.end())
        return {};
    const auto number = [](double value) { return std::to_string(std::lround(value)); };
    const auto sentence = [&mode](const std::string& needs, const std::string& takes) {
        return mode.label() + " needs " + needs + ", and the display takes " + takes + ".";
    };
    const Edid::Limits& limits = display.limits;
    const double lines = mode.lineRate() / 1000;
    const double rate = mode.refreshRate();
    if (limits.maxDotClock && mode.dotClock > limits.maxDotClock)
        return sentence(number(mode.dotClock / 1e6) + " MHz",
                        number(limits.maxDotClock / 1e6) + " MHz at most");
    if (limits.maxLineRate &&
        (std::round(lines) > limits.maxLineRate || std::round(lines) < limits.minLineRate))
        return sentence(number(lines) + " kHz", std::to_string(limits.minLineRate) + " to " +
                                                    std::to_string(limits.maxLineRate) + " kHz");
    if (limits.maxRate && (std::round(rate) > limits.maxRate || std::round(rate) < limits.minRate))
        return sentence(number(rate) + " Hz",
                        std::to_string(limits.minRate) + " to " + std::to_string(limits.maxRate) + " Hz");
    return {};
}

} // namespace vantrel
