#pragma once

#include "common/filesystem/model/filesystem.h"

#include <QDebug>

namespace vantrel {

/// One dragged item and where it was dropped.
struct DropEntry
{
    FileSystem* sourceFileSystem = nullptr;
    QString sourcePath;
    FileSystem* targetFileSystem = nullptr;
    QString targetPath; // the directory that it goes into
    FileSystem::ItemType type = FileSystem::Unknown;
};

/// For the log.
QDebug operator<<(QDebug debug, const DropEntry& entry);

} // namespace vantrel
