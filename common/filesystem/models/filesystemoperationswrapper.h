#pragma once

#include "common/filesystem/models/qmlfilesystemoperations.h"

namespace vantrel {

/// The one queue of file work as declarative views have it, where its type is called FileSystemOperations:
/// they ask for work by its operationsProvider. The view that shows files owns it; main thread only.
class FileSystemOperationsWrapper : public QmlFileSystemOperations
{
    Q_OBJECT

public:
    /// The queue must outlive this.
    explicit FileSystemOperationsWrapper(FileSystemOperations* operations, QObject* parent = nullptr);
};

} // namespace vantrel
