#include "common/filesystem/local/copywork.h"

#include "common/filesystem/local/systemfile.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace vantrel {

using namespace systemfile;

namespace {

constexpr std::size_t chunkBytes = 4 * 1024 * 1024;
// Two such windows may wait in memory for the disk: progress stays true and a stop quick, also on a slow
// stick.
constexpr off64_t windowBytes = 32 * 1024 * 1024;

bool wantsPlainCopy(int error)
{
    return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM;
}

// The bytes moved, 0 at the end, -1 with errno.
ssize_t copyPlainly(int from, int to)
{
    thread_local std::vector<char> buffer(chunkBytes);
    const ssize_t count = ::read(from, buffer.data(), buffer.size());
    for (ssize_t written = 0; written < count;) {
        const ssize_t more = ::write(to, buffer.data() + written, static_cast<std::size_t>(count - written));
        if (more < 0)
            return -1;
        written += more;
    }
    return count;
}

void keepTimes(int descriptor, const struct stat& stat)
{
    const std::array<timespec, 2> times{stat.st_atim, stat.st_mtim};
    // Some disks keep none; a copy is none the worse.
    (void)::futimens(descriptor, times.data());
}

// Sends the window to the disk and waits for the one before. A disk that cannot do so only lets more wait:
// what is written is made sure of at the end.
void writeWindow(int descriptor, off64_t begin, off64_t size)
{
    (void)::sync_file_range(descriptor, begin, size, SYNC_FILE_RANGE_WRITE);
    if (begin > 0)
        (void)::sync_file_range(descriptor, 0, begin,
                                SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE |
                                    SYNC_FILE_RANGE_WAIT_AFTER);
}

} // namespace

CopyWork::CopyWork(JobControl& control, bool remembers)
    : m_control(control)
    , m_remembers(remembers)
{
}

void CopyWork::remember(const std::string& path, const struct stat& stat)
{
    if (m_remembers)
        m_copied.insert_or_assign(path, stat);
}

int CopyWork::failed(const std::string& path, int error)
{
    m_failedAt = path;
    return error;
}

bool CopyWork::enter(const struct stat& directory)
{
    const std::pair here(directory.st_dev, directory.st_ino);
    if (std::ranges::find(m_inside, here) != m_inside.end())
        return false;
    m_inside.push_back(here);
    return true;
}

int CopyWork::measure(const std::string& path, quint64& total)
{
    if (m_control.isCanceled())
        return ECANCELED;
    const auto stat = itemStat(path);
    if (!stat)
        return linkStat(path) ? 0 : failed(path, ENOENT);
    if (!isDirectory(stat)) {
        total += static_cast<quint64>(stat->st_size);
        return 0;
    }
    if (!enter(*stat))
        return failed(path, ELOOP);
    const int error =
        forEachName(path, [&](const std::string& name) { return measure(joined(path, name), total); });
    m_inside.pop_back();
    return error && m_failedAt.empty() ? failed(path, error) : error;
}

int CopyWork::copy(const std::string& from, const std::string& to)
{
    const auto stat = itemStat(from);
    if (!stat)
        return linkStat(from) ? copyBrokenLink(from, to) : failed(from, ENOENT);
    if (S_ISDIR(stat->st_mode))
        return copyDirectory(from, to, *stat);
    if (S_ISREG(stat->st_mode))
        return copyFile(from, to);
    m_failure = QCoreApplication::translate("LocalFileSystem", "%1 is neither a file nor a folder.")
                    .arg(shownName(from));
    return failed(from, EINVAL);
}

int CopyWork::copyBrokenLink(const std::string& from, const std::string& to)
{
    std::array<char, PATH_MAX> target{};
    const auto own = linkStat(from);
    const ssize_t length = ::readlink(from.c_str(), target.data(), target.size() - 1);
    if (!own || length < 0 || ::symlink(target.data(), to.c_str()) != 0)
        return failed(from, errno);
    remember(from, *own);
    return 0;
}

int CopyWork::copyDirectory(const std::string& from, const std::string& to, const struct stat& stat)
{
    if (!enter(stat))
        return failed(from, ELOOP);
    // Its own rights come last: into a directory that is read only nothing could be written.
    if (::mkdir(to.c_str(), S_IRWXU) != 0)
        return failed(from, errno);
    m_failedAt.clear();
    const int error = forEachName(
        from, [&](const std::string& name) { return copy(joined(from, name), joined(to, name)); });
    m_inside.pop_back();
    if (error)
        return m_failedAt.empty() ? failed(from, error) : error;
    remember(from, stat);
    (void)::chmod(to.c_str(), stat.st_mode & 0777);
    const Handle directory(::open(to.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.isOpen())
        keepTimes(directory.get(), stat);
    return 0;
}

int CopyWork::copyFile(const std::string& from, const std::string& to)
{
    const Handle source(::open(from.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat before
    {
    };
    if (!source.isOpen() || ::fstat(source.get(), &before) != 0)
        return failed(from, errno);
    Handle target(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!target.isOpen())
        return failed(from, errno);
    if (const int error = copyBytes(source.get(), target.get()))
        return failed(from, error);
    struct stat after
    {
    };
    if (::fstat(source.get(), &after) != 0 || hasChanged(before, after)) {
        m_failure = QCoreApplication::translate("LocalFileSystem", "%1 changed while it was copied.")
                        .arg(shownName(from));
        return failed(from, EBUSY);
    }
    (void)::fchmod(target.get(), before.st_mode & 0777);
    keepTimes(target.get(), before);
    remember(from, before);
    const int error = target.close();
    return error ? failed(from, error) : 0;
}

int CopyWork::copyBytes(int from, int to)
{
    bool isPlain = false;
    off64_t copied = 0;
    off64_t window = 0;
    for (;;) {
        if (m_control.isCanceled())
            return ECANCELED;
        const ssize_t count =
            isPlain ? copyPlainly(from, to) : ::copy_file_range(from, nullptr, to, nullptr, chunkBytes, 0);
        if (count < 0) {
            if (errno == EINTR)
                continue;
            if (isPlain || !wantsPlainCopy(errno))
                return errno;
            isPlain = true;
            continue;
        }
        if (count == 0)
            return 0;
        m_control.addDone(static_cast<quint64>(count));
        copied += count;
        if (copied - window >= windowBytes) {
            writeWindow(to, window, copied - window);
            window = copied;
        }
    }
}

int CopyWork::flush(const std::string& path)
{
    const Handle item(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!item.isOpen())
        return errno == ELOOP ? 0 : failed(path, errno); // a link has nothing to flush
    struct stat stat
    {
    };
    const bool isFlushed = ::fstat(item.get(), &stat) == 0 &&
                           (S_ISDIR(stat.st_mode) ? ::syncfs(item.get()) : ::fsync(item.get())) == 0;
    return isFlushed ? 0 : failed(path, errno);
}

} // namespace vantrel
