#include "common/filesystem/server/serverupload.h"

#include "common/filesystem/ftp/filesystemclient.h"
#include "common/filesystem/model/filesize.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/server/serverfilesystem_p.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr qint64 sentAgain = 1 << 20; // bytes; what a server had at last may not have reached its disk
constexpr int attemptsInVain = 3;
constexpr int attemptsUnlike = 2;

QDateTime modifiedTime(const QSharedPointer<QIODevice>& device)
{
    const auto* file = qobject_cast<const QFile*>(device.data());
    return file ? QFileInfo(file->fileName()).lastModified() : QDateTime();
}

} // namespace

ServerUpload::ServerUpload(ServerFileSystemPrivate* server, QSharedPointer<FileTransferOperation> operation)
    : ServerTask(server, operation)
    , m_transfer(operation.data())
    , m_input(operation->input())
    , m_size(m_input->size())
    , m_modified(modifiedTime(m_input))
{
}

ServerUpload::~ServerUpload() = default;

void ServerUpload::start()
{
    const QString to = m_transfer->to().fullPath;
    m_destination = destinationPath(to, m_transfer->from().fullPath,
                                    server().listings().type(to) == FileSystem::Directory);
    m_transfer->setTotalSizeBytes(static_cast<unsigned long long>(m_size));
    // Not only when all of it is there and is to get its name.
    if (m_destination.contains(u'\n') || m_destination.contains(u'\r'))
        return fail(tr("<code>%1</code> has a line break in its name, which cannot be said to a server")
                        .arg(m_destination.toHtmlEscaped()));
    know(getParentPath(m_destination),
         [this] { meet(m_destination, false, [this](const QString& destination) { sendTo(destination); }); });
}

/// Of the source as it is and of its place: what another attempt has left of it can be told from what came of
/// anything else. It is short, since a name may be as long as a server takes.
QString ServerUpload::temporaryName() const
{
    const QString source = QStringLiteral("%1|%2|%3|%4")
                               .arg(m_size)
                               .arg(m_modified.toMSecsSinceEpoch())
                               .arg(m_transfer->from().fullPath, getNameInPath(m_destination));
    const QByteArray mark =
        QCryptographicHash::hash(source.toUtf8(), QCryptographicHash::Sha1).toHex().first(16);
    return QStringLiteral(".halcyra-%1.part").arg(QString::fromLatin1(mark));
}

void ServerUpload::sendTo(const QString& destination)
{
    m_destination = destination;
    m_temporary = createJoinedPath(getParentPath(destination), temporaryName(), false);
    server().keepConnection(m_transfer, connect(server().client(), &FileSystemClient::writeProgressed, this,
                                                &ServerUpload::onProgress));
    m_sinceLog.start();
    const std::optional<ClientFileSystemInfo> left = server().listings().entry(m_temporary);
    if (left && left->type == ClientFileSystemType::File)
        goOnFromWhatIsLeft();
    else
        send(0);
}

/// The listing may be old: a part that has gone since would come again with a hole in front of it.
void ServerUpload::goOnFromWhatIsLeft()
{
    measureFile(m_temporary, [this](qint64 bytes) {
        if (bytes > 0 && bytes <= m_size)
            goOnFrom(bytes);
        else
            send(0);
    });
}

void ServerUpload::send(qint64 offset)
{
    m_isSent = true;
    m_isVerified = false;
    m_transfer->setPace(RunnableOperation::Pace::OnTheLine);
    // The command keeps the device for as long as the client works with it.
    const auto write = [temporary = m_temporary, device = m_input, offset,
                        placing = placing()](FileSystemClient& client) {
        device->seek(offset);
        return offset > 0 ? client.resumeWrite(temporary, device.data(), offset)
                          : client.writeAndPlace(temporary, device.data(), placing);
    };
    askOnce(Kind::Write, write, [this](Outcome outcome) { onWritten(outcome); });
}

FtpPlacing ServerUpload::placing() const
{
    const auto* file = qobject_cast<const QFile*>(m_input.data());
    std::function<bool()> isUnchanged;
    if (file)
        isUnchanged = [path = file->fileName(), size = m_size, modified = m_modified] {
            const QFileInfo info(path);
            return info.size() == size && info.lastModified() == modified;
        };
    return {m_destination, m_size, mayReplace(), std::move(isUnchanged)};
}

void ServerUpload::onProgress(const QString& path, qint64 done, qint64)
{
    if (path != m_temporary)
        return;
    m_transfer->setTransferredBytes(static_cast<unsigned long long>(done));
    const double share = m_size > 0 ? static_cast<double>(done) / static_cast<double>(m_size) : 1.0;
    m_transfer->setProgress(share);
    if (m_sinceLog.elapsed() <= 1000)
        return;
    m_sinceLog.start();
    qCInfo(lcFileSystem) << "Writing file" << m_destination << "progressed to" << done << "bytes of" << m_size
                         << "bytes =" << qRound(share * 100);
}

void ServerUpload::onWritten(Outcome outcome)
{
    if (outcome == Outcome::NotSent) {
        qCWarning(lcFileSystem) << "Failed to request write from" << m_transfer->from().fullPath << "to"
                                << m_transfer->to().fullPath;
        return fail(tr("<code>%1</code> could not be written").arg(m_destination.toHtmlEscaped()));
    }
    qCInfo(lcFileSystem) << "Write operation finished for path" << m_destination
                         << "- Succeded:" << (outcome == Outcome::Done ? "true" : "false");
    noteReason(outcome);
    const FtpOutcome beyond = server().commands().outcome();
    if (!isCompared(beyond))
        return;
    if (beyond.placed == FtpOutcome::Done)
        return succeed();
    if (beyond.placed != FtpOutcome::No)
        return onRenamed(beyond.placed == FtpOutcome::Unknown ? Outcome::LinkLost : outcome);
    measureFile(m_temporary, [this](qint64 bytes) { onMeasured(bytes); });
}

/// False when the server has something else than what was sent, which is dealt with here.
bool ServerUpload::isCompared(const FtpOutcome& beyond)
{
    m_isVerified = beyond.check == FtpOutcome::Same;
    if (beyond.check != FtpOutcome::Different)
        return true;
    if (++m_unlike < attemptsUnlike)
        send(0);
    else
        fail(tr("<code>%1</code> did not arrive as it was sent: its checksum at the server is another one")
                 .arg(m_destination.toHtmlEscaped()));
    return false;
}

/// The bytes of a file as the server counts them; -1 when it is not there.
void ServerUpload::measureFile(const QString& path, std::function<void(qint64)> next)
{
    ask(
        Kind::Size, [path](FileSystemClient& client) { return client.size(path); },
        [this, path, next = std::move(next)](Outcome outcome) {
            if (outcome == Outcome::Done)
                return next(server().commands().size());
            // Not every server tells sizes, but all list.
            readAnew(getParentPath(path), [this, path, next] {
                const std::optional<ClientFileSystemInfo> there = server().listings().entry(path);
                next(there ? there->sizeBytes : -1);
            });
        });
}

void ServerUpload::onMeasured(qint64 bytes)
{
    if (isSourceChanged())
        return fail(
            tr("<code>%1</code> changed while it was sent").arg(m_transfer->from().fullPath.toHtmlEscaped()));
    if (bytes == m_size)
        return place();
    m_vain = bytes > m_reached ? 0 : m_vain + 1;
    m_reached = std::max(m_reached, bytes);
    if (m_vain >= attemptsInVain)
        return fail(writeFault());
    if (bytes > m_size)
        send(0);
    else
        goOnFrom(bytes);
}

/// A server that takes a part and no more has no room for the rest; not all of them say so.
QString ServerUpload::writeFault() const
{
    const QString path = m_destination.toHtmlEscaped();
    if (m_reached <= 0)
        return tr("<code>%1</code> could not be written").arg(path);
    return tr("<code>%1</code> could not be written: the server took %2 of %3, and may have no room for more")
        .arg(path, fileSizeText(m_reached), fileSizeText(m_size));
}

void ServerUpload::goOnFrom(qint64 bytes)
{
    send(std::max<qint64>(0, bytes - sentAgain));
}

bool ServerUpload::isSourceChanged() const
{
    return m_input->size() != m_size || modifiedTime(m_input) != m_modified;
}

/// All of it is there: it gets its name, unless something else has got that meanwhile. Most servers put one
/// file in the place of another without a word, so this one is asked first, however fresh what is here.
void ServerUpload::place()
{
    noteReason(Outcome::Done);
    if (mayReplace())
        return rename();
    // A question for its size alone may also fail since the server is too busy to look.
    readAnew(getParentPath(m_destination), [this] { meetThere(); });
}

void ServerUpload::meetThere()
{
    meet(m_destination, false, [this](const QString& destination) {
        m_destination = destination;
        rename();
    });
}

void ServerUpload::rename()
{
    askOnce(
        Kind::Move, [this](FileSystemClient& client) { return client.move(m_temporary, m_destination); },
        [this](Outcome outcome) { onRenamed(outcome); });
}

void ServerUpload::onRenamed(Outcome outcome)
{
    if (outcome == Outcome::Done)
        return succeed();
    if (outcome == Outcome::LinkLost) // before or after it was done
        return readAnew(getParentPath(m_destination), [this] { findOutWhetherRenamed(); });
    noteReason(outcome);
    readAnew(getParentPath(m_destination), [this] {
        const bool isTaken = server().listings().entry(m_destination).has_value();
        if (!isTaken || hasSteppedAside())
            fail(tr("<code>%1</code> could not be written").arg(m_destination.toHtmlEscaped()));
        else if (mayReplace())
            stepAside(m_destination, m_temporary, [this] { rename(); });
        else
            meetThere();
    });
}

/// The file that was to be replaced may be as long as the new one, so that its length tells nothing.
void ServerUpload::findOutWhetherRenamed()
{
    if (server().listings().entry(m_temporary))
        rename();
    else if (!mayReplace() && server().listings().fileSize(m_destination) == m_size)
        succeed();
    else if (++m_vain < attemptsInVain)
        send(0);
    else
        fail(tr("<code>%1</code> could not be written: the server was lost each time that it was to get its "
                "name")
                 .arg(m_destination.toHtmlEscaped()));
}

void ServerUpload::succeed()
{
    endAside(true);
    if (std::exchange(m_isSent, false)) {
        server().listings().remove(m_temporary);
        server().listings().add(m_destination, ClientFileSystemType::File, m_size);
    }
    m_transfer->setTransferredBytes(static_cast<unsigned long long>(m_size));
    m_transfer->setProgress(1.0);
    m_transfer->setVerified(m_isVerified);
    m_transfer->setReady(m_transfer->to(), true);
}

void ServerUpload::fail(const QString& message)
{
    m_transfer->addErrorText(message + reason());
    onAborted();
    m_transfer->setReady(m_transfer->to(), false);
}

void ServerUpload::skip()
{
    onAborted();
    m_transfer->setInput({});
    m_input->close();
    ServerTask::skip();
}

QStringList ServerUpload::touched() const
{
    return m_isSent ? QStringList(getParentPath(m_destination)) : QStringList();
}

/// What is not going to be whole is taken away, and what has stepped aside for it comes back.
void ServerUpload::onAborted()
{
    ServerTask::onAborted();
    if (std::exchange(m_isSent, false))
        server().removeLeftover(m_temporary);
}

} // namespace vantrel
