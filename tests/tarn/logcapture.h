#pragma once

#include "tarn/log/log.h"

#include <QMutex>
#include <QStringList>

namespace vantrel::test {

/// Collects the library's log lines of warning level and above for as long as it lives, from any thread.
class LogCapture
{
public:
    LogCapture()
    {
        Log::setSink(
            [this](LogLevel level, const LogLoc&, std::string_view module, std::string_view message) {
                if (level < LogLevel::Warning)
                    return;
                const QMutexLocker lock(&m_mutex);
                m_lines.append(QString::fromUtf8(module.data(), static_cast<qsizetype>(module.size())) +
                               QStringLiteral(": ") +
                               QString::fromUtf8(message.data(), static_cast<qsizetype>(message.size())));
            });
    }
    ~LogCapture() { Log::setSink({}); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList lines() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_lines;
    }

private:
    mutable QMutex m_mutex;
    QStringList m_lines;
};

} // namespace vantrel::test
