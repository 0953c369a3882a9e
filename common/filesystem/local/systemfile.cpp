#include "common/filesystem/local/systemfile.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace vantrel::systemfile {

int Handle::close()
{
    const int descriptor = std::exchange(m_descriptor, -1);
    return descriptor >= 0 && ::close(descriptor) != 0 ? errno : 0;
}

std::string bytesOf(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

QString textOf(const std::string& path)
{
    return QFile::decodeName(path.c_str());
}

std::optional<struct stat> itemStat(const std::string& path)
{
    struct stat result
    {
    };
    return ::stat(path.c_str(), &result) == 0 ? std::optional(result) : std::nullopt;
}

std::optional<struct stat> linkStat(const std::string& path)
{
    struct stat result
    {
    };
    return ::lstat(path.c_str(), &result) == 0 ? std::optional(result) : std::nullopt;
}

bool isDirectory(const std::optional<struct stat>& stat)
{
    return stat && S_ISDIR(stat->st_mode);
}

bool hasChanged(const struct stat& before, const struct stat& after)
{
    return before.st_size != after.st_size || before.st_mtim.tv_sec != after.st_mtim.tv_sec ||
           before.st_mtim.tv_nsec != after.st_mtim.tv_nsec;
}

bool isSameItem(const struct stat& left, const struct stat& right)
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

std::string withoutSlash(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::string nameOf(const std::string& path)
{
    const std::string whole = withoutSlash(path);
    return whole.substr(whole.rfind('/') + 1);
}

std::string parentOf(const std::string& path)
{
    const std::string whole = withoutSlash(path);
    const std::size_t separator = whole.rfind('/');
    if (separator == std::string::npos)
        return ".";
    return separator == 0 ? "/" : whole.substr(0, separator);
}

std::string joined(const std::string& directory, const std::string& name)
{
    return directory.ends_with('/') ? directory + name : directory + '/' + name;
}

int renameNoReplace(const std::string& from, const std::string& to)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        return errno;
    // Not on this disk: look first.
    if (linkStat(to))
        return EEXIST;
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int forEachName(const std::string& directory, const std::function<int(const std::string& name)>& take)
{
    DIR* stream = ::opendir(directory.c_str());
    if (!stream)
        return errno;
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(stream)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            names.emplace_back(entry->d_name);
        errno = 0;
    }
    const int error = errno;
    ::closedir(stream);
    if (error)
        return error;
    for (const std::string& name : names) {
        if (const int failure = take(name))
            return failure;
    }
    return 0;
}

QString shownName(const std::string& path)
{
    return QStringLiteral("<b>%1</b>").arg(textOf(nameOf(path)).toHtmlEscaped());
}

QString reasonText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error)).toHtmlEscaped();
}

} // namespace vantrel::systemfile
