#include "common/ui/diagnostics/librarylogs.h"

#include "tarn/log/log.h"

#include <QMessageLogger>
#include <QString>

namespace vantrel {

void routeLibraryLogs()
{
    Log::setSink([](LogLevel level, const LogLoc& where, std::string_view module, std::string_view message) {
        const std::string file(where.file);
        const std::string function(where.function);
        const QMessageLogger logger(file.c_str(), static_cast<int>(where.line), function.c_str(),
                                    "vantrel.tarn");
        const std::string text = std::string(module) + ": " + std::string(message);
        if (level >= LogLevel::Error)
            logger.critical("%s", text.c_str());
        else if (level == LogLevel::Warning)
            logger.warning("%s", text.c_str());
        else if (level == LogLevel::Info)
            logger.info("%s", text.c_str());
        else
            logger.debug("%s", text.c_str());
    });
}

} // namespace vantrel
