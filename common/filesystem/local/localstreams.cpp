#include "common/filesystem/local/localstreams.h"

#include "common/filesystem/local/hiddenitems.h"
#include "common/filesystem/local/systemfile.h"
#include "common/filesystem/model/filesize.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/filetransferoperation.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>

namespace vantrel {

using namespace systemfile;

namespace {

using OperationRef = QWeakPointer<FileTransferOperation>;

QString bold(const QString& path)
{
    return QStringLiteral("<b>%1</b>").arg(getNameInPath(path).toHtmlEscaped());
}

} // namespace

LocalStreams::LocalStreams(FileSystem* fileSystem, StartJob startJob, QObject* parent)
    : QObject(parent)
    , m_fileSystem(fileSystem)
    , m_startJob(std::move(startJob))
    , m_settling(m_startJob, nullptr)
{
}

LocalStreams::~LocalStreams()
{
    // Those that the program ends in the midst of close when the last hold on them goes, with nobody to tell.
    for (const QSharedPointer<QFile>& file : std::as_const(m_openFiles))
        file->disconnect(this);
}

QSharedPointer<QFile> LocalStreams::openFile(const QString& path)
{
    const auto file = QSharedPointer<QFile>::create(path);
    if (!file->open(QIODeviceBase::ReadOnly)) {
        qCWarning(lcFileSystem) << "Failed to open a local file" << path << "with mode" << file->openMode();
        return {};
    }
    remember(file);
    return file;
}

void LocalStreams::remember(const QSharedPointer<QFile>& file)
{
    m_openFiles.insert(file->fileName(), file);
    connect(file.data(), &QIODevice::aboutToClose, this, [this, raw = file.data()] { forget(raw); });
    qCInfo(lcFileSystem) << "Opened a local file" << file->fileName() << "with mode" << file->openMode();
}

void LocalStreams::forget(const QFile* file)
{
    const auto found = std::find_if(m_openFiles.begin(), m_openFiles.end(),
                                    [&](const auto& open) { return open.data() == file; });
    if (found == m_openFiles.end())
        return;
    const QString path = found.key();
    m_openFiles.erase(found);
    qCInfo(lcFileSystem) << "Removed opened file" << path << "from file list ( count:" << m_openFiles.size()
                         << ")";
}

bool LocalStreams::isReceivingInto(const QString& directory) const
{
    const auto end = m_receiving.constKeyValueEnd();
    return std::any_of(m_receiving.constKeyValueBegin(), end, [&](const auto& file) {
        return file.second && isSamePath(getParentPath(file.first), directory);
    });
}

bool LocalStreams::initializeOutgoingTransfer(const QSharedPointer<FileTransferOperation>& operation)
{
    const QString path = operation->from().fullPath;
    const QSharedPointer<QFile> file = openFile(path);
    if (!file) {
        operation->addErrorText(tr("%1 could not be opened.").arg(bold(path)));
        return false;
    }
    operation->setInput(file);
    const QFileInfo info(path);
    connect(operation.data(), &RunnableOperation::targetIsReady, this,
            [this, file, ref = OperationRef(operation), modified = info.lastModified(),
             size = info.size()](const FileSystemTarget& target, bool isSuccessful) {
                const auto transfer = ref.toStrongRef();
                if (!transfer || target != transfer->to())
                    return;
                transfer->setInput({});
                transfer->setOutput({});
                file->close();
                if (isSuccessful && transfer->transferType() == TransferOperation::Move)
                    removeMoved(transfer, modified, size);
                else
                    transfer->setReady(transfer->from(), true);
            });
    return true;
}

// The source of a move goes once the other side has it, unless it is another file by now.
void LocalStreams::removeMoved(const QSharedPointer<FileTransferOperation>& operation,
                               const QDateTime& modified, qint64 size)
{
    const QString path = operation->from().fullPath;
    const auto work = [path, modified, size](JobControl&) {
        const QFileInfo info(path);
        if (info.lastModified() != modified || info.size() != size)
            return JobResult{JobResult::Failed,
                             {},
                             {tr("%1 changed while it was moved, and was not removed.").arg(bold(path))}};
        QFile file(path);
        if (file.remove())
            return JobResult{JobResult::Done, path, {}};
        return JobResult{JobResult::Failed,
                         {},
                         {tr("%1 was copied, but could not be removed from where it was: %2.")
                              .arg(bold(path), file.errorString().toHtmlEscaped())}};
    };
    m_startJob(work, [this, path, ref = OperationRef(operation)](const JobResult& result) {
        const bool isRemoved = result.outcome == JobResult::Done;
        if (isRemoved)
            Q_EMIT removed(path);
        if (const auto transfer = ref.toStrongRef(); transfer && !transfer->hasFinished()) {
            for (const QString& error : result.errors)
                transfer->addErrorText(error);
            transfer->setReady(transfer->from(), isRemoved);
        }
    });
}

bool LocalStreams::initializeIncomingTransfer(const QSharedPointer<FileTransferOperation>& operation)
{
    const QString to = operation->to().fullPath;
    const QString path = destinationPath(to, operation->from().fullPath, QFileInfo(to).isDir());
    const bool isReplacing = operation->replacesTarget();
    const auto there = linkStat(bytesOf(path));
    if (there && (!isReplacing || isDirectory(itemStat(bytesOf(path))))) {
        operation->addErrorText(tr("%1 is there already.").arg(bold(path)));
        return false;
    }
    const QString hidden = textOf(hiddenPathBeside(bytesOf(path)));
    if (!QFileInfo(getParentPath(path)).isWritable()) {
        operation->addErrorText(tr("%1 could not be written.").arg(bold(path)));
        return false;
    }
    const auto file = QSharedPointer<IncomingFile>::create(hidden);
    remember(file);
    operation->setOutput(file);
    m_receiving.insert(hidden, false);
    m_progressMarks.insert(path, 0);
    watchIncoming(operation, {path, hidden, file, isReplacing, std::make_shared<bool>(false)});
    return true;
}

void LocalStreams::watchIncoming(const QSharedPointer<FileTransferOperation>& operation,
                                 const Incoming& incoming)
{
    const OperationRef ref(operation);
    FileTransferOperation* sender = operation.data();
    connect(sender, &RunnableOperation::targetIsReady, this,
            [this, ref, incoming](const FileSystemTarget& target, bool isSuccessful) {
                const auto transfer = ref.toStrongRef();
                if (!transfer || target != transfer->from())
                    return;
                transfer->setInput({});
                transfer->setOutput({});
                if (isSuccessful)
                    return takeIncoming(transfer, incoming);
                m_startJob(
                    [file = incoming.file](JobControl&) {
                        file->close();
                        return JobResult{JobResult::Done, {}, {}};
                    },
                    [](const JobResult&) {});
                transfer->setReady(transfer->to(), true);
            });
    connect(sender, &TransferOperation::totalSizeBytesChanged, this, [this, ref, incoming] {
        if (const auto transfer = ref.toStrongRef())
            checkRoom(transfer, incoming);
    });
    connect(sender, &TransferOperation::transferredBytesChanged, this, [this, incoming](size_t bytes) {
        if (bytes > 0 && m_receiving.contains(incoming.hidden))
            m_receiving[incoming.hidden] = true;
    });
    connect(sender, &BaseOperation::progressChanged, this, [this, sender, incoming](double, double to) {
        double& mark = m_progressMarks[incoming.path];
        if (to <= mark + 0.1)
            return;
        mark = to;
        Q_EMIT progressed(incoming.path, static_cast<qint64>(sender->transferredBytes()));
    });
    connect(sender, &BaseOperation::operationStopped, this, [this, incoming] {
        m_receiving.remove(incoming.hidden);
        m_progressMarks.remove(incoming.path);
        if (*incoming.isPlaced)
            return;
        // What did not become whole goes.
        incoming.file->drop();
        m_startJob(
            [hidden = bytesOf(incoming.hidden)](JobControl&) {
                ::unlink(hidden.c_str());
                return JobResult{JobResult::Done, {}, {}};
            },
            [](const JobResult&) {});
    });
}

void LocalStreams::checkRoom(const QSharedPointer<FileTransferOperation>& operation, const Incoming& incoming)
{
    if (operation->hasFinished() || operation->transferredBytes() > 0)
        return;
    struct statvfs disk
    {
    };
    if (::statvfs(parentOf(bytesOf(incoming.path)).c_str(), &disk) != 0)
        return;
    const unsigned long long free = static_cast<unsigned long long>(disk.f_bavail) * disk.f_frsize;
    if (operation->totalSizeBytes() <= free)
        return;
    const auto sizeText = [](unsigned long long bytes) { return fileSizeText(static_cast<qint64>(bytes)); };
    operation->addErrorText(
        tr("There is no room for %1: it takes %2, and %3 are free.")
            .arg(bold(incoming.path), sizeText(operation->totalSizeBytes()), sizeText(free)));
    operation->abort();
}

void LocalStreams::takeIncoming(const QSharedPointer<FileTransferOperation>& operation,
                                const Incoming& incoming)
{
    const auto onSettled = [this, incoming, ref = OperationRef(operation)](int error) {
        *incoming.isPlaced = error == 0;
        if (error == 0)
            Q_EMIT received(incoming.path);
        const auto transfer = ref.toStrongRef();
        if (!transfer || transfer->hasFinished())
            return;
        if (error)
            transfer->addErrorText(
                tr("%1 could not be written: %2.").arg(bold(incoming.path), reasonText(error)));
        transfer->setReady(transfer->to(), error == 0);
    };
    m_settling.add({bytesOf(incoming.hidden), bytesOf(incoming.path), incoming.isReplacing, incoming.file},
                   onSettled);
    // Of a move the source is still to go.
    if (operation->transferType() == TransferOperation::Copy)
        operation->setPace(RunnableOperation::Pace::Settling);
}

} // namespace vantrel
