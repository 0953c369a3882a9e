#include "common/session/settings/timeutils.h"

#include "common/session/settings/sessionlogging.h"
#include "util/clocktime.h"

namespace vantrel::TimeUtils {

long long frameNumFromClockTime(long long nanoseconds, double fps)
{
    return clocktime::frameNumber(nanoseconds, fps);
}

long long parseClockTime(const QString& text, bool* ok)
{
    const auto parsed = clocktime::parse(text.toStdString());
    if (ok)
        *ok = parsed.has_value();
    return parsed.value_or(0);
}

long long parseClockTime(const QString& text)
{
    bool ok = false;
    const long long result = parseClockTime(text, &ok);
    if (!ok)
        qCDebug(lcSession) << "Failed to parse" << text;
    return result;
}

QString formatClockTime(long long nanoseconds)
{
    return QString::fromStdString(clocktime::format(nanoseconds));
}

QString formatClockTimeShort(long long nanoseconds)
{
    return QString::fromStdString(clocktime::formatShort(nanoseconds));
}

} // namespace vantrel::TimeUtils
