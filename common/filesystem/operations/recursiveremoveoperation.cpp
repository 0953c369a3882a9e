#include "common/filesystem/operations/recursiveremoveoperation.h"

#include "common/filesystem/model/operationvisitor.h"

namespace vantrel {

RecursiveRemoveOperation::RecursiveRemoveOperation(AbstractOperationFactory* factory, FileSystemTarget target,
                                                   QObject* parent)
    : ModifyOperation(std::move(target), Remove, Directory, parent)
    , m_factory(factory)
{
}

bool RecursiveRemoveOperation::accept(OperationVisitor* visitor)
{
    const auto self = sharedFromThis().staticCast<RecursiveRemoveOperation>();
    return self && visitor->visit(self);
}

} // namespace vantrel
