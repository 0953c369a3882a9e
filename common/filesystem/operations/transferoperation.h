#pragma once

#include "common/filesystem/operations/conflictpolicy.h"
#include "common/filesystem/operations/runnableoperation.h"

#include <deque>
#include <optional>

namespace vantrel {

/// A copy or a move from one target to another, with its bytes, its speed and the time that is left.
class TransferOperation : public RunnableOperation
{
    Q_OBJECT

public:
    enum TransferType {
        Copy = 0,
        Move = 1,
    };
    Q_ENUM(TransferType)

    TransferOperation(FileSystemTarget from, FileSystemTarget to, TransferType type,
                      QObject* parent = nullptr);

    QList<FileSystemTarget> targets() const override;

    virtual unsigned long long transferredBytes() const;
    virtual unsigned long long totalSizeBytes() const;
    virtual void setTransferredBytes(unsigned long long bytes);
    virtual void setTotalSizeBytes(unsigned long long bytes);
    /// Bytes per second, the median of the last five seconds; 0 before that.
    virtual double transferSpeed() const;
    /// 0 while there is no estimate.
    virtual quint16 etaSeconds() const;
    bool accept(OperationVisitor* visitor) override = 0;

    FileSystemTarget from() const;
    FileSystemTarget to() const;
    TransferType transferType() const;
    /// The one that this is a part of; null for one of its own.
    QWeakPointer<TransferOperation> parentOperation() const;
    void setParentOperation(QWeakPointer<TransferOperation> parent);

    /// It repeats one that has failed, with the same answers. Set it before the operation starts.
    virtual void setRetryOf(const TransferOperation& failed);
    bool isRetry() const { return m_isRetry; }

    /// Both sides were compared, byte by byte or by a checksum of all of it, and are the same.
    virtual bool isVerified() const { return m_isVerified; }
    void setVerified(bool isVerified) { m_isVerified = isVerified; }

    /// Of its files and directories those that were left out, since something of their name was there
    /// already; 1 for a file of its own.
    virtual int skippedCount() const { return m_skippedCount; }
    void setSkippedCount(int count) { m_skippedCount = count; }
    /// Files of a directory that stay where they are, since they are no media.
    virtual int otherFiles() const { return 0; }

    /// Refuse until somebody says otherwise. Set it before the operation starts.
    ConflictPolicy conflictPolicy() const;
    void setConflictPolicy(ConflictPolicy policy);
    /// What it waits for under Ask; empty when it waits for nothing.
    std::optional<TransferConflict> conflict() const;
    /// Its work has met something of the name: asks, and waits for answerConflict(). Called by the file
    /// systems.
    void askConflict(const TransferConflict& conflict);
    /// The answer; forAll makes it the policy of all that follow. Ask and Refuse end the operation.
    void answerConflict(ConflictPolicy answer, bool forAll);

Q_SIGNALS:
    void transferredBytesChanged(size_t bytes);
    void totalSizeBytesChanged(size_t bytes);
    void etaSecondsChanged(quint16 seconds);
    void transferSpeedChanged(double bytesPerSecond);
    /// conflict() is to be answered.
    void conflictFound(vantrel::TransferConflict conflict);
    /// For the file system that asked.
    void conflictAnswered(vantrel::ConflictPolicy answer, bool forAll);

protected:
    /// Only before it has started.
    void setTo(FileSystemTarget to);
    /// Milliseconds of a clock that never goes back, and that midnight does not touch.
    virtual qint64 nowMs() const;

private:
    struct Sample
    {
        qint64 timeMs;
        unsigned long long bytes;
    };

    void askLater(const TransferOperation& parent, const TransferConflict& conflict);
    void setTransferSpeed(double speed);
    void updateEstimates();
    double calculateMedianSpeed() const;
    double calculateEtaSeconds(double speed) const;

    FileSystemTarget m_from;
    FileSystemTarget m_to;
    TransferType m_type;
    QWeakPointer<TransferOperation> m_parent;
    unsigned long long m_transferredBytes = 0;
    unsigned long long m_totalSizeBytes = 0;
    double m_transferSpeed = 0;
    quint16 m_etaSeconds = 0;
    std::deque<Sample> m_samples;
    bool m_isRetry = false;
    bool m_isVerified = false;
    int m_skippedCount = 0;
    ConflictPolicy m_conflictPolicy = ConflictPolicy::Refuse;
    std::optional<TransferConflict> m_conflict;
};

} // namespace vantrel
