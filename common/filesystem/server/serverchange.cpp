#include "common/filesystem/server/serverchange.h"

#include "common/filesystem/ftp/filesystemclient.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/modifyoperation.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/filesystem/server/serverfilesystem_p.h"

namespace vantrel {

namespace {

const char* textOf(bool value)
{
    return value ? "true" : "false";
}

} // namespace

ServerChange::ServerChange(ServerFileSystemPrivate* server, QSharedPointer<ModifyOperation> operation)
    : ServerTask(server, operation)
    , m_change(operation.data())
    , m_isDirectory(operation->modifiedTargetType() == ModifyOperation::Directory)
{
    const QString path = withoutTrailingSlash(m_change->target().fullPath);
    m_path = m_isDirectory && !path.endsWith(u'/') ? path + u'/' : path;
}

void ServerChange::start()
{
    switch (m_change->modifyType()) {
    case ModifyOperation::Create:
        return know(getParentPath(m_path), [this] { create(); });
    case ModifyOperation::Rename:
        return readAnew(getParentPath(m_path), [this] { rename(); }); // most servers replace without a word
    case ModifyOperation::Remove:
        return remove();
    }
}

QStringList ServerChange::touched() const
{
    return {getParentPath(m_path)};
}

bool ServerChange::isThere(const QString& path, bool asDirectory) const
{
    const std::optional<ClientFileSystemInfo> entry = server().listings().entry(path);
    return entry && (!asDirectory || entry->type == ClientFileSystemType::Directory);
}

void ServerChange::remove()
{
    askOnce(
        Kind::Remove, [this](FileSystemClient& client) { return client.remove(m_path); },
        [this](Outcome outcome) { onRemoved(outcome); });
}

void ServerChange::onRemoved(Outcome outcome)
{
    if (outcome == Outcome::NotSent)
        qCWarning(lcFileSystem) << "File/folder removal request failed. Path:" << m_path;
    if (outcome != Outcome::LinkLost)
        return finishRemoval(outcome == Outcome::Done);
    readAnew(getParentPath(m_path), [this] {
        if (isThere(m_path, false))
            remove();
        else
            finishRemoval(true);
    });
}

void ServerChange::finishRemoval(bool isRemoved)
{
    qCInfo(lcFileSystem) << "Remove operation finished for path" << m_path
                         << "- Succeded:" << textOf(isRemoved);
    if (isRemoved)
        server().listings().remove(m_path);
    else if (!m_change->onlyEmpty())
        m_change->addErrorText(
            (m_isDirectory ? tr("<code>%1</code> could not be removed; it may hold files that are no media")
                           : tr("<code>%1</code> could not be removed"))
                .arg(m_path.toHtmlEscaped()) +
            reason());
    server().finishOperation(operationPointer(), isRemoved || m_change->onlyEmpty(),
                             {ServerFileSystemPrivate::directoryEntry(getParentPath(m_path))});
}

void ServerChange::create()
{
    if (isThere(m_path, false)) {
        if (m_change->acceptsExisting() && isThere(m_path, true))
            return server().finishOperation(operationPointer(), true);
        return fail(tr("<code>%1</code> exists already").arg(m_path.toHtmlEscaped()));
    }
    const auto type = m_isDirectory ? ClientFileSystemType::Directory : ClientFileSystemType::File;
    askOnce(
        Kind::Create, [this, type](FileSystemClient& client) { return client.create(m_path, type); },
        [this](Outcome outcome) { onCreated(outcome); });
}

void ServerChange::onCreated(Outcome outcome)
{
    if (outcome == Outcome::NotSent)
        qCWarning(lcFileSystem) << "File/folder creation request failed. Path:" << m_path;
    if (outcome != Outcome::LinkLost)
        return finishCreation(outcome == Outcome::Done);
    readAnew(getParentPath(m_path), [this] {
        if (isThere(m_path, true))
            finishCreation(true);
        else
            create();
    });
}

void ServerChange::finishCreation(bool isCreated)
{
    if (isCreated) {
        qCInfo(lcFileSystem) << "Create operation finished for path" << m_path;
        server().listings().add(m_path, ClientFileSystemType::Directory, 0);
        server().listings().store(m_path, {}); // what was just made is empty
    } else {
        qCWarning(lcFileSystem) << "Create operation failed for path" << m_path;
        m_change->addErrorText(tr("Failed to create directory <code>%1</code>").arg(m_path.toHtmlEscaped()) +
                               reason());
    }
    server().finishOperation(operationPointer(), isCreated,
                             {ServerFileSystemPrivate::directoryEntry(getParentPath(m_path))});
}

void ServerChange::rename()
{
    const QString newPath = m_change->absolutePath();
    if (m_change->newName().isEmpty() || m_change->newName().contains(u'/'))
        return fail(tr("<code>%1</code> is no name for a file").arg(m_change->newName().toHtmlEscaped()));
    if (isThere(newPath, false))
        return fail(tr("<code>%1</code> exists already").arg(newPath.toHtmlEscaped()));
    askOnce(
        Kind::Rename, [this](FileSystemClient& client) { return client.rename(m_path, m_change->newName()); },
        [this](Outcome outcome) { onRenamed(outcome); });
}

void ServerChange::onRenamed(Outcome outcome)
{
    if (outcome == Outcome::NotSent)
        qCWarning(lcFileSystem) << "File/folder rename request failed. Path:" << m_path
                                << ", New name:" << m_change->newName();
    if (outcome != Outcome::LinkLost)
        return finishRenaming(outcome == Outcome::Done);
    readAnew(getParentPath(m_path), [this] {
        if (!isThere(m_path, false) && isThere(m_change->absolutePath(), false))
            finishRenaming(true);
        else
            rename();
    });
}

void ServerChange::finishRenaming(bool isRenamed)
{
    const QString newPath = m_change->absolutePath();
    const qint64 size = server().listings().fileSize(m_path);
    qCInfo(lcFileSystem) << "Rename operation finished to" << newPath << "- Succeded:" << textOf(isRenamed);
    const auto type = m_isDirectory ? ClientFileSystemType::Directory : ClientFileSystemType::File;
    if (isRenamed) {
        server().listings().remove(m_path);
        server().listings().add(newPath, type, size);
    } else {
        m_change->addErrorText(tr("<code>%1</code> could not be renamed").arg(m_path.toHtmlEscaped()) +
                               reason());
    }
    // A directory that has moved is told by the one that holds it.
    QList<ClientFileSystemInfo> changes{ServerFileSystemPrivate::directoryEntry(getParentPath(m_path))};
    if (isRenamed && !m_isDirectory)
        changes.append({type, m_change->newName(), newPath, size, false});
    server().finishOperation(operationPointer(), isRenamed, changes);
}

ServerRelocation::ServerRelocation(ServerFileSystemPrivate* server,
                                   QSharedPointer<TransferOperation> operation)
    : ServerTask(server, operation)
    , m_transfer(operation.data())
    , m_from(operation->from().fullPath)
    , m_destination(operation->to().fullPath)
    , m_isMove(operation->transferType() == TransferOperation::Move)
{
}

void ServerRelocation::start()
{
    const auto type = server().listings().type(m_destination);
    if (type == FileSystem::File && m_transfer->conflictPolicy() == ConflictPolicy::Refuse) {
        if (m_isMove)
            qCWarning(lcFileSystem) << "Failed to move path" << m_from << "to" << m_destination
                                    << "since it's an existing file";
        else
            qCWarning(lcFileSystem) << "Failed to copy path" << m_from << "to" << m_destination
                                    << "since it's an existing file";
    }
    m_destination = destinationPath(m_destination, m_from, type == FileSystem::Directory);
    if (isSamePath(m_from, m_destination) || isPathBelow(m_destination, m_from))
        return fail(tr("<code>%1</code> cannot be put into itself").arg(m_from.toHtmlEscaped()));
    const bool isDirectory = server().listings().type(m_from) == FileSystem::Directory;
    // Most servers put one file in the place of another without a word.
    readAnew(getParentPath(m_destination), [this, isDirectory] {
        meet(m_destination, isDirectory, [this](const QString& destination) { send(destination); });
    });
}

QStringList ServerRelocation::touched() const
{
    return {getParentPath(m_from), getParentPath(m_destination)};
}

void ServerRelocation::send(const QString& destination)
{
    m_destination = destination;
    if (m_isMove)
        askOnce(
            Kind::Move, [this](FileSystemClient& client) { return client.move(m_from, m_destination); },
            [this](Outcome outcome) { onAnswer(outcome); });
    else
        askOnce(
            Kind::Copy, [this](FileSystemClient& client) { return client.copy(m_from, m_destination); },
            [this](Outcome outcome) { onAnswer(outcome); });
}

void ServerRelocation::onAnswer(Outcome outcome)
{
    if (outcome == Outcome::NotSent)
        qCWarning(lcFileSystem) << (m_isMove ? "Failed to request move from" : "Failed to request copy from")
                                << m_from << "to" << m_destination;
    noteReason(outcome);
    if (outcome == Outcome::Failed && m_isMove && mayReplace() && !hasSteppedAside())
        return makeRoom();
    if (outcome != Outcome::LinkLost)
        return finish(outcome == Outcome::Done);
    // What was at the destination before may still be: the source tells whether it has gone there.
    readAnew(getParentPath(m_destination), [this] {
        readAnew(getParentPath(m_from), [this] {
            const bool isGone = m_isMove && !server().listings().entry(m_from);
            const bool isThere = server().listings().entry(m_destination).has_value();
            if (isGone || (!m_isMove && isThere && !mayReplace()))
                finish(isThere);
            else
                send(m_destination);
        });
    });
}

/// The server may have refused since something is in the way.
void ServerRelocation::makeRoom()
{
    readAnew(getParentPath(m_destination), [this] {
        if (server().listings().entry(m_destination))
            stepAside(m_destination, m_from, [this] { send(m_destination); });
        else
            finish(false);
    });
}

void ServerRelocation::finish(bool isDone)
{
    endAside(isDone);
    qCInfo(lcFileSystem) << (m_isMove ? "Move operation finished from path"
                                      : "Copy operation finished from path")
                         << m_from << "to" << m_destination << "- Succeded:" << textOf(isDone);
    QList<ClientFileSystemInfo> changes{
        ServerFileSystemPrivate::directoryEntry(getParentPath(m_destination))};
    if (isDone) {
        const std::optional<ClientFileSystemInfo> entry = server().listings().entry(m_from);
        if (m_isMove) {
            server().listings().remove(m_from);
            changes.append(ServerFileSystemPrivate::directoryEntry(getParentPath(m_from)));
        }
        if (entry)
            server().listings().add(m_destination, entry->type, entry->sizeBytes);
    } else {
        const QString text =
            m_isMove ? tr("<code>%1</code> could not be moved to <code>%2</code>")
                     : tr("The server does not copy <code>%1</code> to <code>%2</code> by itself");
        m_transfer->addErrorText(text.arg(m_from.toHtmlEscaped(), m_destination.toHtmlEscaped()) + reason());
    }
    server().finishOperation(operationPointer(), isDone, changes);
}

} // namespace vantrel
