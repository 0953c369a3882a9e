#pragma once

#include "common/filesystem/local/settlequeue.h"

#include <QFile>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QSharedPointer>

namespace vantrel {

class FileSystem;
class FileTransferOperation;

/// The local end of transfers between the disks and a server: opens the file, hands it to the operation, and
/// closes it at the end. What comes in stands under a hidden name until it is whole. Owned by the local file
/// system; main thread.
class LocalStreams : public QObject
{
    Q_OBJECT

public:
    /// Runs the work beside the main thread and hands over how it ended.
    using StartJob = SettleQueue::StartJob;

    LocalStreams(FileSystem* fileSystem, StartJob startJob, QObject* parent);
    ~LocalStreams() override;

    bool initializeIncomingTransfer(const QSharedPointer<FileTransferOperation>& operation);
    bool initializeOutgoingTransfer(const QSharedPointer<FileTransferOperation>& operation);
    /// Something is on its way into the directory.
    bool isReceivingInto(const QString& directory) const;

Q_SIGNALS:
    /// An incoming file has grown by a tenth.
    void progressed(QString path, qint64 sizeBytes);
    /// It stands whole under its name.
    void received(QString path);
    void removed(QString path);

private:
    struct Incoming
    {
        QString path;
        QString hidden;
        QSharedPointer<IncomingFile> file;
        bool isReplacing;
        std::shared_ptr<bool> isPlaced;
    };

    QSharedPointer<QFile> openFile(const QString& path);
    void remember(const QSharedPointer<QFile>& file);
    void forget(const QFile* file);
    void watchIncoming(const QSharedPointer<FileTransferOperation>& operation, const Incoming& incoming);
    void takeIncoming(const QSharedPointer<FileTransferOperation>& operation, const Incoming& incoming);
    void checkRoom(const QSharedPointer<FileTransferOperation>& operation, const Incoming& incoming);
    void removeMoved(const QSharedPointer<FileTransferOperation>& operation, const QDateTime& modified,
                     qint64 size);

    FileSystem* m_fileSystem;
    StartJob m_startJob;
    SettleQueue m_settling;
    QMap<QString, QSharedPointer<QFile>> m_openFiles;
    QHash<QString, bool> m_receiving; // by hidden path, whether there is something of it already
    QMap<QString, double> m_progressMarks;
};

} // namespace vantrel
