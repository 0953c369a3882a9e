#include "common/filesystem/operations/directorytransferoperation.h"

#include "common/filesystem/model/operationvisitor.h"

namespace vantrel {

DirectoryTransferOperation::DirectoryTransferOperation(AbstractOperationFactory* factory,
                                                       FileSystemTarget from, FileSystemTarget to,
                                                       TransferType type, QObject* parent)
    : TransferOperation(std::move(from), std::move(to), type, parent)
    , m_factory(factory)
{
}

bool DirectoryTransferOperation::accept(OperationVisitor* visitor)
{
    const auto self = sharedFromThis().staticCast<DirectoryTransferOperation>();
    return self && visitor->visit(self);
}

} // namespace vantrel
