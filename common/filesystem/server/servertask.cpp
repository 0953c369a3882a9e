#include "common/filesystem/server/servertask.h"

#include "common/filesystem/ftp/filesystemclient.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/filesystem/server/serverfilesystem_p.h"

#include <QUuid>

#include <utility>

namespace vantrel {

ServerTask::ServerTask(ServerFileSystemPrivate* server, QSharedPointer<RunnableOperation> operation)
    : QObject(server)
    , m_server(server)
    , m_operation(std::move(operation))
{
    server->keepConnection(
        m_operation.data(),
        connect(m_operation.data(), &RunnableOperation::operationAborted, this, [this] { onAborted(); }));
    connect(m_operation.data(), &BaseOperation::operationStopped, this, &ServerTask::end);
}

void ServerTask::end()
{
    m_server->commands().drop(this);
    m_server->dropConnections(m_operation.data());
    deleteLater();
}

void ServerTask::skip()
{
    if (TransferOperation* const left = transfer())
        left->setSkippedCount(1);
    m_server->finishOperation(m_operation, true);
}

void ServerTask::giveUp(const QString& message)
{
    m_operation->addErrorText(message);
    m_operation->abort();
}

void ServerTask::fail(const QString& message)
{
    m_operation->addErrorText(message + reason());
    endAside(false);
    m_server->finishOperation(m_operation, false);
}

QString ServerTask::reason() const
{
    if (!m_reason.isEmpty())
        return m_reason;
    const QString said = m_server->client()->lastErrorText().simplified();
    return said.isEmpty() ? QString() : QStringLiteral(": ") + said.toHtmlEscaped();
}

void ServerTask::noteReason(Outcome outcome)
{
    m_reason.clear();
    if (outcome == Outcome::Failed)
        m_reason = reason();
}

void ServerTask::onAborted()
{
    endAside(false);
    // What the server was told last it may have done.
    m_server->tellTouched(touched());
}

void ServerTask::stepAside(const QString& destination, const QString& hidden, Step next)
{
    const QString name = QStringLiteral(".halcyra-%1.old").arg(QUuid::createUuid().toString(QUuid::Id128));
    // From now on: who stops in the midst of it does not know how far it has come.
    m_aside = createJoinedPath(getParentPath(destination), name, false);
    m_replaced = destination;
    m_hidden = hidden;
    moveAside(destination, m_aside, std::move(next));
}

void ServerTask::moveAside(const QString& destination, const QString& aside, Step next)
{
    const auto goOn = [this, destination, next = std::move(next)] {
        m_server->listings().remove(destination);
        next();
    };
    askOnce(
        Kind::Move,
        [destination, aside](FileSystemClient& client) { return client.move(destination, aside); },
        [this, destination, aside, goOn](Outcome outcome) {
            // Under the name that it has tried: the lost link may still carry it out.
            if (outcome == Outcome::LinkLost)
                return readAnew(getParentPath(destination), [this, destination, aside, goOn] {
                    m_server->listings().entry(aside) ? goOn() : moveAside(destination, aside, goOn);
                });
            if (outcome == Outcome::Done)
                return goOn();
            noteReason(outcome);
            // One that was stopped on its way may have been carried out.
            readAnew(getParentPath(destination), [this, destination, aside, goOn] {
                if (m_server->listings().entry(aside))
                    return goOn();
                m_aside.clear();
                fail(tr("<code>%1</code> could not be replaced").arg(destination.toHtmlEscaped()));
            });
        });
}

void ServerTask::endAside(bool isReplaced)
{
    if (m_aside.isEmpty())
        return;
    if (isReplaced)
        m_server->removeLeftover(m_aside);
    else
        m_server->putBackUnlessReplaced(m_aside, m_replaced, m_hidden);
    m_aside.clear();
}

void ServerTask::askOnce(Kind kind, std::function<bool(FileSystemClient&)> send,
                         std::function<void(Outcome)> answer)
{
    m_server->commands().ask(this, {kind, std::move(send), std::move(answer)});
}

void ServerTask::ask(Kind kind, std::function<bool(FileSystemClient&)> send,
                     std::function<void(Outcome)> answer)
{
    askOnce(kind, send, [this, kind, send, answer](Outcome outcome) {
        if (outcome == Outcome::LinkLost)
            ask(kind, send, answer);
        else
            answer(outcome);
    });
}

void ServerTask::know(const QString& directory, Step next)
{
    if (m_server->listings().isKnown(directory))
        next();
    else
        readAnew(directory, std::move(next));
}

void ServerTask::readAnew(const QString& directory, Step next)
{
    ask(
        Kind::List, [directory](FileSystemClient& client) { return client.list(directory); },
        [this, directory, next = std::move(next)](Outcome outcome) {
            if (outcome == Outcome::Done)
                next();
            else
                fail(tr("The directory <code>%1</code> could not be read").arg(directory.toHtmlEscaped()));
        });
}

TransferOperation* ServerTask::transfer() const
{
    return qobject_cast<TransferOperation*>(m_operation.data());
}

void ServerTask::meet(const QString& destination, bool isDirectory, std::function<void(const QString&)> next)
{
    m_met = std::move(next);
    if (!m_server->listings().entry(destination) || m_mayReplace)
        m_met(destination);
    else
        meetBy(static_cast<int>(transfer()->conflictPolicy()), destination, isDirectory);
}

void ServerTask::meetBy(int policy, const QString& destination, bool isDirectory)
{
    const std::optional<ClientFileSystemInfo> other = m_server->listings().entry(destination);
    const bool isOtherDirectory = other && other->type == ClientFileSystemType::Directory;
    switch (static_cast<ConflictPolicy>(policy)) {
    case ConflictPolicy::Ask:
        return askForAnswer(destination, isDirectory, isOtherDirectory);
    case ConflictPolicy::Replace:
        if (isDirectory || isOtherDirectory)
            return fail(tr("<code>%1</code> is there already and cannot be replaced")
                            .arg(destination.toHtmlEscaped()));
        m_mayReplace = true;
        return m_met(destination);
    case ConflictPolicy::KeepBoth:
        return m_met(freeName(destination));
    case ConflictPolicy::Skip:
        return skip();
    case ConflictPolicy::Refuse:
        return fail(tr("<code>%1</code> exists already").arg(destination.toHtmlEscaped()));
    }
}

void ServerTask::askForAnswer(const QString& destination, bool isDirectory, bool isOtherDirectory)
{
    connect(
        transfer(), &TransferOperation::conflictAnswered, this,
        [this, destination, isDirectory](ConflictPolicy answer) {
            const bool isNone = answer == ConflictPolicy::Ask;
            meetBy(static_cast<int>(isNone ? ConflictPolicy::Refuse : answer), destination, isDirectory);
        },
        Qt::SingleShotConnection);
    transfer()->askConflict({destination, isOtherDirectory});
}

QString ServerTask::freeName(const QString& destination) const
{
    for (int number = 2;; ++number) {
        const QString path = numberedPath(withoutTrailingSlash(destination), number);
        if (!m_server->listings().entry(path))
            return path;
    }
}

} // namespace vantrel
