#include "common/filesystem/local/transferwork.h"

#include "common/filesystem/local/hiddenitems.h"
#include "common/filesystem/local/removalwork.h"
#include "common/filesystem/local/systemfile.h"
#include "common/filesystem/model/filesize.h"
#include "common/filesystem/model/pathhelpers.h"

#include <QCoreApplication>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <sys/statvfs.h>
#include <unistd.h>

namespace vantrel {

using namespace systemfile;

namespace {

QString text(const char* source)
{
    return QCoreApplication::translate("LocalFileSystem", source);
}

QString realPath(const std::string& path)
{
    char* real = ::realpath(path.c_str(), nullptr);
    const QString result = textOf(real ? real : path);
    std::free(real);
    return result;
}

bool liesInside(const std::string& path, const std::string& directory)
{
    const QString above = realPath(directory);
    const QString below = realPath(parentOf(path));
    return isSamePath(below, above) || isPathBelow(below, above);
}

int rename(const std::string& from, const std::string& to, bool isReplacing)
{
    if (!isReplacing)
        return renameNoReplace(from, to);
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

// A link that says its way from where it stands would lead nowhere from another directory: it moves as one
// that says it from the root.
int moveItem(const std::string& from, const std::string& to, bool isReplacing)
{
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink(from.c_str(), target.data(), target.size() - 1);
    if (length <= 0 || target[0] == '/' || parentOf(from) == parentOf(to))
        return rename(from, to, isReplacing);
    const auto before = itemStat(parentOf(from));
    const auto after = itemStat(parentOf(to));
    if (before && after && before->st_dev != after->st_dev)
        return EXDEV;
    const std::string hidden = hiddenPathBeside(to);
    if (::symlink(joined(parentOf(from), target.data()).c_str(), hidden.c_str()) != 0)
        return errno == EPERM ? EXDEV : errno; // a disk without links
    const int error = rename(hidden, to, isReplacing);
    ::unlink(error ? hidden.c_str() : from.c_str());
    return error;
}

} // namespace

TransferWork::TransferWork(JobControl& control, bool isMove)
    : m_control(control)
    , m_copy(control, isMove)
    , m_isMove(isMove)
{
}

JobResult::Outcome TransferWork::fail(const QString& sentence)
{
    m_result.errors.append(sentence);
    return JobResult::Failed;
}

JobResult::Outcome TransferWork::failCopy(int error)
{
    if (error == ECANCELED)
        return JobResult::Canceled;
    if (!m_copy.failure().isEmpty())
        return fail(m_copy.failure());
    return fail(text("%1 could not be copied: %2.").arg(shownName(m_copy.failedAt()), reasonText(error)));
}

JobResult TransferWork::run(const QString& from, const QString& to)
{
    m_source = withoutSlash(bytesOf(from));
    std::string target = withoutSlash(bytesOf(to));
    // A folder that has gone since is still no name for the item.
    if (to.endsWith(u'/') || isDirectory(itemStat(target)))
        target = joined(target, nameOf(m_source));
    m_result.destination = textOf(target);
    const auto stat = linkStat(m_source);
    if (!stat) {
        fail(text("%1 is not there any more.").arg(shownName(m_source)));
        m_result.outcome = JobResult::Missing;
    } else if (isDirectory(itemStat(m_source)) && liesInside(target, m_source)) {
        fail(text("%1 cannot be put inside of itself.").arg(shownName(m_source)));
        m_result.outcome = JobResult::Inside;
    } else if (const QString reason = m_isMove ? RemovalWork::protection(from) : QString();
               !reason.isEmpty()) {
        m_result.outcome = fail(reason);
    } else {
        m_result.outcome = transfer(m_source, target);
    }
    return m_result;
}

JobResult::Outcome TransferWork::transfer(const std::string& from, const std::string& to)
{
    for (;;) {
        if (m_control.isCanceled())
            return JobResult::Canceled;
        Place place{to};
        if (const auto outcome = findPlace(from, place); outcome != JobResult::Done)
            return outcome;
        if (from == m_source)
            m_result.destination = textOf(place.path);
        if (place.isMerging)
            return merge(from, place.path);
        if (!m_isMove)
            return copy(from, place);
        const int error = moveItem(from, place.path, place.isReplacing);
        if (error == EXDEV)
            return copy(from, place);
        if (error == 0)
            return JobResult::Done;
        // Somebody was quicker: look again.
        if (error != EEXIST)
            return fail(text("%1 could not be moved: %2.").arg(shownName(from), reasonText(error)));
    }
}

JobResult::Outcome TransferWork::findPlace(const std::string& from, Place& place)
{
    const auto there = linkStat(place.path);
    return there ? meet(from, *there, place) : JobResult::Done;
}

JobResult::Outcome TransferWork::meet(const std::string& from, const struct stat& there, Place& place)
{
    const auto own = linkStat(from);
    const bool isSame = own && isSameItem(*own, there);
    // Where names differ by case only, a disk may take the new name for the item's own.
    if (m_isMove && isSame && place.path != from &&
        textOf(place.path).compare(textOf(from), Qt::CaseInsensitive) == 0) {
        place.isReplacing = true;
        return JobResult::Done;
    }
    const auto refuse = [&] {
        fail(text("%1 is there already.").arg(shownName(place.path)));
        return JobResult::Exists;
    };
    if (m_isMove && isSame && place.path == from)
        return refuse();
    const bool isDirectoryThere = isDirectory(itemStat(place.path));
    switch (m_control.decide({textOf(place.path), isDirectoryThere})) {
    case ConflictPolicy::Skip:
        ++m_result.skipped;
        return JobResult::Skipped;
    case ConflictPolicy::KeepBoth: {
        const QString wanted = textOf(place.path);
        for (int number = 2; linkStat(place.path); ++number)
            place.path = bytesOf(numberedPath(wanted, number));
        return JobResult::Done;
    }
    case ConflictPolicy::Replace:
        if (isSame)
            return fail(text("%1 cannot replace itself.").arg(shownName(from)));
        if (isDirectoryThere != isDirectory(itemStat(from)) || (isDirectoryThere && S_ISLNK(own->st_mode)))
            return fail(text("%1 is there already, and a file and a folder cannot replace each other.")
                            .arg(shownName(place.path)));
        (isDirectoryThere ? place.isMerging : place.isReplacing) = true;
        return JobResult::Done;
    case ConflictPolicy::Refuse:
    case ConflictPolicy::Ask:
        break;
    }
    return m_control.isCanceled() ? JobResult::Canceled : refuse();
}

JobResult::Outcome TransferWork::merge(const std::string& from, const std::string& to)
{
    auto outcome = JobResult::Done;
    const int error = forEachName(from, [&](const std::string& name) {
        outcome = transfer(joined(from, name), joined(to, name));
        return outcome == JobResult::Done || outcome == JobResult::Skipped ? 0 : ECANCELED;
    });
    if (error && (outcome == JobResult::Done || outcome == JobResult::Skipped))
        return fail(text("%1 could not be read: %2.").arg(shownName(from), reasonText(error)));
    if (error)
        return outcome;
    // What was skipped stays, and with it the directory.
    if (m_isMove)
        ::rmdir(from.c_str());
    return JobResult::Done;
}

bool TransferWork::lookAhead(const std::string& from, const std::string& to)
{
    if (m_isMove && ::access(parentOf(from).c_str(), W_OK) != 0) {
        fail(text("%1 cannot be moved, since it cannot be removed from where it is: %2.")
                 .arg(shownName(from), reasonText(errno)));
        return false;
    }
    if (std::exchange(m_isMeasured, true))
        return true;
    sweepHidden(parentOf(to));
    quint64 total = 0;
    if (const int error = m_copy.measure(m_source, total)) {
        failCopy(error);
        return false;
    }
    struct statvfs disk
    {
    };
    if (::statvfs(parentOf(to).c_str(), &disk) != 0) {
        fail(text("%1 cannot be written to: %2.").arg(shownName(parentOf(to)), reasonText(errno)));
        return false;
    }
    const quint64 free = static_cast<quint64>(disk.f_bavail) * disk.f_frsize;
    if (total > free) {
        fail(text("There is no room for %1: it takes %2, and %3 are free.")
                 .arg(shownName(m_source), fileSizeText(static_cast<qint64>(total)),
                      fileSizeText(static_cast<qint64>(free))));
        return false;
    }
    m_control.setTotal(total);
    return true;
}

JobResult::Outcome TransferWork::copy(const std::string& from, Place place)
{
    if (!lookAhead(from, place.path))
        return m_control.isCanceled() ? JobResult::Canceled : JobResult::Failed;
    const std::string hidden = hiddenPathBeside(place.path);
    int error = m_copy.copy(from, hidden);
    if (!error)
        error = m_copy.flush(hidden);
    auto outcome = error ? failCopy(error) : settle(from, hidden, place);
    if (outcome != JobResult::Done) {
        RemovalWork::removeAll(hidden);
        return outcome;
    }
    return m_isMove ? removeSource(from) : outcome;
}

JobResult::Outcome TransferWork::settle(const std::string& from, const std::string& hidden, Place place)
{
    for (;;) {
        if (m_control.isCanceled())
            return JobResult::Canceled;
        const int error = rename(hidden, place.path, place.isReplacing);
        if (error == 0) {
            if (from == m_source)
                m_result.destination = textOf(place.path);
            return JobResult::Done;
        }
        if (error != EEXIST)
            return fail(text("%1 could not be written: %2.").arg(shownName(place.path), reasonText(error)));
        if (const auto outcome = findPlace(from, place); outcome != JobResult::Done)
            return outcome;
        if (place.isMerging)
            return fail(text("%1 is there already.").arg(shownName(place.path)));
    }
}

// All of it is where it belongs: from here on nothing stops the move.
JobResult::Outcome TransferWork::removeSource(const std::string& from)
{
    std::string failedAt;
    const int error = RemovalWork::removeCopied(from, m_copy.takeCopied(), failedAt);
    if (!error)
        return JobResult::Done;
    if (error == EBUSY)
        return fail(text("%1 was copied, but stays where it was: %2 has come or changed meanwhile.")
                        .arg(shownName(from), shownName(failedAt)));
    return fail(text("%1 was copied, but could not be removed from where it was: %2.")
                    .arg(shownName(failedAt), reasonText(error)));
}

} // namespace vantrel
