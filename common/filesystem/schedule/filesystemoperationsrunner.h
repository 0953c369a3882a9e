#pragma once

#include "common/filesystem/schedule/filesystemoperations.h"

#include <memory>

namespace vantrel {

class AbstractOperationFactory;
class FileSystemOperationsRunnerPrivate;

/// The queue of the process: makes operations, keeps them for the life of the process, and runs one at a
/// time, in the order in which they came. The next starts as soon as the one before has ended and its file
/// systems are ready; one that fails does not stop those behind it, and is told as a notification.
class FileSystemOperationsRunner : public FileSystemOperations
{
    Q_OBJECT

public:
    /// The factory must outlive this.
    explicit FileSystemOperationsRunner(AbstractOperationFactory* factory, QObject* parent = nullptr);
    ~FileSystemOperationsRunner() override;

    OperationPtrList allOperations() const override;
    OperationPtrList activeOperations() const override;
    OperationPtrList pendingOperations() const override;
    OperationPtrList finishedOperations() const override;
    OperationPtrList findOperations(FileSystem* fileSystem, QString path) const override;
    OperationPtr rename(FileSystem* source, QString path, QString newName) override;
    OperationPtr remove(FileSystem* source, QString path) override;
    OperationPtr createDirectory(FileSystem* source, QString path) override;
    OperationPtr createFile(FileSystem* source, QString path) override;
    OperationPtr move(FileSystem* fromFileSystem, QString fromPath, FileSystem* toFileSystem,
                      QString toPath) override;
    OperationPtr copy(FileSystem* fromFileSystem, QString fromPath, FileSystem* toFileSystem,
                      QString toPath) override;

    OperationPtr retryOperation(OperationPtr operation) override;

public Q_SLOTS:
    /// Starts it out of its turn; false when it cannot start.
    bool startOperation(vantrel::OperationPtr operation);
    /// Aborts a running one; false when it does not run.
    bool stopOperation(vantrel::OperationPtr operation);
    void abortAllOperations();

private:
    std::unique_ptr<FileSystemOperationsRunnerPrivate> m_private;
};

} // namespace vantrel
