#pragma once

#include <QString>

/// Clock times of util/clocktime.h as the application's texts. Times are nanoseconds; main thread or any
/// other.
namespace vantrel::TimeUtils {

/// The frame a time falls into at a real rate such as 29.97.
long long frameNumFromClockTime(long long nanoseconds, double fps);
/// "hh:mm:ss.mmm" to nanoseconds; ok is false, and the result 0, for anything else.
long long parseClockTime(const QString& text, bool* ok);
/// The same; what is no clock time leaves a debug line and gives 0.
long long parseClockTime(const QString& text);
QString formatClockTime(long long nanoseconds);
/// Without the fraction: "hh:mm:ss".
QString formatClockTimeShort(long long nanoseconds);

} // namespace vantrel::TimeUtils
