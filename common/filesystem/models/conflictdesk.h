#pragma once

#include "common/filesystem/operations/transferoperation.h"

#include <QObject>
#include <QPointer>

namespace vantrel {

class FileSystemOperations;

/// Where transfers ask what to do with what is in their way: one question at a time, and an answer that may
/// stand for all that was asked for so far. Main thread only.
class ConflictDesk : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isAsking READ isAsking NOTIFY questionChanged)
    /// The name of what is there already, and the directory that it is in.
    Q_PROPERTY(QString name READ name NOTIFY questionChanged)
    Q_PROPERTY(QString place READ place NOTIFY questionChanged)
    Q_PROPERTY(bool isDirectory READ isDirectory NOTIFY questionChanged)
    /// How many others wait behind it.
    Q_PROPERTY(int othersWaiting READ othersWaiting NOTIFY questionChanged)

public:
    enum class Answer : int { Replace, KeepBoth, Skip, Stop };
    Q_ENUM(Answer)

    explicit ConflictDesk(FileSystemOperations* operations, QObject* parent = nullptr);

    bool isAsking() const;
    QString name() const;
    QString place() const;
    bool isDirectory() const;
    int othersWaiting() const;

    /// Has the transfer ask here in place of failing.
    void watch(const OperationPtr& operation);
    /// Stop ends the transfer that asks. forAll: the same for all transfers that wait now, but never for a
    /// folder that is merged with another one.
    Q_INVOKABLE void answer(vantrel::ConflictDesk::Answer answer, bool forAll);

Q_SIGNALS:
    void questionChanged();

private:
    QList<QSharedPointer<TransferOperation>> open() const;
    QSharedPointer<TransferOperation> asking() const;

    void followNew();

    QPointer<FileSystemOperations> m_operations;
    qsizetype m_followedCount = 0; // of all operations
};

} // namespace vantrel
