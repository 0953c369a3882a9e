#pragma once

#include "common/filesystem/model/filesystem.h"

namespace vantrel {

/// The address of one item anywhere: a file system and a path in it. File systems live as long as the
/// process, so the pointer is not owned. Orders by file system, then by path.
struct FileSystemTarget
{
    Q_GADGET
    Q_PROPERTY(vantrel::FileSystem* fileSystem MEMBER fileSystem)
    Q_PROPERTY(QString fullPath MEMBER fullPath)

public:
    FileSystem* fileSystem = nullptr;
    QString fullPath;

    bool operator==(const FileSystemTarget&) const = default;
    bool operator<(const FileSystemTarget& other) const;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::FileSystemTarget)
