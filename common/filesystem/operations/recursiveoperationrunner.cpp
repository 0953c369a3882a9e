#include "common/filesystem/operations/recursiveoperationrunner.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/operations/suboperationcreator.h"
#include "common/filesystem/operations/transferoperation.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int fallbackTick = 50;       // milliseconds; what wakes the runner is the end of the one before
constexpr int progressInterval = 1000; // milliseconds
constexpr qint64 sliceTime = 5;        // milliseconds of making or letting go before the window may breathe
constexpr int discardedAtOnce = 100;
constexpr qsizetype maxSettling = 384; // so many files may be open meanwhile: a process has 1024

qint64 now()
{
    static const QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return clock.elapsed();
}

RunnableOperation* runnable(const OperationPtr& operation)
{
    return qobject_cast<RunnableOperation*>(operation.data());
}

/// A tree's operations are many; the last hold on them is given up some at a time.
void letGo(QList<RecursiveOperationRunner::EntryPtr> entries)
{
    if (entries.size() <= discardedAtOnce || !QCoreApplication::instance())
        return;
    auto* timer = new QTimer(QCoreApplication::instance());
    timer->callOnTimeout(timer, [timer, entries = std::move(entries)]() mutable {
        for (int i = 0; i < discardedAtOnce && !entries.isEmpty(); ++i)
            entries.removeLast();
        if (entries.isEmpty())
            timer->deleteLater();
    });
    timer->start(0);
}

} // namespace

RecursiveOperationRunner::RecursiveOperationRunner(SubOperationCreator* creator, QObject* parent)
    : QObject(parent)
    , m_creator(creator)
{
    m_timer.setInterval(fallbackTick);
    connect(&m_timer, &QTimer::timeout, this, &RecursiveOperationRunner::runNextOperation);
    connect(&m_watch, &TargetWatch::changed, this, &RecursiveOperationRunner::wake);
}

RecursiveOperationRunner::~RecursiveOperationRunner()
{
    letGo(std::move(m_pending));
    letGo(std::move(m_settling));
    letGo(std::move(m_finished));
}

bool RecursiveOperationRunner::isRunning() const
{
    return m_state == Listing || m_state == RunningOperations;
}

QList<QWeakPointer<BaseOperation>> RecursiveOperationRunner::operations() const
{
    QList<QWeakPointer<BaseOperation>> all;
    all.reserve(m_pending.size() + m_settling.size() + m_finished.size() + 2);
    for (const EntryPtr& entry : {m_active, m_next})
        if (entry)
            all.append(entry->operation);
    for (const QList<EntryPtr>& entries : {m_settling, m_pending, m_finished})
        for (const EntryPtr& entry : entries)
            all.append(entry->operation);
    return all;
}

OperationPtr RecursiveOperationRunner::activeOperation() const
{
    return m_active ? m_active->operation : OperationPtr();
}

void RecursiveOperationRunner::start()
{
    qCDebug(lcFileSystem) << "Starting recursive operations";
    if (m_state != Idle) {
        qCDebug(lcFileSystem) << "Recursive operations are already running/finished";
        return;
    }
    m_errors.clear();
    const QSharedPointer<RecursiveDirectoryLister> lister = m_creator->directoryLister();
    m_lister = lister;
    connect(lister.data(), &RecursiveDirectoryLister::hasFinishedChanged, this,
            &RecursiveOperationRunner::handleDirectoryListerHasFinishedChanged);
    lister->start();
    m_state = Listing;
    Q_EMIT stateChanged();
    Q_EMIT isRunningChanged();
}

void RecursiveOperationRunner::handleDirectoryListerHasFinishedChanged()
{
    const QSharedPointer<RecursiveDirectoryLister> lister = m_lister.toStrongRef();
    if (m_state != Listing || !lister || !lister->hasFinished())
        return;
    RecursiveDirectoryLister::DirectoryItem item;
    // What was read in part only would be copied, or removed, in part only.
    if (!lister->isValid() || !lister->getRootListing(item)) {
        qCWarning(lcFileSystem) << "Unable to get listed directory content";
        addListingError(*lister);
        finishRunner(false);
        return;
    }
    const QList<FileSystemPath> paths = m_creator->getPathList(item);
    if (m_state != Listing)
        return; // it has found that it cannot be done
    m_paths = paths;
    m_nextPath = 0;
    qCDebug(lcFileSystem) << "Directory listing finished. Iterating sub-operations for" << m_paths.size()
                          << "path(s)";
    createEntries();
}

void RecursiveOperationRunner::addListingError(const RecursiveDirectoryLister& lister)
{
    const QString text =
        lister.isTooDeep()
            ? tr("The directory <code>%1</code> holds too many levels of directories, or a link "
                 "that leads back into it")
            : tr("The directory <code>%1</code> could not be read");
    m_errors.append({text.arg(lister.directoryPath().toHtmlEscaped()), 2, QDateTime::currentDateTime()});
}

/// Makes the entries, of a large tree some at a time.
void RecursiveOperationRunner::createEntries()
{
    if (m_state != Listing)
        return;
    QElapsedTimer clock;
    clock.start();
    while (m_nextPath < m_paths.size()) {
        const FileSystemPath path = m_paths.at(m_nextPath++);
        const OperationPtr operation = m_creator->createSubOperation(path);
        if (m_state != Listing)
            return; // it has found that it cannot be done
        if (operation) {
            m_pending.append(std::make_shared<RunningEntry>(RunningEntry{path, operation}));
            if (path.type == FileSystemPath::File)
                m_totalBytes += path.sizeBytes;
        }
        if (clock.elapsed() >= sliceTime) {
            QMetaObject::invokeMethod(this, &RecursiveOperationRunner::createEntries, Qt::QueuedConnection);
            return;
        }
    }
    m_paths.clear();
    startOperations();
}

void RecursiveOperationRunner::startOperations()
{
    qCDebug(lcFileSystem) << "About to start recursive operations... Operations:" << m_pending.size();
    m_state = RunningOperations;
    Q_EMIT operationsChanged();
    Q_EMIT stateChanged();
    m_timer.start();
    wake();
}

void RecursiveOperationRunner::wake()
{
    if (std::exchange(m_isWoken, true))
        return;
    QMetaObject::invokeMethod(this, &RecursiveOperationRunner::runNextOperation, Qt::QueuedConnection);
}

void RecursiveOperationRunner::runNextOperation()
{
    m_isWoken = false;
    if (m_state != RunningOperations || !closeSettled())
        return;
    if (!makeRoom()) {
        if (mayPrepareNext())
            startNext(m_next);
        return;
    }
    if (m_pending.isEmpty() && m_settling.isEmpty()) {
        qCDebug(lcFileSystem) << "Sub-operation queue is empty. Finished:" << m_finished.size();
        finishRunner(true);
    } else if (!m_pending.isEmpty() && areTargetsReady(m_pending.constFirst()->operation)) {
        startNext(m_active);
    }
}

/// Takes out of the way what needs nothing more; false when the next one has to wait for the active one, or
/// the runner has ended.
bool RecursiveOperationRunner::makeRoom()
{
    while (m_active) {
        const RunnableOperation* operation = runnable(m_active->operation);
        if (m_active->operation->hasFinished()) {
            if (!closeActive())
                return false;
        } else if (operation && operation->pace() == RunnableOperation::Pace::Settling &&
                   m_settling.size() < maxSettling) {
            m_settling.append(std::exchange(m_active, nullptr));
        } else {
            return false;
        }
        m_active = std::exchange(m_next, nullptr);
    }
    return true;
}

/// Files only: what comes behind a directory may be what lies in it.
bool RecursiveOperationRunner::mayPrepareNext() const
{
    if (m_state != RunningOperations || !m_active || m_next || m_pending.isEmpty())
        return false;
    const RunnableOperation* active = runnable(m_active->operation);
    const EntryPtr& next = m_pending.constFirst();
    if (!active || active->pace() == RunnableOperation::Pace::Alone ||
        next->path.type != FileSystemPath::File || !qobject_cast<TransferOperation*>(next->operation.data()))
        return false;
    return std::ranges::all_of(next->operation->targets(), [](const FileSystemTarget& target) {
        return !target.fileSystem || target.fileSystem->isReady();
    });
}

/// Takes those out of the way that have settled. False when one could not, or nothing more is to begin.
bool RecursiveOperationRunner::closeSettled()
{
    bool isAllWell = true;
    m_settling.removeIf([&](const EntryPtr& entry) {
        if (!entry->operation->hasFinished())
            return false;
        const RunnableOperation* operation = runnable(entry->operation);
        if (operation && operation->state() == RunnableOperation::Failed) {
            m_errors += operation->errors();
            entry->operation->disconnect(this);
            isAllWell = false;
        } else {
            close(entry);
        }
        return true;
    });
    if (isAllWell && !m_isFailing)
        return true;
    finishRunner(false);
    return false;
}

void RecursiveOperationRunner::close(const EntryPtr& entry)
{
    entry->operation->disconnect(this);
    if (entry->path.type == FileSystemPath::File)
        m_doneBytes += entry->path.sizeBytes;
    ++m_doneItems;
    m_finished.append(entry);
}

/// Takes the one that has ended out of the way; false when its failure has ended the runner.
bool RecursiveOperationRunner::closeActive()
{
    const RunnableOperation* operation = runnable(m_active->operation);
    const auto state = operation ? operation->state() : RunnableOperation::Passed;
    qCDebug(lcFileSystem) << "Operation" << *m_active->operation << "is done and ready (" << state
                          << ") to be marked as finished. Pending:" << m_pending.size()
                          << ", finished:" << m_finished.size();
    if (state == RunnableOperation::Failed) {
        qCWarning(lcFileSystem) << "Operation didn't finish succesfully. Aborting rest of the operations...";
        finishRunner(false);
        return false;
    }
    close(std::exchange(m_active, nullptr));
    return true;
}

bool RecursiveOperationRunner::areTargetsReady(const OperationPtr& operation)
{
    const FileSystem* blocking = m_watch.blocking(*operation);
    if (blocking && !m_isWaiting)
        qCDebug(lcFileSystem) << "Pending the next operation in queue (" << *operation << ") since"
                              << blocking->fileSystemName() << "is not ready.";
    m_isWaiting = blocking;
    return !blocking;
}

void RecursiveOperationRunner::startNext(EntryPtr& place)
{
    place = m_pending.takeFirst();
    const OperationPtr operation = place->operation;
    connect(operation.data(), &BaseOperation::progressChanged, this,
            &RecursiveOperationRunner::updateProgress);
    connect(operation.data(), &BaseOperation::operationStopped, this, &RecursiveOperationRunner::wake);
    qCDebug(lcFileSystem) << "Starting next sub-operation:" << *operation << "- Pending:" << m_pending.size();
    if (RunnableOperation* next = runnable(operation)) {
        connect(next, &RunnableOperation::paceChanged, this, &RecursiveOperationRunner::wake);
        next->run();
    }
    updateProgress();
}

void RecursiveOperationRunner::stop()
{
    qCDebug(lcFileSystem) << "Stopping recursive operations...";
    if (m_state == Failed || m_state == Finished)
        qCDebug(lcFileSystem) << "Recursive operations are already stopped";
    else
        finishRunner(false);
}

void RecursiveOperationRunner::finishRunner(bool succeeded)
{
    qCDebug(lcFileSystem) << "Finishing operation runner - result:" << (succeeded ? "succeeded" : "failed");
    if (const QSharedPointer<RecursiveDirectoryLister> lister = m_lister.toStrongRef()) {
        lister->disconnect(this);
        if (lister->isRunning())
            lister->stop();
    }
    if (const EntryPtr next = std::exchange(m_next, nullptr)) {
        next->operation->disconnect(this); // it has hardly begun
        if (RunnableOperation* operation = runnable(next->operation))
            operation->abort();
    }
    // What is whole and only needs its name gets it: the retry would find it in its way.
    if (const RunnableOperation* active = m_active ? runnable(m_active->operation) : nullptr;
        active && active->isRunning() && active->pace() == RunnableOperation::Pace::Settling)
        m_settling.append(std::exchange(m_active, nullptr));
    if (m_active) {
        const OperationPtr operation = m_active->operation;
        RunnableOperation* active = runnable(operation);
        if (active && active->isRunning()) {
            qCDebug(lcFileSystem) << "Operation" << *active << "was still running. Aborting it...";
            active->abort(); // its end brings this back
            return;
        }
        if (active && !succeeded)
            m_errors += active->errors();
        operation->disconnect(this);
        m_active.reset();
    }
    m_isFailing = !succeeded;
    if (m_settling.isEmpty())
        endWith(succeeded);
}

void RecursiveOperationRunner::endWith(bool succeeded)
{
    m_timer.stop();
    m_paths.clear();
    letGo(std::exchange(m_pending, {}));
    Q_EMIT operationsChanged();
    letGo(std::exchange(m_finished, {}));
    Q_EMIT operationsChanged();
    m_progress = 1.0;
    Q_EMIT progressChanged();
    m_state = succeeded ? Finished : Failed;
    Q_EMIT stateChanged();
    Q_EMIT isRunningChanged();
    qCDebug(lcFileSystem) << "Recursive operations are now stopped - Succeeded:"
                          << (succeeded ? "true" : "false");
}

/// At most once a second.
void RecursiveOperationRunner::updateProgress()
{
    if (m_progressTime >= 0 && now() - m_progressTime < progressInterval)
        return;
    m_progressTime = now();
    double done = static_cast<double>(m_doneBytes);
    if (m_active && m_active->path.type == FileSystemPath::File)
        done += static_cast<double>(m_active->path.sizeBytes) * m_active->operation->progress();
    for (const EntryPtr& entry : std::as_const(m_settling))
        done += static_cast<double>(entry->path.sizeBytes);
    const qsizetype items =
        m_pending.size() + m_settling.size() + m_finished.size() + (m_active ? 1 : 0) + (m_next ? 1 : 0);
    if (m_totalBytes > 0)
        m_progress = done / static_cast<double>(m_totalBytes);
    else // empty files and directories: by number
        m_progress = items > 0 ? static_cast<double>(m_doneItems) / static_cast<double>(items) : 0.0;
    Q_EMIT progressChanged();
    qCDebug(lcFileSystem) << "Progress:" << qRound(m_progress * 100) << done << m_totalBytes;
}

QDebug operator<<(QDebug debug, const RecursiveOperationRunner& runner)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "<Runner - state:" << runner.state() << ", progress:" << runner.progress();
    return debug;
}

} // namespace vantrel
