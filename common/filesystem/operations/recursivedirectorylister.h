#pragma once

#include "common/filesystem/model/filesystem.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QTimer>

namespace vantrel {

/// Reads a whole tree of a file system, one directory at a time: it waits while that is busy or away, and
/// asks again when an answer was lost. Owned by whoever wants the tree; main thread only.
class RecursiveDirectoryLister : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString directoryPath READ directoryPath CONSTANT)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    Q_PROPERTY(bool hasFinished READ hasFinished NOTIFY hasFinishedChanged)
    Q_PROPERTY(bool isValid READ isValid NOTIFY isValidChanged)

public:
    struct DirectoryItem
    {
        enum Type {
            File = 1,
            Directory = 2,
        };

        QString name;         // "." for the root of a listing
        qint64 sizeBytes = 0; // of a directory: the sum of all below it
        int type = Directory;
        QList<DirectoryItem> items;
    };

    /// What one directory holds, the way up among it.
    struct Content
    {
        QList<FileSystemDirectory> directories;
        QList<FileSystemFile> files;
    };

    /// depthLimit: how many levels are read, 1 being the directory alone; 0: all.
    RecursiveDirectoryLister(FileSystem* fileSystem, const QString& path, qint64 depthLimit,
                             QObject* parent = nullptr);
    ~RecursiveDirectoryLister() override;

    QString directoryPath() const { return m_directoryPath; }
    qint64 depthLimit() const { return m_depthLimit; }
    bool isRunning() const { return m_isRunning; }
    bool hasFinished() const { return m_hasFinished; }
    /// All of it was read.
    bool isValid() const { return m_isValid; }
    /// It goes deeper than is read, which leads back into itself more often than anywhere: no listing is
    /// known.
    bool isTooDeep() const { return m_isTooDeep; }
    /// Files on the way that are no media: the listing is without them.
    int otherFiles() const { return m_otherFiles; }
    /// The tree below the path, which lies in what was read. False when that is not known.
    bool getListing(const QString& path, DirectoryItem& item) const;
    bool getRootListing(DirectoryItem& item) const { return getListing(m_directoryPath, item); }
    /// All that was read, by withoutTrailingSlash() of the path.
    const QHash<QString, Content>& contents() const { return m_contents; }

public Q_SLOTS:
    void start();
    /// Ends it as not valid.
    void stop();
    /// Lets go of what was read, which nobody asks for any more.
    void forget();

Q_SIGNALS:
    void isRunningChanged();
    void hasFinishedChanged();
    void isValidChanged();

private:
    void onTick();
    void handleNextDirectoryRequest();
    void onDirectoryChanged(const FileSystemDirectory& directory);
    void handleInvalidDirectoryRequest(const QString& path);
    bool askForNext();
    void savePathContent(const QString& path, const Content& content);
    void stopRequests(bool success);
    void giveUpInFlight();
    void wake();
    bool parseDirectory(const QString& path, qint64 depth, DirectoryItem& item) const;

    QPointer<FileSystem> m_fileSystem;
    QString m_directoryPath;
    qint64 m_depthLimit;
    bool m_isRunning = false;
    bool m_hasFinished = false;
    bool m_isValid = false;
    QHash<QString, Content> m_contents; // by withoutTrailingSlash() of the path
    QHash<QString, qint64> m_depths;    // of all paths that were ever in the queue
    QQueue<QString> m_queue;
    QString m_inFlight; // empty when nothing is asked for
    bool m_hasFailed = false;
    bool m_isTooDeep = false;
    bool m_isWoken = false;
    int m_ticksInFlight = 0;
    int m_otherFiles = 0;
    QTimer m_timer;
    QMetaObject::Connection m_following; // directoryChanged of the file system
};

QDebug operator<<(QDebug debug, const RecursiveDirectoryLister& lister);

} // namespace vantrel
