#include "common/filesystem/models/filesystemoperationswrapper.h"

namespace vantrel {

FileSystemOperationsWrapper::FileSystemOperationsWrapper(FileSystemOperations* operations, QObject* parent)
    : QmlFileSystemOperations(parent)
{
    setOperationsProvider(operations);
}

} // namespace vantrel
