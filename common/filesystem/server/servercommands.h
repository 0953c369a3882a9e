#pragma once

#include "common/filesystem/ftp/ftpplacing.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QSharedPointer>

#include <functional>
#include <optional>

namespace vantrel {

class FileSystemClient;

/// What the server file system wants of its client, one after the other: a command waits until there is a
/// link and nothing else runs, and its owner hears how it ended. A transfer behind a transfer is handed over
/// before that has ended, so that the line never waits for this thread. Owned by the server file system; main
/// thread only.
class ServerCommands : public QObject
{
    Q_OBJECT

public:
    enum class Kind { List, Remove, Create, Rename, Write, Read, Copy, Move, Size, Modified };
    enum class Outcome {
        Done,
        Failed,   // the server said so
        NotSent,  // the client did not take it, although it was free
        LinkLost, // nobody knows how far it came
    };
    struct Command
    {
        Kind kind;
        std::function<bool(FileSystemClient&)> send;
        std::function<void(Outcome)> answer;
    };

    explicit ServerCommands(QSharedPointer<FileSystemClient> client, QObject* parent = nullptr);

    /// Hears the client from now on, after whoever has connected itself before.
    void follow();

    /// The answer comes only while the owner lives.
    void ask(QObject* owner, Command command);
    /// The same before all that waits already.
    void askFirst(QObject* owner, Command command);
    /// Nothing of the owner's is sent or answered any more; what runs for it is aborted.
    void drop(QObject* owner);
    /// Something waits or runs.
    bool hasWork() const { return m_running || m_ahead || !m_waiting.isEmpty(); }
    /// Of the last Size that is Done: bytes.
    qint64 size() const { return m_size; }
    /// Of the transfer that ended last.
    FtpOutcome outcome() const { return m_outcome; }
    /// Of the last Modified that is Done: a time in the server's words.
    QString modified() const { return m_modified; }

Q_SIGNALS:
    /// The last of the work is done.
    void idle();

private:
    struct Asked
    {
        QPointer<QObject> owner;
        Command command;
    };

    void pump();
    void pumpSoon();
    void pumpAhead();
    void onFollowUpDropped();
    void onConnectedChanged(bool isConnected);
    void onFinished(Kind kind, bool succeeded);
    void end(Outcome outcome);

    QSharedPointer<FileSystemClient> m_client;
    QList<Asked> m_waiting;
    std::optional<Asked> m_running;
    std::optional<Asked> m_ahead; // follows it
    bool m_hasAheadBegun = false;
    qint64 m_size = -1;
    FtpOutcome m_outcome;
    QString m_modified;
    int m_number = 0; // of the command that runs
    bool m_isPumpDue = false;
};

} // namespace vantrel
