#pragma once

#include "common/filesystem/operations/modifyoperation.h"

namespace vantrel {

class AbstractOperationFactory;

/// The removal of a directory with all that is in it, on a file system that removes only empty ones.
class RecursiveRemoveOperation : public ModifyOperation
{
    Q_OBJECT

public:
    /// The factory makes the operations of the parts and outlives this one.
    RecursiveRemoveOperation(AbstractOperationFactory* factory, FileSystemTarget target,
                             QObject* parent = nullptr);

    bool accept(OperationVisitor* visitor) override;

Q_SIGNALS:
    void directoryListingFinished();
    /// Nothing is left but the directory itself, or not all could be removed.
    void contentIsRemoved(bool succeeded);

private:
    AbstractOperationFactory* m_factory;
};

} // namespace vantrel
