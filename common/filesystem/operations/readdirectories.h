#pragma once

#include "common/filesystem/operations/filesystemreader.h"
#include "common/filesystem/operations/recursivedirectorylister.h"

#include <QHash>

namespace vantrel {

/// What was read of some directories, shared with whoever has read it: a thread can go through the content of
/// a large one while the file system changes. A value that asks nobody; one thread at a time.
class ReadDirectories : public FileSystemReader
{
public:
    using Content = RecursiveDirectoryLister::Content;

    ReadDirectories() = default;
    explicit ReadDirectories(const QHash<QString, Content>& contents)
        : m_contents(contents)
    {
    }

    void add(const QHash<QString, Content>& contents) { m_contents.insert(contents); }
    bool contains(const QString& path) const;

    /// None: it is asked no more.
    FileSystem* fileSystem() const override { return nullptr; }
    void setFileSystem(FileSystem*) override {}
    QList<std::filesystem::path> getFileSystemPaths(const std::filesystem::path& path) override;
    QList<std::filesystem::path> getFileSystemPaths(const QString& path) override;

private:
    QHash<QString, Content> m_contents; // as the listers have it
};

} // namespace vantrel
