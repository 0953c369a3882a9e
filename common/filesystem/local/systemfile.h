#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace vantrel::systemfile {

// Paths here are bytes, as the system has them: a disk may hold names that are no text, and a copy or a
// removal of their folder meets them too. Errors are the system's numbers (errno), 0 for none.

/// A file descriptor that closes itself.
class Handle
{
public:
    explicit Handle(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    Handle(Handle&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    ~Handle() { close(); }
    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    /// The error of closing: some disks tell only then that a write failed.
    int close();

private:
    int m_descriptor;
};

std::string bytesOf(const QString& path);
QString textOf(const std::string& path);
/// Of the item that the path leads to.
std::optional<struct stat> itemStat(const std::string& path);
/// Of the symbolic link itself where there is one.
std::optional<struct stat> linkStat(const std::string& path);
bool isDirectory(const std::optional<struct stat>& stat);
/// In size or time: of one item before and after.
bool hasChanged(const struct stat& before, const struct stat& after);
bool isSameItem(const struct stat& left, const struct stat& right);

/// Without one trailing "/": with it the system takes a link for what it points to.
std::string withoutSlash(std::string path);
std::string nameOf(const std::string& path);
std::string parentOf(const std::string& path);
std::string joined(const std::string& directory, const std::string& name);

/// Fails with EEXIST when something is there, in one step with the renaming where the disk can do that.
int renameNoReplace(const std::string& from, const std::string& to);
/// Calls take for each name but "." and ".." until it gives an error, and returns that. The names are read
/// before the first call, so that it may change the directory.
int forEachName(const std::string& directory, const std::function<int(const std::string& name)>& take);

/// The last component for a sentence, escaped and bold.
QString shownName(const std::string& path);
/// The system's own words.
QString reasonText(int error);

} // namespace vantrel::systemfile
