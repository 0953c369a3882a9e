#include "util/clocktime.h"

#include "util/textscanner.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace vantrel::clocktime {

namespace {

constexpr std::uint64_t nsPerMs = 1'000'000;
constexpr long long nsPerHour = 3'600'000'000'000;

} // namespace

long long frameNumber(long long nanoseconds, double fps)
{
    const double period = 1e9 / fps;
    if (!(period >= 1.0 && period < 9e18))
        return 0;
    return nanoseconds / static_cast<long long>(period);
}

long long fromSeconds(double seconds)
{
    constexpr double limit = 9223372036.0;
    if (std::isnan(seconds))
        return 0;
    if (std::abs(seconds) > limit) {
        using Limits = std::numeric_limits<long long>;
        return seconds > 0 ? Limits::max() : Limits::min();
    }
    return std::llround(1e9 * seconds);
}

std::string format(long long nanoseconds)
{
    const bool negative = nanoseconds < 0;
    const std::uint64_t a = negative ? 0 - static_cast<std::uint64_t>(nanoseconds) : nanoseconds;
    const std::uint64_t ms = a / nsPerMs;
    const int hours = std::abs(static_cast<std::int16_t>(nanoseconds / nsPerHour));

    std::array<char, 128> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%s%02d:%02d:%02d.%03d", negative ? "-" : "", hours,
                  static_cast<int>(ms / 60000 % 60), static_cast<int>(ms / 1000 % 60),
                  static_cast<int>(ms % 1000));
    return buffer.data();
}

std::string formatShort(long long nanoseconds)
{
    std::string text = format(nanoseconds);
    text.resize(text.find_last_of(".:;"));
    return text;
}

std::optional<long long> parse(std::string_view text)
{
    util::TextScanner scan(text);
    std::array<std::int32_t, 4> fields{};
    constexpr std::array<char, 4> marks{'\0', ':', ':', '.'};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto value = i == 0 || scan.literal(marks[i]) ? scan.number() : std::nullopt;
        if (!value)
            return std::nullopt;
        fields[i] = static_cast<std::int32_t>(*value);
    }
    if (fields[1] < 0 || fields[2] < 0 || fields[3] < 0)
        return std::nullopt;

    const bool negative = text.starts_with('-');
    const std::int64_t hours = negative ? static_cast<std::int16_t>(-std::int64_t{fields[0]}) : fields[0];
    const std::int64_t sum = (hours * 3600 + std::int64_t{fields[1]} * 60 + fields[2]) * 1000 + fields[3];
    const long long ms = static_cast<std::int32_t>(sum);
    return ms * (negative ? -1'000'000 : 1'000'000);
}

} // namespace vantrel::clocktime
