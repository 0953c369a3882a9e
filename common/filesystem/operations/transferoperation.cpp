#include "common/filesystem/operations/transferoperation.h"

#include <algorithm>
#include <chrono>

namespace vantrel {

namespace {

constexpr std::size_t sampleCount = 10;
constexpr qint64 sampleIntervalMs = 500;

} // namespace

TransferOperation::TransferOperation(FileSystemTarget from, FileSystemTarget to, TransferType type,
                                     QObject* parent)
    : RunnableOperation(parent)
    , m_from(std::move(from))
    , m_to(std::move(to))
    , m_type(type)
{
    connect(this, &BaseOperation::operationStopped, this, [this] { m_conflict.reset(); });
}

QList<FileSystemTarget> TransferOperation::targets() const
{
    return {m_from, m_to};
}

unsigned long long TransferOperation::transferredBytes() const
{
    return m_transferredBytes;
}

unsigned long long TransferOperation::totalSizeBytes() const
{
    return m_totalSizeBytes;
}

void TransferOperation::setTransferredBytes(unsigned long long bytes)
{
    if (m_transferredBytes == bytes)
        return;
    m_transferredBytes = bytes;
    Q_EMIT transferredBytesChanged(bytes);
    const qint64 now = nowMs();
    if (!m_samples.empty() && now - m_samples.back().timeMs <= sampleIntervalMs) {
        m_samples.back().bytes = bytes;
        return;
    }
    while (m_samples.size() >= sampleCount)
        m_samples.pop_front();
    m_samples.push_back({now, bytes});
    if (m_samples.size() >= sampleCount)
        updateEstimates();
}

void TransferOperation::setTotalSizeBytes(unsigned long long bytes)
{
    m_totalSizeBytes = bytes;
    Q_EMIT totalSizeBytesChanged(bytes);
    if (m_samples.size() >= sampleCount)
        updateEstimates();
}

double TransferOperation::transferSpeed() const
{
    return m_transferSpeed;
}

quint16 TransferOperation::etaSeconds() const
{
    return m_etaSeconds;
}

void TransferOperation::setTransferSpeed(double speed)
{
    if (qFuzzyCompare(m_transferSpeed, speed))
        return;
    m_transferSpeed = speed;
    Q_EMIT transferSpeedChanged(speed);
}

void TransferOperation::updateEstimates()
{
    setTransferSpeed(calculateMedianSpeed());
    // Also false for the no-number of a transfer that stands still.
    const double eta = calculateEtaSeconds(m_transferSpeed);
    const auto seconds = static_cast<quint16>(eta >= 0 && eta <= 65535.0 ? eta : 0);
    if (m_etaSeconds == seconds)
        return;
    m_etaSeconds = seconds;
    Q_EMIT etaSecondsChanged(seconds);
}

// The median makes the display calm against bursts.
double TransferOperation::calculateMedianSpeed() const
{
    std::vector<double> speeds;
    for (std::size_t index = 1; index < m_samples.size(); ++index) {
        const Sample& before = m_samples[index - 1];
        const Sample& after = m_samples[index];
        const qint64 ms = after.timeMs - before.timeMs;
        if (ms >= 1)
            speeds.push_back((static_cast<double>(after.bytes) - static_cast<double>(before.bytes)) /
                             static_cast<double>(ms) * 1000.0);
        else
            speeds.push_back(speeds.empty() ? 0 : speeds.back());
    }
    if (speeds.empty())
        return 0;
    std::ranges::sort(speeds);
    const std::size_t middle = speeds.size() / 2;
    return speeds.size() % 2 ? speeds[middle] : (speeds[middle - 1] + speeds[middle]) / 2;
}

double TransferOperation::calculateEtaSeconds(double speed) const
{
    return (static_cast<double>(m_totalSizeBytes) - static_cast<double>(m_transferredBytes)) / speed;
}

qint64 TransferOperation::nowMs() const
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

FileSystemTarget TransferOperation::from() const
{
    return m_from;
}

FileSystemTarget TransferOperation::to() const
{
    return m_to;
}

void TransferOperation::setTo(FileSystemTarget to)
{
    m_to = std::move(to);
}

TransferOperation::TransferType TransferOperation::transferType() const
{
    return m_type;
}

QWeakPointer<TransferOperation> TransferOperation::parentOperation() const
{
    return m_parent;
}

void TransferOperation::setParentOperation(QWeakPointer<TransferOperation> parent)
{
    m_parent = std::move(parent);
}

void TransferOperation::setRetryOf(const TransferOperation& failed)
{
    m_isRetry = true;
    m_conflictPolicy = failed.m_conflictPolicy;
}

ConflictPolicy TransferOperation::conflictPolicy() const
{
    const QSharedPointer<TransferOperation> parent = m_parent.toStrongRef();
    return parent ? parent->conflictPolicy() : m_conflictPolicy;
}

void TransferOperation::setConflictPolicy(ConflictPolicy policy)
{
    m_conflictPolicy = policy;
}

std::optional<TransferConflict> TransferOperation::conflict() const
{
    return m_conflict;
}

void TransferOperation::askConflict(const TransferConflict& conflict)
{
    const QSharedPointer<TransferOperation> parent = m_parent.toStrongRef();
    if (parent && parent->conflict())
        return askLater(*parent, conflict);
    m_conflict = conflict;
    // The queue and the views know only the whole of which this may be a part.
    if (parent) {
        connect(parent.data(), &TransferOperation::conflictAnswered, this, &TransferOperation::answerConflict,
                static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::UniqueConnection));
        parent->askConflict(conflict);
    }
    Q_EMIT conflictFound(conflict);
}

/// Another part waits for its answer, which is no answer to this one unless it is for all.
void TransferOperation::askLater(const TransferOperation& parent, const TransferConflict& conflict)
{
    const auto ask = [this, conflict] {
        if (hasFinished())
            return;
        if (const ConflictPolicy policy = conflictPolicy(); policy != ConflictPolicy::Ask) {
            m_conflict = conflict;
            answerConflict(policy, false);
        } else {
            askConflict(conflict);
        }
    };
    connect(
        &parent, &TransferOperation::conflictAnswered, this,
        [this, ask] { QMetaObject::invokeMethod(this, ask, Qt::QueuedConnection); },
        Qt::SingleShotConnection);
}

void TransferOperation::answerConflict(ConflictPolicy answer, bool forAll)
{
    if (!m_conflict)
        return;
    m_conflict.reset();
    if (forAll && answer != ConflictPolicy::Ask)
        m_conflictPolicy = answer;
    Q_EMIT conflictAnswered(answer, forAll);
}

} // namespace vantrel
