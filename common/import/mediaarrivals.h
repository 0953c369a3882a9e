#pragma once

#include "common/filesystem/operations/baseoperation.h"
#include "common/import/slotpayload.h"

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QWeakPointer>

#include <functional>
#include <optional>

namespace vantrel {

class FileSystem;
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
        QStringList uploads;     // local paths of files that are not there yet
        QList<MediaEntry> files; // on the server, in the order of the drop
        QStringList directories; // local paths
        QStringList faults;      // what is left out, a sentence each
        QString fault;           // why nothing of it can be done
    };

    MediaArrivals(FileSystemProvider* fileSystems, FileSystemOperations* operations,
                  QObject* parent = nullptr);

    /// Whether all of a payload is of this computer.
    static bool isLocal(const QList<MediaEntry>& entries);
    /// As a file manager drags them, without a look at the disk. Empty where one is not of this computer.
    static QList<MediaEntry> entriesOf(const QList<QUrl>& urls);

    /// Looks at the items and at what the server holds, which may take some seconds, and gives the plan. Not
    /// once this is gone.
    void plan(const QList<MediaEntry>& entries, const std::function<void(const Plan&)>& next);
    /// Sends the file off; the slots that play it show how far it is.
    void bringFile(const QString& localPath);
    /// arrived is called with its path on the server once all of it is there.
    void bringDirectory(const QString& localPath, const std::function<void(const QString&)>& arrived);

    /// Of a slot's media: "arriving 43 %"; empty for what is not on its way.
    QString textOf(const QUrl& media) const;
    /// The same as a number from 0 to 1; below 0 for what is not on its way.
    double progressOf(const QUrl& media) const { return m_progress.value(media, -1); }
    bool isEmpty() const { return m_progress.isEmpty(); }

Q_SIGNALS:
    /// Some texts; ten times a second at most.
    void changed();
    /// It is on its way no more. isSupplanted: it has not arrived, and the server holds another one of its
    /// name by now, which slots that name it would play.
    void settled(const QUrl& media, bool isSupplanted);

private:
    struct Question;

    void lookAtServer(const std::shared_ptr<Question>& question);
    Plan answer(const Question& question) const;
    void add(Plan& plan, const MediaEntry& entry) const;
    QString targetOf(const QString& localPath, bool isDirectory) const;
    OperationPtr send(const QString& localPath);
    void lookForAnother(const QUrl& media);
    void noteChange();

    FileSystemProvider* m_fileSystems;
    FileSystemOperations* m_operations;
    QHash<QUrl, double> m_progress; // from 0 to 1
    QTimer m_pace;
};

} // namespace vantrel
