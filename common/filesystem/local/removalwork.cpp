#include "common/filesystem/local/removalwork.h"

#include "common/filesystem/local/systemfile.h"
#include "common/filesystem/model/pathhelpers.h"

#include <QCoreApplication>
#include <QDir>

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace vantrel {

using namespace systemfile;

namespace {

QString text(const char* source)
{
    return QCoreApplication::translate("LocalFileSystem", source);
}

} // namespace

RemovalWork::RemovalWork(JobControl& control)
    : m_control(&control)
{
}

QString RemovalWork::protection(const QString& wanted)
{
    const std::string path = withoutSlash(bytesOf(wanted));
    for (const QString& home : {QDir::homePath(), QDir::home().canonicalPath()}) {
        if (path == "/" || isSamePath(wanted, home) || isPathBelow(home, wanted))
            return text("%1 holds your home folder and is not removed.").arg(shownName(path));
    }
    const auto own = linkStat(path);
    const auto parent = itemStat(parentOf(path));
    if (isDirectory(own) && parent && own->st_dev != parent->st_dev)
        return text("%1 is a volume of its own and is not removed.").arg(shownName(path));
    return {};
}

JobResult RemovalWork::run(const QString& path, bool onlyEmpty)
{
    const std::string target = withoutSlash(bytesOf(path));
    JobResult result;
    result.destination = path;
    const auto stat = linkStat(target);
    if (!stat) {
        result.outcome = JobResult::Missing;
        result.errors.append(text("%1 is not there any more.").arg(shownName(target)));
        return result;
    }
    if (const QString reason = protection(path); !reason.isEmpty()) {
        result.errors.append(reason);
        return result;
    }
    if (onlyEmpty && isDirectory(stat)) {
        const int error = ::rmdir(target.c_str()) == 0 ? 0 : errno;
        if (!error || error == ENOTEMPTY || error == EEXIST) {
            result.outcome = error ? JobResult::Skipped : JobResult::Done;
            return result;
        }
    }
    m_device = stat->st_dev;
    m_control->setTotal(countItems(target));
    const int error = removeItem(target);
    if (error == ECANCELED) {
        result.outcome = JobResult::Canceled;
    } else if (error) {
        result.errors.append(
            text("%1 could not be removed: %2.").arg(shownName(m_failedAt), reasonText(error)));
    } else {
        result.outcome = JobResult::Done;
    }
    return result;
}

int RemovalWork::removeAll(const std::string& path)
{
    std::string ignored;
    return removeUnasked(path, nullptr, &ignored);
}

int RemovalWork::removeCopied(const std::string& path, const CopiedItems& copied, std::string& failedAt)
{
    return removeUnasked(path, &copied, &failedAt);
}

int RemovalWork::removeUnasked(const std::string& path, const CopiedItems* copied, std::string* failedAt)
{
    const auto stat = linkStat(path);
    if (!stat)
        return errno;
    JobControl nobody(
        ConflictPolicy::Refuse, [] {}, [](const TransferConflict&) {});
    RemovalWork work(nobody);
    work.m_device = stat->st_dev;
    work.m_copied = copied;
    const int error = work.removeItem(withoutSlash(path));
    *failedAt = work.m_failedAt;
    return error || !work.m_isLeft ? error : EBUSY;
}

/// Of a link it is what it leads to that was copied: only that it was counts.
bool RemovalWork::isCopied(const std::string& path, const struct stat& stat) const
{
    const auto found = m_copied->find(path);
    if (found == m_copied->end())
        return false;
    return !S_ISREG(stat.st_mode) || (isSameItem(found->second, stat) && !hasChanged(found->second, stat));
}

quint64 RemovalWork::countItems(const std::string& path)
{
    quint64 count = 1;
    if (const auto stat = linkStat(path);
        isDirectory(stat) && stat->st_dev == m_device && !m_control->isCanceled()) {
        forEachName(path, [&](const std::string& name) {
            count += countItems(joined(path, name));
            return 0;
        });
    }
    return count;
}

int RemovalWork::removeItem(const std::string& path)
{
    if (m_control->isCanceled())
        return ECANCELED;
    const auto stat = linkStat(path);
    const auto failed = [&](int error) {
        m_failedAt = path;
        return error;
    };
    if (!stat)
        return failed(errno);
    if (stat->st_dev != m_device)
        return failed(EXDEV);
    if (m_copied && !isCopied(path, *stat)) {
        m_isLeft = true;
        return failed(0);
    }
    if (isDirectory(stat)) {
        const bool wasLeft = std::exchange(m_isLeft, false);
        if (const int error = removeContent(path))
            return error;
        if (std::exchange(m_isLeft, m_isLeft || wasLeft))
            return 0;
        if (::rmdir(path.c_str()) != 0)
            return failed(errno);
    } else if (::unlink(path.c_str()) != 0) {
        return failed(errno);
    }
    m_control->addDone(1);
    return 0;
}

int RemovalWork::removeContent(const std::string& directory)
{
    bool isInside = false;
    const int error = forEachName(directory, [&](const std::string& name) {
        isInside = true;
        return removeItem(joined(directory, name));
    });
    if (error && !isInside)
        m_failedAt = directory;
    return error;
}

} // namespace vantrel
