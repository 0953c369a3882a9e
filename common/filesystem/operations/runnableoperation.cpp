#include "common/filesystem/operations/runnableoperation.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/operationvisitor.h"

#include <QScopedValueRollback>
#include <QTimerEvent>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace vantrel {

namespace {

constexpr std::chrono::milliseconds heldUpAfter(200); // an operator is not told of what is gone by then

const char* classNameOf(const FileSystemTarget& target)
{
    return target.fileSystem ? target.fileSystem->metaObject()->className() : "none";
}

} // namespace

void RunnableOperation::print(QDebug& debug) const
{
    debug << metaObject()->className() << ", state:" << m_state << ", errors:" << errors().size();
}

bool RunnableOperation::isRunning() const
{
    return m_state == Running;
}

bool RunnableOperation::hasFinished() const
{
    return m_state == Failed || m_state == Passed;
}

double RunnableOperation::progress() const
{
    return m_progress;
}

void RunnableOperation::setProgress(double progress)
{
    if (!std::isfinite(progress) || qFuzzyCompare(m_progress, progress))
        return;
    const double before = std::exchange(m_progress, progress);
    Q_EMIT progressChanged(before, progress);
}

QList<OperationError> RunnableOperation::errors() const
{
    return m_errors;
}

void RunnableOperation::addError(OperationError const& error)
{
    m_errors.append(error);
    Q_EMIT errorsChanged();
}

void RunnableOperation::addErrorText(const QString& message)
{
    addError({message, OperationError().type, QDateTime::currentDateTime()});
}

void RunnableOperation::run()
{
    if (m_state != NotStarted) {
        qCInfo(lcFileSystem) << "Operation" << *this << "has already been executed or it's running";
        return;
    }
    whenReached([this] { start(); });
}

void RunnableOperation::whenReached(std::function<void()> next)
{
    if (std::exchange(m_isReaching, true))
        return;
    m_heldUpTimer.start(int(heldUpAfter.count()), this);
    reach(targets(), next);
}

void RunnableOperation::endReaching()
{
    m_heldUpTimer.stop();
    m_isReaching = false;
    setHeldUp(false);
}

void RunnableOperation::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_heldUpTimer.timerId())
        return BaseOperation::timerEvent(event);
    m_heldUpTimer.stop();
    setHeldUp(m_isReaching);
}

void RunnableOperation::setHeldUp(bool isHeldUp)
{
    if (std::exchange(m_isHeldUp, isHeldUp) != isHeldUp)
        Q_EMIT heldUpChanged();
}

/// Visitors open and look at items on this thread.
void RunnableOperation::reach(QList<FileSystemTarget> targets, const std::function<void()>& next)
{
    while (!targets.isEmpty() && !targets.constFirst().fileSystem)
        targets.removeFirst();
    if (targets.isEmpty()) {
        endReaching();
        return next();
    }
    const FileSystemTarget target = targets.takeFirst();
    const auto go = [this, target, targets, next](bool isReached) {
        if (m_state != NotStarted)
            return;
        if (isReached)
            return reach(targets, next);
        endReaching();
        addErrorText(
            tr("The disk that holds <code>%1</code> does not answer").arg(target.fullPath.toHtmlEscaped()));
        abort();
    };
    target.fileSystem->whenReachable(target.fullPath, this, go);
}

void RunnableOperation::start()
{
    if (acceptAllVisitor()) {
        // A visitor may have ended it: then there is nothing left to do.
        if (m_state == NotStarted)
            setRunning(true);
        return;
    }
    qCWarning(lcFileSystem) << "Failed to accept visitors on operation" << *this;
    abort();
}

bool RunnableOperation::acceptAllVisitor()
{
    QList<OperationVisitor*> seen;
    for (const FileSystemTarget& target : targets()) {
        OperationVisitor* visitor = target.fileSystem ? target.fileSystem->operationVisitor() : nullptr;
        if (!visitor || seen.contains(visitor))
            continue;
        seen.append(visitor);
        if (!accept(visitor)) {
            qCWarning(lcFileSystem) << "Failed to visit operation" << *this;
            return false;
        }
    }
    return true;
}

bool RunnableOperation::setRunning(bool running)
{
    if (isRunning() == running)
        return false;
    qCInfo(lcFileSystem) << "Operation" << *this << "running state changed to"
                         << (running ? "Running" : "Stopping");
    m_state = running ? Running : Stopping;
    if (running)
        Q_EMIT operationStarted();
    return true;
}

void RunnableOperation::finish()
{
    if (!setRunning(false))
        return;
    qCInfo(lcFileSystem) << "Operation" << *this << "finished successfully";
    setState(Passed);
}

bool RunnableOperation::canAbort() const
{
    return !hasFinished() && !m_isAborting;
}

void RunnableOperation::abort()
{
    if (!canAbort())
        return;
    const QScopedValueRollback<bool> aborting(m_isAborting, true);
    qCInfo(lcFileSystem) << "Operation" << *this << "abort requested...";
    Q_EMIT operationAborted();
    setRunning(false);
    qCInfo(lcFileSystem) << "Operation" << *this << "was aborted";
    setState(Failed);
}

RunnableOperation::OperationState RunnableOperation::state() const
{
    return m_state;
}

void RunnableOperation::setState(OperationState state)
{
    m_state = state;
    switch (state) {
    case Running:
        Q_EMIT operationStarted();
        break;
    case Failed:
        Q_EMIT operationFailed();
        Q_EMIT operationStopped();
        break;
    case Passed:
        Q_EMIT operationSucceeded();
        Q_EMIT operationStopped();
        break;
    case NotStarted:
    case Stopping:
        break;
    }
}

bool RunnableOperation::isReady(bool* success) const
{
    const QList<FileSystemTarget> all = targets();
    if (m_ready.size() < all.size())
        return false;
    if (!std::ranges::all_of(all,
                             [this](const FileSystemTarget& target) { return m_ready.contains(target); }))
        return false;
    if (success)
        *success = std::ranges::all_of(m_ready, [](bool isSuccessful) { return isSuccessful; });
    return true;
}

bool RunnableOperation::isReady(FileSystemTarget target, bool* success) const
{
    const auto found = m_ready.find(target);
    if (found == m_ready.end())
        return false;
    if (success)
        *success = *found;
    return true;
}

bool RunnableOperation::setReady(FileSystemTarget target, bool isSuccessful)
{
    if (!targets().contains(target)) {
        qCWarning(lcFileSystem) << "Failed to set target" << classNameOf(target)
                                << "ready when it isn't part of the operation" << *this;
        return false;
    }
    if (m_ready.contains(target)) {
        qCWarning(lcFileSystem) << "Target" << classNameOf(target) << "was already set ready";
        return false;
    }
    qCInfo(lcFileSystem) << "Target" << classNameOf(target) << (isSuccessful ? "succeeded" : "failed")
                         << "on operation" << *this;
    m_ready.insert(target, isSuccessful);
    Q_EMIT targetIsReady(target, isSuccessful);
    return true;
}

void RunnableOperation::setPace(Pace pace)
{
    if (std::exchange(m_pace, pace) != pace)
        Q_EMIT paceChanged();
}

QDebug operator<<(QDebug debug, RunnableOperation::OperationState state)
{
    const QDebugStateSaver saver(debug);
    static constexpr const char* names[] = {"Not-started", "Running", "Stopping", "Failed", "Passed"};
    return debug.nospace() << names[state];
}

} // namespace vantrel
