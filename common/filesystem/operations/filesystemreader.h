#pragma once

#include <QList>
#include <QString>

#include <filesystem>

namespace vantrel {

class FileSystem;

/// Gives what a directory of a file system holds in one call.
class FileSystemReader
{
public:
    virtual ~FileSystemReader() = default;

    virtual FileSystem* fileSystem() const = 0;
    virtual void setFileSystem(FileSystem* fileSystem) = 0;
    /// Whole paths, directories first, without the way up; empty where nothing is known.
    virtual QList<std::filesystem::path> getFileSystemPaths(const std::filesystem::path& path) = 0;
    virtual QList<std::filesystem::path> getFileSystemPaths(const QString& path) = 0;
};

} // namespace vantrel
