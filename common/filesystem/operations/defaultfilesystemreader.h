#pragma once

#include "common/filesystem/operations/filesystemreader.h"

#include <QObject>
#include <QPointer>

namespace vantrel {

/// Reads from the file system itself: what that cannot answer at once is missing. Main thread.
class DefaultFileSystemReader : public QObject, public FileSystemReader
{
    Q_OBJECT

public:
    explicit DefaultFileSystemReader(QObject* parent = nullptr);
    ~DefaultFileSystemReader() override;

    /// Null when it is gone.
    FileSystem* fileSystem() const override;
    void setFileSystem(FileSystem* fileSystem) override;
    QList<std::filesystem::path> getFileSystemPaths(const std::filesystem::path& path) override;
    QList<std::filesystem::path> getFileSystemPaths(const QString& path) override;

private:
    QPointer<FileSystem> m_fileSystem;
    bool m_hadFileSystem = false;
};

} // namespace vantrel
