#pragma once

#include "common/filesystem/model/filesystemdirectory.h"
#include "common/filesystem/model/filesystemfile.h"

#include <QList>

#include <optional>

namespace vantrel {

/// What a directory of the local disks holds, as the system shows it: no hidden items, of the files only
/// media.
struct DirectoryContent
{
    /// With the way up, "..", in front.
    QList<FileSystemDirectory> directories;
    QList<FileSystemFile> files;
    int otherFiles = 0; // that are no media

    /// Takes as long as the disk takes, so that it is read on a worker thread. Both lists come by name; a
    /// symbolic link counts as what it points to. Nothing when the directory is not there.
    static std::optional<DirectoryContent> read(const QString& path);

    bool operator==(const DirectoryContent&) const = default;
};

} // namespace vantrel
