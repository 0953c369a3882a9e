#pragma once

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/operations/baseoperation.h"
#include "common/import/pendingdrops.h"
#include "common/import/slotpayload.h"
#include "common/media/library/turn.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QWeakPointer>

#include <deque>
#include <functional>
#include <optional>

namespace vantrel {

class FileSystemOperations;
class FileSystemProvider;

/// Files of this computer on their way into slots: they are brought to the server's storage by the queue of
/// all file work, and whoever shows their slots asks here how far they are. Main thread; what it is given
/// must outlive it.
class MediaArrivals : public QObject
{
    Q_OBJECT

public:
    /// What local items will be on the server.
    struct Plan
    {
        FileSystem* server = nullptr;
        QStringList uploads;     // local paths of files that are not there yet
        QList<MediaEntry> files; // on the server, in the order of the drop
        QStringList directories; // local paths
        QStringList faults;      // what is left out, a sentence each
        QString fault;           // why nothing of it can be done
    };

    /// A file of this computer on its way to the slots that name the media, of which it is one picture where
    /// they name a sequence.
    struct Upload
    {
        QString localPath;
        QUrl media;
    };

    MediaArrivals(FileSystemProvider* fileSystems, FileSystemOperations* operations,
                  QObject* parent = nullptr);

    /// Whether all of a payload is of this computer.
    static bool isLocal(const QList<MediaEntry>& entries);
    /// Some of it is of this computer, and some is not.
    static bool isMixed(const QList<MediaEntry>& entries);
    /// As a file manager drags them, without a look at the disk. Empty where one is not of this computer.
    static QList<MediaEntry> entriesOf(const QList<QUrl>& urls);

    /// Looks at the items and at what the server holds, which may take some seconds, and gives the plan. Not
    /// once this is gone. text: stands with what is pending meanwhile; plain.
    void plan(const QList<MediaEntry>& entries, const QString& text,
              const std::function<void(const Plan&)>& next);
    /// Whether that is still what is there. Minutes may lie between a plan and what becomes of it.
    bool isFile(const QString& localPath) const { return isThere(localPath, FileSystem::File); }
    /// Sends the files off, of many some in each turn; their slots show at once how far they are. sent:
    /// called once all are in the queue of file work, with a sentence for each that is not, while the context
    /// lives.
    void bringFiles(const QList<Upload>& uploads, QObject* context,
                    const std::function<void(const QStringList& faults)>& sent);
    /// ended is called with its path on the server once all of it is there, or with an empty one and why not.
    void bringDirectory(const QString& localPath,
                        const std::function<void(const QString& path, const QString& fault)>& ended);

    /// Of a slot's media: "arriving 43 %"; empty for what is not on its way.
    QString textOf(const QUrl& media) const;
    /// The same as a number from 0 to 1; below 0 for what is not on its way.
    double progressOf(const QUrl& media) const;
    bool isEmpty() const { return m_progress.isEmpty(); }

    /// What is in no slot yet.
    PendingDrops& pending() { return m_pending; }

Q_SIGNALS:
    /// Some texts, ten times a second at most, or what is pending.
    void changed();
    /// It is on its way no more. isSupplanted: it has not arrived, and the server holds another one of its
    /// name by now, which slots that name it would play.
    void settled(const QUrl& media, bool isSupplanted);

private:
    struct Question;
    /// A sequence, of which each picture arrives by itself.
    struct Whole
    {
        qsizetype pictures = 0;
        qsizetype awaited = 0;
        double arrived = 0; // of the pictures
    };

    struct Batch
    {
        FileSystem* server; // for which they were meant
        QList<Upload> uploads;
        QPointer<QObject> context;
        std::function<void(const QStringList&)> sent;
        qsizetype next = 0;
        QStringList faults = {};
    };

    void lookAtServer(const std::shared_ptr<Question>& question);
    void end(std::shared_ptr<Question> question, const Plan& plan);
    Plan answer(const Question& question) const;
    void add(Plan& plan, const MediaEntry& entry) const;
    static QString targetOf(const FileSystem& server, const QString& localPath, bool isDirectory);
    bool isThere(const QString& localPath, FileSystem::ItemType type) const;
    OperationPtr send(const QString& localPath, FileSystem::ItemType type);
    void sendSome();
    QString bringFile(const Upload& upload, FileSystem* server);
    void lookForAnother(const QUrl& media);
    void noteProgress(const QUrl& file, const QUrl& media, double share);
    void noteEnd(const QUrl& file, const QUrl& media);
    void noteChange();

    FileSystemProvider* m_fileSystems;
    FileSystemOperations* m_operations;
    QHash<QUrl, double> m_progress; // of files, from 0 to 1
    QHash<QUrl, Whole> m_wholes;
    std::deque<Batch> m_batches; // not sent off yet
    Turn m_turn;                 // of sending them
    QTimer m_pace;
    PendingDrops m_pending;
};

} // namespace vantrel
