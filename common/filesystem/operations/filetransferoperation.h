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
    /// With a last error that says how far it came. Closes both devices.
    void abort() override;
    bool accept(OperationVisitor* visitor) override;

    /// Null until a visitor sets it. It may live on the thread of the one who works with it.
    QSharedPointer<QIODevice> input() const;
    QSharedPointer<QIODevice> output() const;
    void setInput(QSharedPointer<QIODevice> input);
    void setOutput(QSharedPointer<QIODevice> output);

Q_SIGNALS:
    void inputChanged();
    void outputChanged();

private:
    QSharedPointer<QIODevice> m_input;
    QSharedPointer<QIODevice> m_output;
};

} // namespace vantrel
