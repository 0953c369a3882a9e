#include "common/filesystem/schedule/filesystemoperationsprovider.h"

#include "common/filesystem/schedule/filesystemoperationsrunner.h"
#include "common/filesystem/schedule/operationfactory.h"

namespace vantrel {

FileSystemOperations* FileSystemOperationsProvider::getFileSystemOperations()
{
    static OperationFactory factory;
    static FileSystemOperationsRunner runner(&factory);
    return &runner;
}

} // namespace vantrel
