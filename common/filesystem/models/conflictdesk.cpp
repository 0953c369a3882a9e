#include "common/filesystem/models/conflictdesk.h"

#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/schedule/filesystemoperations.h"
#include "common/media/address/showntext.h"

namespace vantrel {

namespace {

ConflictPolicy policyOf(ConflictDesk::Answer answer)
{
    switch (answer) {
    case ConflictDesk::Answer::Replace:
        return ConflictPolicy::Replace;
    case ConflictDesk::Answer::KeepBoth:
        return ConflictPolicy::KeepBoth;
    case ConflictDesk::Answer::Skip:
        return ConflictPolicy::Skip;
    case ConflictDesk::Answer::Stop:
        break;
    }
    return ConflictPolicy::Refuse;
}

} // namespace

ConflictDesk::ConflictDesk(FileSystemOperations* operations, QObject* parent)
    : QObject(parent)
    , m_operations(operations)
{
    if (!m_operations)
        return;
    connect(m_operations, &FileSystemOperations::allOperationsChanged, this, &ConflictDesk::followNew);
    followNew();
}

/// Also what somebody else has told to ask is asked for here: the queue only grows.
void ConflictDesk::followNew()
{
    const OperationPtrList all = m_operations ? m_operations->allOperations() : OperationPtrList();
    for (; m_followedCount < all.size(); ++m_followedCount) {
        const auto* transfer = qobject_cast<const TransferOperation*>(all.at(m_followedCount).data());
        if (!transfer)
            continue;
        connect(transfer, &TransferOperation::conflictFound, this, &ConflictDesk::questionChanged);
        connect(transfer, &TransferOperation::conflictAnswered, this, &ConflictDesk::questionChanged);
        connect(transfer, &BaseOperation::operationStopped, this, &ConflictDesk::questionChanged);
    }
}

QList<QSharedPointer<TransferOperation>> ConflictDesk::open() const
{
    QList<QSharedPointer<TransferOperation>> transfers;
    const OperationPtrList all = m_operations ? m_operations->allOperations() : OperationPtrList();
    for (const OperationPtr& operation : all) {
        const auto transfer = operation.objectCast<TransferOperation>();
        if (transfer && !transfer->hasFinished())
            transfers.append(transfer);
    }
    return transfers;
}

QSharedPointer<TransferOperation> ConflictDesk::asking() const
{
    for (const QSharedPointer<TransferOperation>& transfer : open()) {
        if (transfer->conflict())
            return transfer;
    }
    return {};
}

bool ConflictDesk::isAsking() const
{
    return !asking().isNull();
}

QString ConflictDesk::name() const
{
    const auto transfer = asking();
    return transfer ? shownText(getNameInPath(transfer->conflict()->path)) : QString();
}

QString ConflictDesk::place() const
{
    const auto transfer = asking();
    return transfer ? shownText(getParentPath(transfer->conflict()->path)) : QString();
}

bool ConflictDesk::isDirectory() const
{
    const auto transfer = asking();
    return transfer && transfer->conflict()->isDirectory;
}

int ConflictDesk::othersWaiting() const
{
    return std::max<int>(static_cast<int>(open().size()) - 1, 0);
}

void ConflictDesk::watch(const OperationPtr& operation)
{
    if (const auto transfer = operation.objectCast<TransferOperation>())
        transfer->setConflictPolicy(ConflictPolicy::Ask);
}

void ConflictDesk::answer(Answer answer, bool forAll)
{
    const auto first = asking();
    if (!first)
        return;
    if (answer == Answer::Stop) {
        first->abort();
        return;
    }
    const ConflictPolicy policy = policyOf(answer);
    // To merge a folder with another one is no leave to replace the files in it.
    if (policy == ConflictPolicy::Replace && first->conflict()->isDirectory)
        forAll = false;
    if (forAll) {
        for (const QSharedPointer<TransferOperation>& transfer : open()) {
            if (transfer != first && transfer->conflictPolicy() == ConflictPolicy::Ask &&
                !transfer->conflict())
                transfer->setConflictPolicy(policy);
        }
    }
    first->answerConflict(policy, forAll);
    Q_EMIT questionChanged();
}

} // namespace vantrel
