#pragma once

#include "common/filesystem/server/servertask.h"

namespace vantrel {

class ModifyOperation;
class TransferOperation;

/// The making, renaming or removal of one item on the server.
class ServerChange : public ServerTask
{
    Q_OBJECT

public:
    ServerChange(ServerFileSystemPrivate* server, QSharedPointer<ModifyOperation> operation);

    void start() override;

protected:
    QStringList touched() const override;

private:
    void remove();
    void onRemoved(Outcome outcome);
    void finishRemoval(bool isRemoved);
    void create();
    void onCreated(Outcome outcome);
    void finishCreation(bool isCreated);
    void rename();
    void onRenamed(Outcome outcome);
    void finishRenaming(bool isRenamed);
    bool isThere(const QString& path, bool asDirectory) const;

    ModifyOperation* m_change; // the operation
    QString m_path;            // its target
    bool m_isDirectory;
};

/// A copy or a move that stays on the server.
class ServerRelocation : public ServerTask
{
    Q_OBJECT

public:
    ServerRelocation(ServerFileSystemPrivate* server, QSharedPointer<TransferOperation> operation);

    void start() override;

protected:
    QStringList touched() const override;

private:
    void send(const QString& destination);
    void onAnswer(Outcome outcome);
    void makeRoom();
    void finish(bool isDone);

    TransferOperation* m_transfer; // the operation
    QString m_from;
    QString m_destination;
    bool m_isMove;
};

} // namespace vantrel
