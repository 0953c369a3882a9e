#pragma once

#include "common/filesystem/operations/modifyoperation.h"
#include "common/filesystem/operations/recursiveoperationrunner.h"
#include "common/filesystem/operations/suboperationcreator.h"

namespace vantrel {

class AbstractOperationFactory;

/// The removal of a directory with all that is in it, on a file system that removes only empty ones. What it
/// holds is removed here; the file system then removes the directory itself.
class RecursiveRemoveOperation : public ModifyOperation, public SubOperationCreator
{
    Q_OBJECT

public:
    /// The factory makes the operations of the parts and outlives this one.
    RecursiveRemoveOperation(AbstractOperationFactory* factory, FileSystemTarget target,
                             QObject* parent = nullptr);
    ~RecursiveRemoveOperation() override;

    void print(QDebug& debug) const override;
    /// Its own, then those of the part that failed.
    QList<OperationError> errors() const override;
    bool setRunning(bool running) override;
    bool accept(OperationVisitor* visitor) override;

    OperationPtr createSubOperation(FileSystemPath const& path) override;
    QSharedPointer<RecursiveDirectoryLister> directoryLister() const override;
    QList<FileSystemPath> getPathList(RecursiveDirectoryLister::DirectoryItem& item) override;

    const RecursiveOperationRunner* runner() const { return m_runner.get(); }

Q_SIGNALS:
    void directoryListingFinished();
    /// Nothing is left but the directory itself, or not all could be removed.
    void contentIsRemoved(bool succeeded);

private Q_SLOTS:
    void updateProgress();
    void handleDirectoryListingHasFinishedChanged();
    void handleOperationRunnerStateChanged();

private:
    AbstractOperationFactory* m_factory;
    QSharedPointer<RecursiveDirectoryLister> m_lister;
    std::unique_ptr<RecursiveOperationRunner> m_runner;
};

} // namespace vantrel
