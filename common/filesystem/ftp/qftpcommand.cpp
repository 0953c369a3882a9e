#include "common/filesystem/ftp/qftpcommand.h"

#include <atomic>

namespace vantrel {

QFtpCommand::QFtpCommand(QFtp::Command kind, const QStringList& lines, int number)
    : id(number)
    , command(kind)
    , rawCmds(lines)
{
}

int QFtpCommand::nextId()
{
    static std::atomic<int> last{0};
    return ++last;
}

} // namespace vantrel
