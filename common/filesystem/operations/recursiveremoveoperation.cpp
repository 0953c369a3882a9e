#include "common/filesystem/operations/recursiveremoveoperation.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/operationvisitor.h"
#include "common/filesystem/operations/abstractoperationfactory.h"
#include "common/filesystem/operations/directorypaths.h"

#include <QTimer>

namespace vantrel {

namespace {
constexpr qint64 contentOnly = 1; // what is below becomes a removal of its own
} // namespace

RecursiveRemoveOperation::RecursiveRemoveOperation(AbstractOperationFactory* factory, FileSystemTarget target,
                                                   QObject* parent)
    : ModifyOperation(std::move(target), Remove, Directory, parent)
    , m_factory(factory)
    , m_lister(new RecursiveDirectoryLister(this->target().fileSystem, this->target().fullPath, contentOnly,
                                            nullptr))
    , m_runner(std::make_unique<RecursiveOperationRunner>(this))
{
    connect(m_lister.data(), &RecursiveDirectoryLister::hasFinishedChanged, this,
            &RecursiveRemoveOperation::handleDirectoryListingHasFinishedChanged);
    connect(m_runner.get(), &RecursiveOperationRunner::stateChanged, this,
            &RecursiveRemoveOperation::handleOperationRunnerStateChanged);
    connect(m_runner.get(), &RecursiveOperationRunner::progressChanged, this,
            &RecursiveRemoveOperation::updateProgress);
    connect(this, &BaseOperation::operationStopped, m_lister.data(), &RecursiveDirectoryLister::forget);
}

RecursiveRemoveOperation::~RecursiveRemoveOperation() = default;

void RecursiveRemoveOperation::print(QDebug& debug) const
{
    ModifyOperation::print(debug);
}

QList<OperationError> RecursiveRemoveOperation::errors() const
{
    return ModifyOperation::errors() + m_runner->errors();
}

bool RecursiveRemoveOperation::accept(OperationVisitor* visitor)
{
    const auto self = sharedFromThis().staticCast<RecursiveRemoveOperation>();
    return self && visitor->visit(self);
}

bool RecursiveRemoveOperation::setRunning(bool running)
{
    if (!ModifyOperation::setRunning(running))
        return false;
    qCDebug(lcFileSystem) << "Requesting sub-operations to" << (running ? "start" : "stop") << *this;
    if (running) {
        updateProgress();
        // Whoever hears that it has started is to be done first.
        QTimer::singleShot(0, this, [this] {
            if (isRunning())
                m_runner->start();
        });
    } else if (m_runner->isRunning()) {
        m_runner->stop();
    }
    return true;
}

void RecursiveRemoveOperation::updateProgress()
{
    setProgress(m_runner->progress());
}

void RecursiveRemoveOperation::handleDirectoryListingHasFinishedChanged()
{
    qCDebug(lcFileSystem) << "Directory listing for" << m_lister->directoryPath()
                          << "has finished:" << m_lister->hasFinished();
    if (m_lister->hasFinished())
        Q_EMIT directoryListingFinished();
}

void RecursiveRemoveOperation::handleOperationRunnerStateChanged()
{
    const auto state = m_runner->state();
    qCDebug(lcFileSystem) << "Operation runner state changed to" << state << "in operation" << *this;
    if (state == RecursiveOperationRunner::Failed || state == RecursiveOperationRunner::Finished)
        Q_EMIT contentIsRemoved(state == RecursiveOperationRunner::Finished);
}

QSharedPointer<RecursiveDirectoryLister> RecursiveRemoveOperation::directoryLister() const
{
    return m_lister;
}

QList<FileSystemPath> RecursiveRemoveOperation::getPathList(RecursiveDirectoryLister::DirectoryItem& item)
{
    QList<FileSystemPath> paths;
    parseContentPaths(paths, target().fullPath, item);
    return paths;
}

OperationPtr RecursiveRemoveOperation::createSubOperation(FileSystemPath const& path)
{
    qCDebug(lcFileSystem) << "Creating a new remove operation for"
                          << (path.type == FileSystemPath::File ? "file" : "directory") << path.path;
    return m_factory->createRemoveOperation({target().fileSystem, path.path});
}

} // namespace vantrel
