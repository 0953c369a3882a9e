#pragma once

#include "common/filesystem/operations/transferoperation.h"

#include <QIODevice>

namespace vantrel {

/// The transfer of one item. Between two file systems the bytes run through a device: the side of the
/// operator's computer opens it, the other side reads or writes it.
class FileTransferOperation : public TransferOperation
{
    Q_OBJECT

public:
    using TransferOperation::TransferOperation;

    void print(QDebug& debug) const override;
    /// Where the other file system wants free names, a target that is there already is dealt with here, by
    /// conflictPolicy(), before anyone begins.
    void run() override;
    /// With a last error that says how far it came. Closes both devices.
    void abort() override;
    bool accept(OperationVisitor* visitor) override;
    /// The target is there already, and is to be replaced.
    bool replacesTarget() const { return m_replacesTarget; }

    /// Null until a visitor sets it. It may live on the thread of the one who works with it.
    QSharedPointer<QIODevice> input() const;
    QSharedPointer<QIODevice> output() const;
    void setInput(QSharedPointer<QIODevice> input);
    void setOutput(QSharedPointer<QIODevice> output);

Q_SIGNALS:
    void inputChanged();
    void outputChanged();

private:
    void lookAtTarget();
    void meetConflict(ConflictPolicy policy);
    FileSystemTarget freeTarget() const;

    bool m_replacesTarget = false;
    QSharedPointer<QIODevice> m_input;
    QSharedPointer<QIODevice> m_output;
};

} // namespace vantrel
