#pragma once

#include "common/filesystem/operations/defaultfilesystemreader.h"

#include <QHash>
#include <QQueue>
#include <QStringList>
#include <QTimer>

#include <deque>
#include <memory>
#include <vector>

namespace vantrel {

class ReadDirectories;
class RecursiveDirectoryLister;

/// Reads from what it has read before: paths are added, then cached in the background, one tree after the
/// other, and are there once it is ready. A ready reader takes no more until it is reset. Main thread.
class AsyncFileSystemReader : public DefaultFileSystemReader
{
    Q_OBJECT
    Q_PROPERTY(QStringList cachePaths READ cachePaths NOTIFY cachePathsChanged)
    Q_PROPERTY(qint64 searchDepth READ searchDepth WRITE setSearchDepth NOTIFY searchDepthChanged)
    Q_PROPERTY(bool isCaching READ isCaching NOTIFY isCachingChanged)
    Q_PROPERTY(bool isReady READ isReady NOTIFY isReadyChanged)

public:
    explicit AsyncFileSystemReader(QObject* parent = nullptr);
    ~AsyncFileSystemReader() override;

    QStringList cachePaths() const { return m_paths; }
    /// Levels to read, 0 means all: of the paths that are added afterwards.
    qint64 searchDepth() const { return m_searchDepth; }
    void setSearchDepth(qint64 depth);
    bool isCaching() const { return m_timer.isActive(); }
    bool isReady() const;

    void addCachePath(const QString& path);
    void addCachePaths(const QList<QString>& paths);

    void setFileSystem(FileSystem* fileSystem) override;
    QList<std::filesystem::path> getFileSystemPaths(const std::filesystem::path& path) override;
    QList<std::filesystem::path> getFileSystemPaths(const QString& path) override;
    /// All that it has read; nothing before it is ready.
    ReadDirectories readDirectories() const;

public Q_SLOTS:
    bool startCaching();
    void reset();
    void handleDirectoryListerFinishing();
    void hanldeDirectoryListerRunningChanged();
    void resetDirectoryListers();
    void startNextDirectoryLister();

Q_SIGNALS:
    void cachePathsChanged();
    void searchDepthChanged();
    void isCachingChanged();
    void isReadyChanged();

private:
    using ListerPtr = std::unique_ptr<RecursiveDirectoryLister>;
    bool isLocked(const char* what, const QString& which) const;
    void dropListers();
    QStringList optimized() const;
    RecursiveDirectoryLister* listerFor(const QString& path) const;

    QStringList m_paths;
    QHash<QString, qint64> m_depths; // of each
    qint64 m_searchDepth = 0;
    QTimer m_timer;
    ListerPtr m_current;
    std::deque<ListerPtr> m_queue;
    std::vector<ListerPtr> m_succeeded;
    std::vector<ListerPtr> m_failed;
};

} // namespace vantrel
