#include "common/ui/diagnostics/librarylogs.h"

#include "tarn/log/log.h"
#include "util/log.h"

#include <QMessageLogger>
#include <QString>

namespace vantrel {

namespace {

void pass(LogLevel level, const char* file, int line, const char* function, const char* category,
          std::string_view text)
{
    const QMessageLogger logger(file, line, function, category);
    const QByteArray message(text.data(), qsizetype(text.size()));
    if (level >= LogLevel::Error)
        logger.critical("%s", message.constData());
    else if (level == LogLevel::Warning)
        logger.warning("%s", message.constData());
    else if (level == LogLevel::Info)
        logger.info("%s", message.constData());
    else
        logger.debug("%s", message.constData());
}

} // namespace

void routeLibraryLogs()
{
    Log::setSink(
        [](LogLevel level, const LogLoc& location, std::string_view module, std::string_view message) {
            pass(level, location.file, 0, location.function, "vantrel.tarn",
                 std::string(module) + ": " + std::string(message));
        });
    util::setLogSink([](const util::LogRecord& record) {
        pass(static_cast<LogLevel>(record.level), record.source, record.line, record.function, "vantrel.util",
             record.message);
    });
}

} // namespace vantrel
