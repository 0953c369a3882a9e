#include "common/filesystem/server/serverdownload.h"

#include "common/filesystem/ftp/filesystemclient.h"
#include "common/filesystem/ftp/ftpplacing.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/server/serverfilesystem_p.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {
constexpr int attemptsInVain = 3;
constexpr int attemptsUnlike = 2;
constexpr qint64 worthGoingOn = 4 << 20; // bytes
} // namespace

ServerDownload::ServerDownload(ServerFileSystemPrivate* server,
                               QSharedPointer<FileTransferOperation> operation)
    : ServerTask(server, operation)
    , m_transfer(operation.data())
    , m_output(operation->output())
    , m_source(operation->from().fullPath)
{
}

ServerDownload::~ServerDownload() = default;

void ServerDownload::start()
{
    m_progress =
        connect(server().client(), &FileSystemClient::readProgressed, this, &ServerDownload::onProgress);
    server().keepConnection(m_transfer, m_progress);
    m_sinceLog.start();
    const std::optional<ClientFileSystemInfo> listed = server().listings().entry(m_source);
    // Of a link the listing tells the length of the link.
    if (listed && listed->type == ClientFileSystemType::File && !listed->isSymLink)
        m_size = listed->sizeBytes;
    m_transfer->setTotalSizeBytes(static_cast<unsigned long long>(std::max<qint64>(0, m_size)));
    if (operation()->isRunning()) // the other side may have found that there is no room for it
        begin();
}

/// A file that is replaced by one of its size while it is read would come as something of both.
void ServerDownload::begin()
{
    m_modified.clear();
    if (m_size < worthGoingOn)
        return read(0);
    askWhenModified([this](const QString& time) {
        m_modified = time;
        read(0);
    });
}

/// Empty when the server does not tell.
void ServerDownload::askWhenModified(std::function<void(const QString&)> next)
{
    ask(
        Kind::Modified, [this](FileSystemClient& client) { return client.modified(m_source); },
        [this, next = std::move(next)](Outcome outcome) {
            next(outcome == Outcome::Done ? server().commands().modified() : QString());
        });
}

/// A small one is begun anew: that takes no longer than to ask.
void ServerDownload::goOn()
{
    if (m_size < worthGoingOn)
        return read(0);
    askWhenModified([this](const QString& time) {
        const bool isSame = std::exchange(m_modified, time) == time;
        read(isSame ? m_done : 0);
    });
}

void ServerDownload::confirm()
{
    if (m_modified.isEmpty())
        return succeed();
    askWhenModified([this](const QString& time) {
        if (time.isEmpty() || time == m_modified)
            return succeed();
        if (++m_vain >= attemptsInVain)
            return fail(tr("<code>%1</code> changes while it is read").arg(m_source.toHtmlEscaped()));
        m_reached = m_done;
        begin();
    });
}

void ServerDownload::succeed()
{
    disconnect(m_progress); // another may be read while this one settles
    m_transfer->setProgress(1.0);
    m_transfer->setReady(m_transfer->from(), true);
}

void ServerDownload::read(qint64 offset)
{
    m_done = offset;
    m_transfer->setPace(RunnableOperation::Pace::OnTheLine);
    const bool isAnew = offset == 0 && m_reached >= 0;
    // The command keeps the device for as long as the client works with it.
    const auto get = [source = m_source, device = m_output, offset, isAnew](FileSystemClient& client) {
        if (isAnew) {
            device->seek(0);
            if (auto* file = qobject_cast<QFile*>(device.data()))
                file->resize(0);
        }
        return offset > 0 ? client.resumeRead(source, device.data(), offset)
                          : client.read(source, device.data(), 0);
    };
    askOnce(Kind::Read, get, [this](Outcome outcome) { onRead(outcome); });
}

void ServerDownload::onProgress(const QString& path, qint64 done, qint64 total)
{
    if (path != m_source)
        return;
    m_done = done;
    if (total > 0 && total != m_size) {
        m_size = total;
        m_transfer->setTotalSizeBytes(static_cast<unsigned long long>(total));
    }
    m_transfer->setTransferredBytes(static_cast<unsigned long long>(done));
    const double share = m_size > 0 ? static_cast<double>(done) / static_cast<double>(m_size) : 0.0;
    m_transfer->setProgress(std::min(share, 1.0));
    if (m_sinceLog.elapsed() <= 1000)
        return;
    m_sinceLog.start();
    qCInfo(lcFileSystem) << "Reading file" << m_source << "progressed to" << done << "bytes of" << m_size
                         << "bytes =" << qRound(share * 100);
}

void ServerDownload::onRead(Outcome outcome)
{
    if (outcome == Outcome::NotSent) {
        qCWarning(lcFileSystem) << "Failed to request read from" << m_source << "to"
                                << m_transfer->to().fullPath;
        return fail(tr("<code>%1</code> could not be read").arg(m_source.toHtmlEscaped()));
    }
    qCInfo(lcFileSystem) << "Read operation finished for path" << m_source
                         << "- Succeded:" << (outcome == Outcome::Done ? "true" : "false");
    noteReason(outcome);
    if (outcome != Outcome::Done || (m_size >= 0 && m_done != m_size))
        return measure();
    const FtpOutcome::Check check = server().commands().outcome().check;
    if (check == FtpOutcome::Different)
        return startAnew();
    m_transfer->setVerified(check == FtpOutcome::Same);
    if (check == FtpOutcome::Same)
        succeed();
    else
        confirm();
}

/// All of it came, but not as the server has it.
void ServerDownload::startAnew()
{
    if (++m_unlike >= attemptsUnlike)
        return fail(tr("<code>%1</code> did not come as it is: its checksum at the server is another one")
                        .arg(m_source.toHtmlEscaped()));
    m_reached = std::max(m_reached, m_done);
    read(0);
}

/// What there is to read by now, after a break.
void ServerDownload::measure()
{
    ask(
        Kind::Size, [this](FileSystemClient& client) { return client.size(m_source); },
        [this](Outcome outcome) { onMeasured(outcome == Outcome::Done ? server().commands().size() : -1); });
}

void ServerDownload::onMeasured(qint64 bytes)
{
    m_vain = m_done > m_reached ? 0 : m_vain + 1;
    m_reached = std::max(m_reached, m_done);
    if (m_vain >= attemptsInVain || (bytes < 0 && m_done == 0))
        return fail(tr("<code>%1</code> could not be read").arg(m_source.toHtmlEscaped()));
    const bool isSame = bytes >= 0 && bytes == m_size && m_done < m_size;
    m_size = bytes;
    if (isSame)
        goOn();
    else
        begin();
}

void ServerDownload::fail(const QString& message)
{
    m_transfer->addErrorText(message + reason());
    m_transfer->setReady(m_transfer->from(), false);
}

QStringList ServerDownload::touched() const
{
    const bool isMove = m_transfer->transferType() == TransferOperation::Move;
    return isMove ? QStringList(getParentPath(m_source)) : QStringList();
}

void ServerDownload::removeSource()
{
    const auto remove = [this](FileSystemClient& client) { return client.remove(m_source); };
    askOnce(Kind::Remove, remove, [this](Outcome outcome) {
        noteReason(outcome);
        if (outcome == Outcome::NotSent)
            qCWarning(lcFileSystem) << "File removal request failed during move operation. Path:" << m_source;
        if (outcome != Outcome::LinkLost)
            return onSourceRemoved(outcome == Outcome::Done);
        readAnew(getParentPath(m_source), [this] { onSourceRemoved(!server().listings().entry(m_source)); });
    });
}

void ServerDownload::onSourceRemoved(bool isRemoved)
{
    qCInfo(lcFileSystem) << "Remove operation finished for path" << m_source
                         << "- Succeded:" << (isRemoved ? "true" : "false");
    if (isRemoved)
        server().listings().remove(m_source);
    else
        m_transfer->addErrorText(
            tr("<code>%1</code> was copied but could not be removed").arg(m_source.toHtmlEscaped()) +
            reason());
    server().finishOperation(operationPointer(), isRemoved,
                             {ServerFileSystemPrivate::directoryEntry(getParentPath(m_source))});
}

} // namespace vantrel
