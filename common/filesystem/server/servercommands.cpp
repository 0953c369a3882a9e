#include "common/filesystem/server/servercommands.h"

#include "common/filesystem/ftp/filesystemclient.h"

#include <utility>

namespace vantrel {

namespace {

bool isTransfer(ServerCommands::Kind kind)
{
    return kind == ServerCommands::Kind::Write || kind == ServerCommands::Kind::Read;
}

} // namespace

ServerCommands::ServerCommands(QSharedPointer<FileSystemClient> client, QObject* parent)
    : QObject(parent)
    , m_client(std::move(client))
{
}

void ServerCommands::follow()
{
    using Client = FileSystemClient;
    const Client* client = m_client.data();
    const auto tell = [this](Kind kind) {
        return [this, kind](auto&&... values) {
            onFinished(kind, std::get<sizeof...(values) - 1>(std::forward_as_tuple(values...)));
        };
    };
    connect(client, &Client::listFinished, this, tell(Kind::List));
    connect(client, &Client::removeFinished, this, tell(Kind::Remove));
    connect(client, &Client::createFinished, this, tell(Kind::Create));
    connect(client, &Client::renameFinished, this, tell(Kind::Rename));
    connect(client, &Client::writeFinished, this, tell(Kind::Write));
    connect(client, &Client::readFinished, this, tell(Kind::Read));
    connect(client, &Client::copyFinished, this, tell(Kind::Copy));
    connect(client, &Client::moveFinished, this, tell(Kind::Move));
    connect(client, &Client::sizeFinished, this, [this](const QString&, qint64 bytes, bool succeeded) {
        m_size = bytes;
        onFinished(Kind::Size, succeeded);
    });
    connect(client, &Client::modifiedFinished, this,
            [this](const QString&, const QString& time, bool succeeded) {
                m_modified = time;
                onFinished(Kind::Modified, succeeded);
            });
    connect(client, &Client::followUpBegan, this, [this] { m_hasAheadBegun = m_ahead.has_value(); });
    connect(client, &Client::followUpDropped, this, &ServerCommands::onFollowUpDropped);
    connect(client, &Client::isServerConnectedChanged, this, &ServerCommands::onConnectedChanged);
    connect(client, &Client::isLoadingChanged, this, &ServerCommands::pumpSoon);
}

void ServerCommands::ask(QObject* owner, Command command)
{
    m_waiting.append({owner, std::move(command)});
    pump();
    pumpAhead();
}

void ServerCommands::drop(QObject* owner)
{
    m_waiting.removeIf([owner](const Asked& asked) { return asked.owner == owner; });
    if (m_ahead && m_ahead->owner == owner) {
        m_ahead->owner.clear();
        m_client->dropFollowUp();
    }
    if (!m_running || m_running->owner != owner)
        return;
    m_running->owner.clear();
    m_client->abort();
}

void ServerCommands::askFirst(QObject* owner, Command command)
{
    m_waiting.prepend({owner, std::move(command)});
    pump();
    pumpAhead();
}

/// Sends the next when the client can take it.
void ServerCommands::pump()
{
    while (!m_running && !m_ahead && !m_waiting.isEmpty() && m_client->isServerConnected() &&
           !m_client->isLoading()) {
        m_running = m_waiting.takeFirst();
        ++m_number;
        if (!m_running->owner)
            m_running.reset();
        else if (!m_running->command.send(*m_client))
            end(Outcome::NotSent);
    }
}

/// Hands over what is next while the line is still taken.
void ServerCommands::pumpAhead()
{
    if (!m_running || m_ahead || !isTransfer(m_running->command.kind))
        return;
    while (!m_waiting.isEmpty() && !m_waiting.constFirst().owner)
        m_waiting.removeFirst();
    if (m_waiting.isEmpty() || !isTransfer(m_waiting.constFirst().command.kind) || !m_client->takeFollowUp())
        return;
    // One that cannot be hears so in its turn.
    if (m_waiting.constFirst().command.send(*m_client))
        m_ahead = m_waiting.takeFirst();
}

/// The transfer before it did not succeed, or nobody wants it any more.
void ServerCommands::onFollowUpDropped()
{
    if (!m_ahead)
        return;
    const Asked asked = std::exchange(m_ahead, std::nullopt).value();
    if (asked.owner)
        m_waiting.prepend(asked);
    pumpSoon();
    if (!hasWork())
        Q_EMIT idle();
}

/// Not within the client's own signal, which may have more to say of the command before.
void ServerCommands::pumpSoon()
{
    if (m_waiting.isEmpty() || std::exchange(m_isPumpDue, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isPumpDue = false;
            pump();
        },
        Qt::QueuedConnection);
}

void ServerCommands::onConnectedChanged(bool isConnected)
{
    if (isConnected)
        return pumpSoon();
    if (!m_running)
        return;
    // The end of what ran may still come by itself.
    QMetaObject::invokeMethod(
        this,
        [this, number = m_number] {
            if (m_running && m_number == number)
                end(Outcome::LinkLost);
        },
        Qt::QueuedConnection);
}

void ServerCommands::onFinished(Kind kind, bool succeeded)
{
    if (!m_running || m_running->command.kind != kind)
        return;
    if (succeeded)
        end(Outcome::Done);
    else
        end(m_client->isServerConnected() ? Outcome::Failed : Outcome::LinkLost);
}

void ServerCommands::end(Outcome outcome)
{
    const Asked asked = std::exchange(m_running, std::nullopt).value();
    if (isTransfer(asked.command.kind))
        m_outcome = m_client->lastOutcome();
    if (std::exchange(m_hasAheadBegun, false)) {
        m_running = std::exchange(m_ahead, std::nullopt);
        ++m_number;
        if (!m_running->owner)
            m_client->abort();
    } else if (outcome == Outcome::Done && isTransfer(asked.command.kind) && !m_waiting.isEmpty() &&
               isTransfer(m_waiting.constFirst().command.kind)) {
        pump(); // the line is not idle while this one is being seen to
    }
    if (asked.owner && asked.command.answer)
        asked.command.answer(outcome);
    pumpAhead();
    pumpSoon();
    if (!hasWork())
        Q_EMIT idle();
}

} // namespace vantrel
