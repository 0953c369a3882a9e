#pragma once

#include <QSharedPointer>

namespace vantrel {

class DirectoryTransferOperation;
class FileTransferOperation;
class ModifyOperation;
class RecursiveRemoveOperation;

/// A file system's hand in the operations that touch it: a visit connects it to the operation, so that it
/// does its part once that starts. Returning false makes the operation fail before it starts.
class OperationVisitor
{
public:
    virtual ~OperationVisitor() = default;

    virtual bool visit(QSharedPointer<FileTransferOperation> operation) = 0;
    virtual bool visit(QSharedPointer<DirectoryTransferOperation> operation) = 0;
    virtual bool visit(QSharedPointer<ModifyOperation> operation) = 0;
    virtual bool visit(QSharedPointer<RecursiveRemoveOperation> operation) = 0;
};

} // namespace vantrel
