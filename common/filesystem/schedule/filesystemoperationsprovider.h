#pragma once

#include <QObject>

namespace vantrel {

class FileSystemOperations;

/// Where the one queue of file work is found.
class FileSystemOperationsProvider : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Made at the first call, for the life of the process.
    static FileSystemOperations* getFileSystemOperations();
};

} // namespace vantrel
