#include "util/smpte_timecode.h"

#include "tarn/log/log.h"
#include "util/textscanner.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace vantrel {

namespace {

/// The source line that log readers know this record by.
constexpr unsigned dropFrameLogLine = 57;

int frameFieldWidth(int fps)
{
    int width = 1;
    for (int limit = 10; fps > limit && width < 5; limit *= 10)
        ++width;
    return width;
}

/// The number written for a count of real frames: two numbers are passed over each minute but the tenth. At
/// 60 fps it is two as well, half of what the rate would suggest; the server counts so too.
std::int64_t toDropNumber(std::int64_t frame, int fps)
{
    const std::int64_t k = fps / 30;
    const std::int64_t tenMinutes = 17982 * k;
    const std::int64_t minute = tenMinutes / 10;
    const std::int64_t blocks = frame / tenMinutes;
    const std::int64_t minutes = (frame % tenMinutes - 2) / minute;
    return frame + 18 * blocks + 2 * minutes;
}

/// The inverse works on nominal blocks, since here the count still holds the numbers that were passed over.
std::int32_t toDropFrameNumber(std::int32_t number, int fps)
{
    if (fps % 30 != 0) {
        Log::write_fmt(LogLevel::Warning, {"smpte_timecode", "toDropFrameNumber", dropFrameLogLine},
                       "timecode", "Drop frame not supported for fps=%d", fps);
        return 0;
    }
    const std::int64_t tenMinutes = std::int64_t{fps / 30} * 18000;
    if (tenMinutes == 0)
        return 0;
    const std::int64_t blocks = number / tenMinutes;
    const std::int64_t rest = number % tenMinutes;
    return static_cast<std::int32_t>(number - 2 * (9 * blocks + (rest - 2) / (tenMinutes / 10)));
}

} // namespace

std::string SmpteTimecode::toString() const
{
    if (fps == 0)
        return {};
    std::int64_t n = frame;
    char separator = ':';
    if (type != SmpteTimecodeType::NonDrop && fps % 30 == 0) {
        n = toDropNumber(n, fps);
        if (type == SmpteTimecodeType::DropFrame)
            separator = ';';
    }
    const std::int64_t a = std::llabs(n);
    const int frames = static_cast<int>(a % fps);
    const int seconds = static_cast<int>(a / fps % 60);
    const int minutes = static_cast<int>(a / (std::int64_t{fps} * 60) % 60);
    const int hours = static_cast<std::int16_t>(a / (std::int64_t{fps} * 3600));

    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%s%02d:%02d:%02d%c%0*d", n < 0 ? "-" : "", hours, minutes,
                  seconds, separator, frameFieldWidth(fps), frames);
    return buffer.data();
}

SmpteTimecode SmpteTimecode::fromString(const std::string& text, unsigned short fps)
{
    util::TextScanner scan(text);
    std::array<std::int16_t, 3> fields{};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto value = i == 0 || scan.literal(':') ? scan.number() : std::nullopt;
        if (!value)
            throw std::runtime_error("invalid timecode");
        fields[i] = static_cast<std::int16_t>(*value);
    }
    const auto separator = scan.character();
    const auto frameField = separator ? scan.number() : std::nullopt;
    if (!frameField)
        throw std::runtime_error("invalid timecode");
    if (*separator != ':' && *separator != ';')
        throw std::runtime_error(std::string("invalid timecode separator: ") + *separator);

    const std::int64_t seconds = std::int64_t{fields[0]} * 3600 + fields[1] * 60 + fields[2];
    const auto total = static_cast<std::int32_t>(seconds * fps + static_cast<std::int16_t>(*frameField));
    if (*separator == ':')
        return {SmpteTimecodeType::NonDrop, total, fps};
    return {SmpteTimecodeType::DropFrame, toDropFrameNumber(total, fps), fps};
}

} // namespace vantrel
