#pragma once

#include "common/filesystem/operations/recursiveoperationrunner.h"
#include "common/filesystem/operations/suboperationcreator.h"
#include "common/filesystem/operations/transferoperation.h"

#include <QHash>
#include <QSet>

namespace vantrel {

class AbstractOperationFactory;

/// The transfer of a directory with all that is in it: one operation for each directory and file, in the
/// order of the listing. What has arrived when it fails stays where it is, and a retry goes on from there. A
/// move takes the directories that it has emptied away at the end; one that holds anything else stays.
class DirectoryTransferOperation : public TransferOperation, public SubOperationCreator
{
    Q_OBJECT

public:
    /// The factory makes the operations of the parts and outlives this one. to: the directory into which it
    /// goes.
    DirectoryTransferOperation(AbstractOperationFactory* factory, FileSystemTarget from, FileSystemTarget to,
                               TransferType type, QObject* parent = nullptr);
    ~DirectoryTransferOperation() override;

    void print(QDebug& debug) const override;
    /// Its own, then those of the part that failed.
    QList<OperationError> errors() const override;
    bool setRunning(bool running) override;
    bool accept(OperationVisitor* visitor) override;
    /// All of its files were.
    bool isVerified() const override { return m_fileCount > 0 && m_verified.size() == m_fileCount; }
    int skippedCount() const override
    {
        return TransferOperation::skippedCount() + static_cast<int>(m_skipped.size());
    }
    int otherFiles() const override;
    /// Goes on where that has come to: into the same directory, without what has arrived there.
    void setRetryOf(const TransferOperation& failed) override;

    OperationPtr createSubOperation(FileSystemPath const& path) override;
    QSharedPointer<RecursiveDirectoryLister> directoryLister() const override;
    /// Also sets the total size.
    QList<FileSystemPath> getPathList(RecursiveDirectoryLister::DirectoryItem& item) override;

    const RecursiveOperationRunner* runner() const { return m_runner.get(); }
    /// Where the item of the source comes to lie.
    QString destinationOf(const QString& sourcePath) const;

public Q_SLOTS:
    /// With an error that says how far it came. Stops the part that runs, and has failed once that has.
    void abort() override;

Q_SIGNALS:
    void directoryListingFinished();

private Q_SLOTS:
    void updateProgress();
    void handleDirectoryListingHasFinishedChanged();
    void handleOperationRunnerStateChanged();
    void handleTransferOperationTransferredBytesChanged(const QString& path, size_t bytes);
    void updateTransferredByteCount();

private:
    void lookAtDestination();
    void onDestinationRead();
    void meetExisting(ConflictPolicy policy);
    void takeFreeName();
    void startRunner();
    void countArrived(const QList<FileSystemPath>& paths);
    void checkRoom(qint64 neededBytes);
    void forgetParts();
    void fail(const QString& message);
    OperationPtr createFileOperation(const FileSystemPath& path, const FileSystemTarget& to);
    void noteEnd(const TransferOperation& transfer);
    bool isThereAlready(const FileSystemPath& path) const;

    AbstractOperationFactory* m_factory;
    QSharedPointer<RecursiveDirectoryLister> m_lister;
    std::unique_ptr<RecursiveOperationRunner> m_runner;
    std::unique_ptr<RecursiveDirectoryLister> m_destinationLister; // of what is there already
    QString m_name;                                                // of the directory at its destination
    bool m_hasPlace = false;           // the directory of that name is the operation's to fill
    QHash<QString, QString> m_arrived; // by source path, where what has been brought over lies
    QSet<QString> m_verified;          // of these, the compared ones
    QSet<QString> m_skipped;           // by source path, what somebody chose to leave out
    qsizetype m_fileCount = 0;         // of the source
    bool m_isNameAsked = false;        // whether the directory itself may be merged with one that is there
    bool m_isStopping = false;
    QHash<QString, unsigned long long> m_bytes; // transferred, of each source path
    unsigned long long m_bytesSum = 0;          // of m_bytes
};

} // namespace vantrel
