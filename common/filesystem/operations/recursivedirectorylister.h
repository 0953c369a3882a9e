#pragma once

#include "common/filesystem/model/filesystemdirectory.h"
#include "common/filesystem/model/filesystemfile.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QTimer>

namespace vantrel {

class FileSystem;

/// Reads a whole tree of a file system, one directory at a time, and waits where that is busy or not there.
/// It ends by itself, as valid when everything could be read; it may be started again. Main thread.
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
        enum Type { File = 1, Directory = 2 };

        QString name;         // "." for the root of a listing
        qint64 sizeBytes = 0; // of a directory all that is known below it
        int type = 0;
        QList<DirectoryItem> items;
    };

    /// depthLimit: levels to read; 1 is the directory itself, 0 means all.
    RecursiveDirectoryLister(FileSystem* fileSystem, const QString& path, qint64 depthLimit,
                             QObject* parent = nullptr);
    ~RecursiveDirectoryLister() override;

    QString directoryPath() const { return m_directoryPath; }
    qint64 depthLimit() const { return m_depthLimit; }
    bool isRunning() const { return m_isRunning; }
    bool hasFinished() const { return m_hasFinished; }
    bool isValid() const { return m_isValid; }

    /// The tree below a path that was read. False, with the item as it was, where something is missing.
    bool getListing(const QString& path, DirectoryItem& item) const;
    bool getRootListing(DirectoryItem& item) const;

public Q_SLOTS:
    void start();
    void stop();

Q_SIGNALS:
    void isRunningChanged();
    void hasFinishedChanged();
    void isValidChanged();

private:
    void handleNextDirectoryRequest();
    void handleInvalidDirectoryRequest(const QString& path);
    void onDirectoryChanged(const vantrel::FileSystemDirectory& directory);
    void savePathContent(const QString& path, const QList<FileSystemDirectory>& directories,
                         const QList<FileSystemFile>& files);
    void stopRequests(bool success);
    bool parseDirectory(const QString& path, qint64 depth, DirectoryItem& item) const;
    bool isDeepEnough(qint64 depth) const;
    static QString key(const QString& path);

    QPointer<FileSystem> m_fileSystem;
    const QString m_directoryPath;
    const qint64 m_depthLimit;
    bool m_isRunning = false;
    bool m_hasFinished = false;
    bool m_isValid = false;
    bool m_hasFailed = false;
    // By path without a "/" at its end:
    QHash<QString, QList<FileSystemDirectory>> m_directories;
    QHash<QString, QList<FileSystemFile>> m_files;
    QHash<QString, qint64> m_depths;
    QQueue<QString> m_queue;
    QString m_inFlight;
    QTimer m_timer;
};

} // namespace vantrel
