#pragma once

#include "common/filesystem/operations/runnableoperation.h"
#include "common/filesystem/server/servercommands.h"

namespace vantrel {

class ServerFileSystemPrivate;
class TransferOperation;

/// What the server file system does for one operation, from its start to its end: commands to the client in
/// turn, over links that break and come back. It deletes itself when it is done. The server file system owns
/// it; main thread only.
class ServerTask : public QObject
{
    Q_OBJECT

public:
    ServerTask(ServerFileSystemPrivate* server, QSharedPointer<RunnableOperation> operation);

    virtual void start() = 0;
    /// The server is not coming back: ends the operation as failed, with the text.
    void giveUp(const QString& message);
    bool isSettling() const { return m_operation->pace() == RunnableOperation::Pace::Settling; }

protected:
    using Outcome = ServerCommands::Outcome;
    using Kind = ServerCommands::Kind;
    using Step = std::function<void()>;

    /// Goes on once the listing of the directory is fresh; a directory that cannot be read fails the
    /// operation.
    void know(const QString& directory, Step next);
    /// The same with an answer of the server's own, however fresh what is here.
    void readAnew(const QString& directory, Step next);
    /// A command that nothing is lost by asking again: the answer is never LinkLost.
    void ask(Kind kind, std::function<bool(FileSystemClient&)> send, std::function<void(Outcome)> answer);
    /// A command of which nobody may know how far it came.
    void askOnce(Kind kind, std::function<bool(FileSystemClient&)> send, std::function<void(Outcome)> answer);
    /// Goes on with what lies free at the destination of a transfer: asks the operation's policy about what
    /// is in the way. isDirectory: of what is to come there.
    void meet(const QString& destination, bool isDirectory, std::function<void(const QString&)> next);
    /// Ends the operation as failed, with the text and what the server said of it, if anything.
    virtual void fail(const QString& message);
    /// Ends the operation without a fault, and without having done anything.
    virtual void skip();
    /// Somebody aborts the operation.
    virtual void onAborted();
    /// The directories of which nobody knows what is in them when it is stopped in the midst of its work.
    virtual QStringList touched() const { return {}; }

    /// For a server that puts nothing in the place of another file: what lies there steps aside until the new
    /// one has its name, so that nothing is lost whatever happens between. hidden: where the new one lies
    /// until then, and no more when it has come.
    void stepAside(const QString& destination, const QString& hidden, Step next);
    bool hasSteppedAside() const { return !m_aside.isEmpty(); }
    /// What has stepped aside goes, or comes back when nothing has taken its place.
    void endAside(bool isReplaced);

    ServerFileSystemPrivate& server() const { return *m_server; }
    RunnableOperation* operation() const { return m_operation.data(); }
    const QSharedPointer<RunnableOperation>& operationPointer() const { return m_operation; }
    /// What is in the way may be replaced.
    bool mayReplace() const { return m_mayReplace; }
    /// What the server said of the failure that was noted, or else of the last one, escaped, as the end of a
    /// sentence; empty when it said nothing.
    QString reason() const;
    /// Before another command has a failure of its own; of any other outcome nothing is kept.
    void noteReason(Outcome outcome);

private:
    void end();
    void moveAside(const QString& destination, const QString& aside, Step next);
    TransferOperation* transfer() const;
    void meetBy(int policy, const QString& destination, bool isDirectory);
    void askForAnswer(const QString& destination, bool isDirectory, bool isOtherDirectory);
    QString freeName(const QString& destination) const;

    ServerFileSystemPrivate* m_server;
    QSharedPointer<RunnableOperation> m_operation;
    std::function<void(const QString&)> m_met;
    bool m_mayReplace = false;
    QString m_aside;    // where what is being replaced lies meanwhile
    QString m_replaced; // where it belongs
    QString m_hidden;   // where what replaces it lies before, or nothing
    QString m_reason;
};

} // namespace vantrel
