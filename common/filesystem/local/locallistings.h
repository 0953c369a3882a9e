#pragma once

#include "common/filesystem/local/directorycontent.h"
#include "common/filesystem/model/filesystem.h"

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QThreadPool>

namespace vantrel {

/// The contents of local directories that somebody looked at: read on worker threads, kept while they hold,
/// the last ten of them watched. Owned by the local file system; main thread.
class LocalListings : public QObject
{
    Q_OBJECT

public:
    explicit LocalListings(QObject* parent = nullptr);
    ~LocalListings() override;

    /// What is known to hold. Otherwise null, and changed() comes once it was read.
    const DirectoryContent* find(const QString& path);
    /// Of an item, by what was read of its directory last, however long ago; Unknown when nothing was.
    FileSystem::ItemType typeOf(const QString& path) const;
    int otherFiles(const QString& path) const;
    /// Watches it, in place of the one that was asked for longest ago when there are ten.
    void watch(const QString& path);
    /// What is known of it holds no longer; the next find() reads it anew.
    void invalidate(const QString& path);
    /// Reads it anew when anything is known of it; changed() comes in any case.
    void refresh(const QString& path);

Q_SIGNALS:
    /// There is another answer than before.
    void changed(QString path);
    /// The system says that something came, went or has another name.
    void touched(QString path);

private:
    struct Entry
    {
        std::optional<DirectoryContent> content;
        QElapsedTimer age;
        bool isStale = false;   // something has happened since it was read
        bool isReading = false; // an answer is on its way
        bool isAgain = false;   // something happened since that began
        bool isAwaited = false; // somebody was told to wait for changed()
        int rereadings = 0;     // in a row, for something went on happening
    };

    void read(const QString& path, Entry& entry);
    void take(const QString& path, std::optional<DirectoryContent> content);
    void forgetOld();
    bool isWatched(const QString& path) const;

    QFileSystemWatcher m_watcher;
    QHash<QString, Entry> m_entries;
    QThreadPool m_pool;
};

} // namespace vantrel
