#pragma once

#include "common/filesystem/operations/baseoperation.h"

namespace vantrel {

/// Makes operations; which class serves depends on the kind of the item and on where it lies. Null when the
/// item is of no known kind.
class AbstractOperationFactory
{
public:
    virtual ~AbstractOperationFactory() = default;

    virtual OperationPtr createCopyOperation(FileSystemTarget from, FileSystemTarget to) = 0;
    virtual OperationPtr createMoveOperation(FileSystemTarget from, FileSystemTarget to) = 0;
    virtual OperationPtr createFileCreationOperation(FileSystemTarget target) = 0;
    virtual OperationPtr createDirectoryCreationOperation(FileSystemTarget target) = 0;
    virtual OperationPtr createRemoveOperation(FileSystemTarget target) = 0;
    virtual OperationPtr createRenameOperation(FileSystemTarget target, QString newName) = 0;
};

} // namespace vantrel
