#pragma once

#include "common/filesystem/operations/transferoperation.h"

namespace vantrel {

class AbstractOperationFactory;

/// The transfer of a directory with all that is in it.
class DirectoryTransferOperation : public TransferOperation
{
    Q_OBJECT

public:
    /// The factory makes the operations of the parts and outlives this one.
    DirectoryTransferOperation(AbstractOperationFactory* factory, FileSystemTarget from, FileSystemTarget to,
                               TransferType type, QObject* parent = nullptr);

    bool accept(OperationVisitor* visitor) override;

Q_SIGNALS:
    void directoryListingFinished();

private:
    AbstractOperationFactory* m_factory;
};

} // namespace vantrel
