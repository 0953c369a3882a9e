#pragma once

#include "common/filesystem/operations/baseoperation.h"
#include "common/filesystem/operations/conflictpolicy.h"

namespace vantrel {

/// The one queue of all file work, as views and drop handlers see it. What is asked for becomes an operation
/// and waits its turn. Main thread only.
class FileSystemOperations : public QObject
{
    Q_OBJECT
    Q_PROPERTY(vantrel::OperationPtrList allOperations READ allOperations NOTIFY allOperationsChanged)
    Q_PROPERTY(
        vantrel::OperationPtrList activeOperations READ activeOperations NOTIFY activeOperationsChanged)
    Q_PROPERTY(
        vantrel::OperationPtrList pendingOperations READ pendingOperations NOTIFY pendingOperationsChanged)
    Q_PROPERTY(
        vantrel::OperationPtrList finishedOperations READ finishedOperations NOTIFY finishedOperationsChanged)

public:
    using QObject::QObject;

    /// In the order in which they were asked for.
    virtual OperationPtrList allOperations() const = 0;
    virtual OperationPtrList activeOperations() const = 0;
    virtual OperationPtrList pendingOperations() const = 0;
    virtual OperationPtrList finishedOperations() const = 0;
    /// Those with just this target.
    virtual OperationPtrList findOperations(FileSystem* fileSystem, QString path) const = 0;
    // Null when there is nothing to be done, or the item is of no known kind.
    Q_INVOKABLE virtual vantrel::OperationPtr rename(vantrel::FileSystem* source, QString path,
                                                     QString newName) = 0;
    Q_INVOKABLE virtual vantrel::OperationPtr remove(vantrel::FileSystem* source, QString path) = 0;
    Q_INVOKABLE virtual vantrel::OperationPtr createDirectory(vantrel::FileSystem* source, QString path) = 0;
    Q_INVOKABLE virtual vantrel::OperationPtr createFile(vantrel::FileSystem* source, QString path) = 0;
    Q_INVOKABLE virtual vantrel::OperationPtr move(vantrel::FileSystem* fromFileSystem, QString fromPath,
                                                   vantrel::FileSystem* toFileSystem, QString toPath) = 0;
    Q_INVOKABLE virtual vantrel::OperationPtr copy(vantrel::FileSystem* fromFileSystem, QString fromPath,
                                                   vantrel::FileSystem* toFileSystem, QString toPath) = 0;

    /// A transfer that has failed once more, at the end of the queue: it leaves out what has been brought
    /// over whole. Null for one that is no transfer or has not failed.
    Q_INVOKABLE virtual vantrel::OperationPtr retryOperation(vantrel::OperationPtr operation);

Q_SIGNALS:
    void allOperationsChanged();
    void activeOperationsChanged();
    void pendingOperationsChanged();
    void finishedOperationsChanged();
};

} // namespace vantrel
