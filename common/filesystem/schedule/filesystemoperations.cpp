#include "common/filesystem/schedule/filesystemoperations.h"

namespace vantrel {

OperationPtr FileSystemOperations::retryOperation(OperationPtr)
{
    return {};
}

} // namespace vantrel
