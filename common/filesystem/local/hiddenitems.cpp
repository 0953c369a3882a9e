#include "common/filesystem/local/hiddenitems.h"

#include "common/filesystem/local/removalwork.h"
#include "common/filesystem/local/systemfile.h"
#include "common/filesystem/model/filesystemlogging.h"

#include <QFile>
#include <QRegularExpression>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <unistd.h>

namespace vantrel {

using namespace systemfile;

namespace {

constexpr time_t otherMachinesSeconds = 24 * 60 * 60;

// Of this machine since it was started: a process number means nothing elsewhere, nor after the next start.
const QString& bootMark()
{
    static const QString mark = [] {
        QFile file(QStringLiteral("/proc/sys/kernel/random/boot_id"));
        return file.open(QIODeviceBase::ReadOnly) ? QString::fromLatin1(file.read(8)) : QStringLiteral("0");
    }();
    return mark;
}

bool isLeft(const std::string& path, const QString& mark, pid_t process)
{
    if (mark == bootMark())
        return ::kill(process, 0) != 0 && errno == ESRCH;
    const auto stat = linkStat(path);
    return stat && std::time(nullptr) - stat->st_mtim.tv_sec > otherMachinesSeconds;
}

} // namespace

std::string hiddenPathBeside(const std::string& path)
{
    static std::atomic<unsigned> count = 0;
    for (;;) {
        const QString name =
            QStringLiteral(".halcyra-%1-%2-%3.part").arg(bootMark()).arg(::getpid()).arg(++count);
        const std::string hidden = joined(parentOf(path), bytesOf(name));
        if (!linkStat(hidden))
            return hidden;
    }
}

void sweepHidden(const std::string& directory)
{
    static const QRegularExpression ours(QStringLiteral("^\\.halcyra-([0-9a-f]+)-(\\d+)-\\d+\\.part$"));
    forEachName(directory, [&](const std::string& name) {
        const QRegularExpressionMatch match = ours.match(textOf(name));
        const std::string path = joined(directory, name);
        if (match.hasMatch() && isLeft(path, match.captured(1), match.captured(2).toInt())) {
            const int error = RemovalWork::removeAll(path);
            qCInfo(lcFileSystem) << "Removed what an earlier copy left:" << textOf(path)
                                 << "- Error:" << error;
        }
        return 0;
    });
}

} // namespace vantrel
