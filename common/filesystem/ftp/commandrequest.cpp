#include "common/filesystem/ftp/commandrequest.h"

#include <QDebug>
#include <QMetaEnum>

namespace vantrel {

QDebug operator<<(QDebug debug, const CommandRequest& request)
{
    const QDebugStateSaver saver(debug);
    const char* const name = QMetaEnum::fromType<QFtp::Command>().valueToKey(request.command);
    debug.nospace().noquote() << (name ? name : "*invalid*") << " - ID: " << request.id << ", parameters: [";
    for (qsizetype i = 0; i < request.parameters.size(); ++i)
        debug << (i > 0 ? ", " : "") << request.parameters.at(i).toString();
    debug << ']';
    if (request.aborted)
        debug << " ABORTED";
    return debug;
}

} // namespace vantrel
