#pragma once

#include "common/filesystem/ftp/qftp.h"

#include <QVariantList>

class QDebug;

namespace vantrel {

/// The one command that a client waits for. id 0: none.
struct CommandRequest
{
    QFtp::Command command = QFtp::None;
    int id = 0;
    QVariantList parameters; // never credentials: requests are written to the log
    bool aborted = false;

    QString path(int index = 0) const { return parameters.value(index).toString(); }
};

QDebug operator<<(QDebug debug, const CommandRequest& request);

} // namespace vantrel
