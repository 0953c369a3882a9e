#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Clock times, in nanoseconds, as text and as frame numbers. Plain value code, any thread.
namespace vantrel::clocktime {

/// The frame that a time falls into. The frame period is whole nanoseconds, cut before the division, as the
/// server does it. A rate that has no such period gives 0.
long long frameNumber(long long nanoseconds, double fps);

/// Seconds as nanoseconds, rounded to the nearest: 8.04 s are 8,040,000,000 and not one less. What does not
/// fit (or is no number) gives the nearest that does (or 0).
long long fromSeconds(double seconds);

/// "hh:mm:ss.mmm", cut to milliseconds, "-" before a negative time; hours keep 16 bits.
std::string format(long long nanoseconds);
/// The same without the fraction.
std::string formatShort(long long nanoseconds);

/// "hh:mm:ss.mmm" to nanoseconds. What stands behind the point counts milliseconds and is no decimal
/// fraction: "00:00:01.5" is one second and 5 ms. Nothing when it is no clock time; past about 596 hours the
/// sum wraps.
std::optional<long long> parse(std::string_view text);

} // namespace vantrel::clocktime
