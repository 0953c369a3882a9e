#pragma once

#include "common/filesystem/operations/baseoperation.h"
#include "common/filesystem/operations/filesystempath.h"
#include "common/filesystem/operations/recursivedirectorylister.h"

namespace vantrel {

/// Who cuts the work on a directory into parts: an operation on a directory, for its runner.
class SubOperationCreator
{
public:
    virtual ~SubOperationCreator() = default;

    /// Null when there is nothing to be done for the item.
    virtual OperationPtr createSubOperation(FileSystemPath const& path) = 0;
    /// What reads the directory; the creator's.
    virtual QSharedPointer<RecursiveDirectoryLister> directoryLister() const = 0;
    /// The items in the order in which they are to be worked on.
    virtual QList<FileSystemPath> getPathList(RecursiveDirectoryLister::DirectoryItem& item) = 0;
};

} // namespace vantrel
