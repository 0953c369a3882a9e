#pragma once

#include "common/filesystem/operations/abstractoperationfactory.h"

#include <QObject>

namespace vantrel {

/// Makes the operations of the process. What it makes for an item depends on the item's kind, and on whether
/// the work stays on the operator's computer: there a directory is one item, on a server each part of it is
/// one.
class OperationFactory : public QObject, public AbstractOperationFactory
{
    Q_OBJECT

public:
    explicit OperationFactory(QObject* parent = nullptr);

    OperationPtr createCopyOperation(FileSystemTarget from, FileSystemTarget to) override;
    OperationPtr createMoveOperation(FileSystemTarget from, FileSystemTarget to) override;
    OperationPtr createFileCreationOperation(FileSystemTarget target) override;
    OperationPtr createDirectoryCreationOperation(FileSystemTarget target) override;
    OperationPtr createRemoveOperation(FileSystemTarget target) override;
    OperationPtr createRenameOperation(FileSystemTarget target, QString newName) override;

private:
    OperationPtr createTransfer(const FileSystemTarget& from, const FileSystemTarget& to, int type);
};

} // namespace vantrel
