#include "common/filesystem/server/serverupload.h"

#include "common/filesystem/ftp/filesystemclient.h"
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
    m_destination = server().listings().type(to) == FileSystem::Directory
                        ? createJoinedPath(to, getNameInPath(m_transfer->from().fullPath), false)
                        : to;
    m_transfer->setTotalSizeBytes(static_cast<unsigned long long>(m_size));
    know(getParentPath(m_destination), [this] {
        if (isThereAlready())
            return succeed();
        meet(m_destination, false, [this](const QString& destination) { sendTo(destination); });
    });
}

/// What an earlier attempt at the same has brought over is not sent again.
bool ServerUpload::isThereAlready() const
{
    return m_transfer->isRetry() && server().listings().fileSize(m_destination) == m_size;
}

/// Of the source as it is: what another attempt has left of it can be told from what came of anything else.
QString ServerUpload::temporaryName() const
{
    const QString source = QStringLiteral("%1|%2|%3")
                               .arg(m_transfer->from().fullPath)
                               .arg(m_size)
                               .arg(m_modified.toMSecsSinceEpoch());
    const QByteArray mark =
        QCryptographicHash::hash(source.toUtf8(), QCryptographicHash::Sha1).toHex().first(8);
    return QStringLiteral(".%1.%2.part").arg(getNameInPath(m_destination), QString::fromLatin1(mark));
}

void ServerUpload::sendTo(const QString& destination)
{
    m_destination = destination;
    m_temporary = createJoinedPath(getParentPath(destination), temporaryName(), false);
    server().keepConnection(m_transfer, connect(server().client(), &FileSystemClient::writeProgressed, this,
                                                &ServerUpload::onProgress));
    m_sinceLog.start();
    const std::optional<ClientFileSystemInfo> left = server().listings().entry(m_temporary);
    if (left && left->type == ClientFileSystemType::File && left->sizeBytes <= m_size)
        goOnFrom(left->sizeBytes);
    else
        send(0);
}

void ServerUpload::send(qint64 offset)
{
    m_isSent = true;
    const auto write = [this, offset](FileSystemClient& client) {
        m_input->seek(offset);
        return offset > 0 ? client.resumeWrite(m_temporary, m_input.data(), offset)
                          : client.write(m_temporary, m_input.data(), 0);
    };
    askOnce(Kind::Write, write, [this](Outcome outcome) { onWritten(outcome); });
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
    measure();
}

/// What has arrived, as the server counts it.
void ServerUpload::measure()
{
    ask(
        Kind::Size, [this](FileSystemClient& client) { return client.size(m_temporary); },
        [this](Outcome outcome) {
            if (outcome == Outcome::Done)
                return onMeasured(server().commands().size());
            // Not every server tells sizes, but all list.
            readAnew(getParentPath(m_destination), [this] {
                const std::optional<ClientFileSystemInfo> there = server().listings().entry(m_temporary);
                onMeasured(there ? there->sizeBytes : -1);
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
        return fail(tr("<code>%1</code> could not be written").arg(m_destination.toHtmlEscaped()));
    if (bytes > m_size)
        send(0);
    else
        goOnFrom(bytes);
}

void ServerUpload::goOnFrom(qint64 bytes)
{
    send(std::max<qint64>(0, bytes - sentAgain));
}

bool ServerUpload::isSourceChanged() const
{
    return m_input->size() != m_size || modifiedTime(m_input) != m_modified;
}

/// All of it is there: it gets its name, unless something else has got that meanwhile.
void ServerUpload::place()
{
    know(getParentPath(m_destination), [this] {
        meet(m_destination, false, [this](const QString& destination) {
            m_destination = destination;
            rename();
        });
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
        return readAnew(getParentPath(m_destination), [this] {
            if (server().listings().entry(m_temporary))
                rename();
            else if (server().listings().fileSize(m_destination) == m_size)
                succeed();
            else
                send(0);
        });
    if (mayReplace() && server().listings().entry(m_destination))
        return makeRoom();
    fail(tr("<code>%1</code> could not be written").arg(m_destination.toHtmlEscaped()));
}

/// The server puts nothing in the place of another file by itself.
void ServerUpload::makeRoom()
{
    ask(
        Kind::Remove, [this](FileSystemClient& client) { return client.remove(m_destination); },
        [this](Outcome outcome) {
            if (outcome != Outcome::Done)
                return fail(tr("<code>%1</code> could not be replaced").arg(m_destination.toHtmlEscaped()));
            server().listings().remove(m_destination);
            rename();
        });
}

void ServerUpload::succeed()
{
    if (std::exchange(m_isSent, false)) {
        server().listings().remove(m_temporary);
        server().listings().add(m_destination, ClientFileSystemType::File, m_size);
    }
    m_transfer->setTransferredBytes(static_cast<unsigned long long>(m_size));
    m_transfer->setProgress(1.0);
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

/// What is not going to be whole is taken away.
void ServerUpload::onAborted()
{
    if (std::exchange(m_isSent, false))
        server().removeLeftover(m_temporary);
}

} // namespace vantrel
