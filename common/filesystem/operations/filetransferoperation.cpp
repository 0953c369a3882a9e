#include "common/filesystem/operations/filetransferoperation.h"

#include "common/filesystem/model/filesize.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/operationvisitor.h"
#include "common/filesystem/model/pathhelpers.h"

#include <QThread>

#include <cmath>

namespace vantrel {

namespace {

// Whoever works with the device may be in the midst of it on another thread: it is closed there, once that is
// free.
void closeWhereItLives(const QSharedPointer<QIODevice>& device)
{
    if (device->thread() == QThread::currentThread() || !device->thread() || !device->thread()->isRunning())
        device->close();
    else
        QMetaObject::invokeMethod(
            device.data(), [device] { device->close(); }, Qt::QueuedConnection);
}

} // namespace

void FileTransferOperation::print(QDebug& debug) const
{
    debug << metaObject()->className() << ", type:" << transferType() << ", from:";
    printTarget(debug, from());
    debug << ", to:";
    printTarget(debug, to());
    debug << ", state:" << state() << ", errors:" << errors().size();
}

void FileTransferOperation::run()
{
    const FileSystem* system = to().fileSystem;
    if (state() != NotStarted || conflict() || !system || system == from().fileSystem ||
        !system->wantsFreeNames())
        TransferOperation::run();
    else
        whenReached([this] { lookAtTarget(); });
}

void FileTransferOperation::lookAtTarget()
{
    FileSystem* system = to().fileSystem;
    setTo({system, destinationPath(to().fullPath, from().fullPath,
                                   system->getType(to().fullPath) == FileSystem::Directory)});
    if (system->getType(to().fullPath) == FileSystem::Unknown)
        start();
    else
        meetConflict(conflictPolicy());
}

void FileTransferOperation::meetConflict(ConflictPolicy policy)
{
    switch (policy) {
    case ConflictPolicy::Ask:
        connect(this, &TransferOperation::conflictAnswered, this, &FileTransferOperation::meetConflict,
                static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::UniqueConnection));
        askConflict({to().fullPath, to().fileSystem->getType(to().fullPath) == FileSystem::Directory});
        return;
    case ConflictPolicy::KeepBoth:
        setTo(freeTarget());
        break;
    case ConflictPolicy::Replace:
        m_replacesTarget = true;
        break;
    case ConflictPolicy::Skip:
        qCInfo(lcFileSystem) << "Operation" << *this << "leaves out what is there already";
        setSkippedCount(1);
        setState(Passed);
        return;
    case ConflictPolicy::Refuse:
        addErrorText(tr("<b>%1</b> is there already.").arg(getNameInPath(to().fullPath).toHtmlEscaped()));
        abort();
        return;
    }
    TransferOperation::run();
}

FileSystemTarget FileTransferOperation::freeTarget() const
{
    FileSystem* system = to().fileSystem;
    for (int number = 2;; ++number) {
        const QString path = numberedPath(to().fullPath, number);
        if (system->getType(path) == FileSystem::Unknown)
            return {system, path};
    }
}

void FileTransferOperation::abort()
{
    if (!canAbort())
        return;
    const QString size = fileSizeText(static_cast<qint64>(totalSizeBytes()));
    addErrorText(
        tr("<b>File transfer aborted</b> at %1% of %2").arg(std::lround(progress() * 100)).arg(size));
    TransferOperation::abort();
    if (m_input) {
        qCInfo(lcFileSystem) << "Closing input stream from operation" << *this;
        closeWhereItLives(m_input);
        setInput({});
    }
    if (m_output) {
        qCInfo(lcFileSystem) << "Closing output stream from operation" << *this;
        closeWhereItLives(m_output);
        setOutput({});
    }
}

bool FileTransferOperation::accept(OperationVisitor* visitor)
{
    const auto self = sharedFromThis().staticCast<FileTransferOperation>();
    return self && visitor->visit(self);
}

QSharedPointer<QIODevice> FileTransferOperation::input() const
{
    return m_input;
}

QSharedPointer<QIODevice> FileTransferOperation::output() const
{
    return m_output;
}

void FileTransferOperation::setInput(QSharedPointer<QIODevice> input)
{
    if (m_input == input)
        return;
    m_input = std::move(input);
    Q_EMIT inputChanged();
}

void FileTransferOperation::setOutput(QSharedPointer<QIODevice> output)
{
    if (m_output == output)
        return;
    m_output = std::move(output);
    Q_EMIT outputChanged();
}

} // namespace vantrel
