#include "common/filesystem/operations/asyncfilesystemreader.h"

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/readdirectories.h"
#include "common/filesystem/operations/recursivedirectorylister.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace vantrel {

using namespace std::chrono_literals;

AsyncFileSystemReader::AsyncFileSystemReader(QObject* parent)
    : DefaultFileSystemReader(parent)
{
    m_timer.setInterval(50ms);
    connect(&m_timer, &QTimer::timeout, this, &AsyncFileSystemReader::startNextDirectoryLister);
}

AsyncFileSystemReader::~AsyncFileSystemReader() = default;

bool AsyncFileSystemReader::isReady() const
{
    return !isCaching() && !m_current && m_queue.empty() && !m_succeeded.empty() && m_failed.empty();
}

/// Nothing is changed while it reads, and once it has read.
bool AsyncFileSystemReader::isLocked(const char* what, const QString& which) const
{
    if (!isCaching() && !isReady())
        return false;
    qCWarning(lcFileSystem) << what << which
                            << (isCaching() ? "to file system reader because it's already running"
                                            : "to file system reader because it's already finished");
    return true;
}

void AsyncFileSystemReader::addCachePath(const QString& path)
{
    addCachePaths({path});
}

void AsyncFileSystemReader::addCachePaths(const QList<QString>& paths)
{
    bool isChanged = false;
    for (const QString& path : paths) {
        if (isLocked("Unable to add path", path))
            continue;
        if (m_paths.contains(path)) {
            qCDebug(lcFileSystem) << "Path" << path << "is already part in search paths:" << m_paths;
            continue;
        }
        m_paths.append(path);
        m_depths.insert(path, m_searchDepth);
        isChanged = true;
    }
    if (isChanged)
        Q_EMIT cachePathsChanged();
}

void AsyncFileSystemReader::setSearchDepth(qint64 depth)
{
    if (depth == m_searchDepth || isLocked("Unable to set search depth", QString::number(depth)))
        return;
    if (std::any_of(m_depths.cbegin(), m_depths.cend(), [&](qint64 one) { return one != depth; }))
        qCDebug(lcFileSystem, "File system reader already contains paths that have different search depth");
    m_searchDepth = depth;
    Q_EMIT searchDepthChanged();
}

void AsyncFileSystemReader::setFileSystem(FileSystem* system)
{
    if (system == fileSystem())
        return;
    const QString name = system ? system->fileSystemName() : QString();
    if (isLocked("Unable to set", name))
        return;
    qCDebug(lcFileSystem) << "Applying a new" << name << "file system when cache paths were set:"
                          << (m_paths.isEmpty() ? QStringLiteral("empty")
                                                : m_paths.join(QLatin1String(", ")));
    DefaultFileSystemReader::setFileSystem(system);
}

bool AsyncFileSystemReader::startCaching()
{
    qCDebug(lcFileSystem) << "Requesting directory caching for paths" << m_paths << "with depth"
                          << m_searchDepth;
    if (m_paths.isEmpty()) {
        qCWarning(lcFileSystem, "Aborting due empty cache directory");
        return false;
    }
    if (!fileSystem()) {
        qCWarning(lcFileSystem, "Aborting due missing file system");
        return false;
    }
    if (isCaching() || isReady()) {
        qCWarning(lcFileSystem, "Directory caching was already running/not valid. Skipping request");
        return false;
    }
    resetDirectoryListers();
    m_timer.start();
    Q_EMIT isCachingChanged();
    Q_EMIT isReadyChanged();
    return true;
}

void AsyncFileSystemReader::dropListers()
{
    // One of them may be the sender of what runs now.
    const auto drop = [](ListerPtr& lister) {
        if (!lister)
            return;
        lister->disconnect();
        lister->stop();
        lister.release()->deleteLater();
    };
    drop(m_current);
    std::for_each(m_queue.begin(), m_queue.end(), drop);
    std::for_each(m_succeeded.begin(), m_succeeded.end(), drop);
    std::for_each(m_failed.begin(), m_failed.end(), drop);
    m_queue.clear();
    m_succeeded.clear();
    m_failed.clear();
}

/// Without those that lie below another one that is read to the same end.
QStringList AsyncFileSystemReader::optimized() const
{
    QStringList reduced;
    for (const QString& path : m_paths) {
        const bool isCovered = std::any_of(m_paths.cbegin(), m_paths.cend(), [&](const QString& other) {
            return m_depths.value(other) == 0 && isPathBelow(path, other);
        });
        const bool isTwice = std::any_of(reduced.cbegin(), reduced.cend(),
                                         [&](const QString& other) { return isSamePath(path, other); });
        if (!isCovered && !isTwice)
            reduced.append(path);
    }
    return reduced;
}

void AsyncFileSystemReader::resetDirectoryListers()
{
    qCDebug(lcFileSystem) << "Reseting directory listers for paths:" << m_paths;
    dropListers();
    const QStringList paths = optimized();
    qCDebug(lcFileSystem) << "Optimized search paths:" << m_paths << "to" << paths;
    for (const QString& path : paths) {
        auto lister = std::make_unique<RecursiveDirectoryLister>(fileSystem(), path, m_depths.value(path));
        connect(lister.get(), &RecursiveDirectoryLister::hasFinishedChanged, this,
                &AsyncFileSystemReader::handleDirectoryListerFinishing);
        connect(lister.get(), &RecursiveDirectoryLister::isRunningChanged, this,
                &AsyncFileSystemReader::hanldeDirectoryListerRunningChanged);
        m_queue.push_back(std::move(lister));
    }
}

void AsyncFileSystemReader::startNextDirectoryLister()
{
    if (m_current)
        return;
    if (!m_queue.empty()) {
        m_current = std::move(m_queue.front());
        m_queue.pop_front();
        m_current->start();
        return;
    }
    m_timer.stop();
    qCDebug(lcFileSystem) << "Directory listing has finished. Paths:" << m_paths.size()
                          << ", succeeded:" << m_succeeded.size() << ", failed:" << m_failed.size();
    Q_EMIT isCachingChanged();
    Q_EMIT isReadyChanged();
}

void AsyncFileSystemReader::handleDirectoryListerFinishing()
{
    auto* const lister = qobject_cast<RecursiveDirectoryLister*>(sender());
    if (!lister || lister != m_current.get())
        return;
    qCDebug(lcFileSystem) << "Asynchronous directory lister has"
                          << (lister->hasFinished() ? "finished" : "started") << "for path"
                          << lister->directoryPath();
    if (lister->hasFinished())
        (lister->isValid() ? m_succeeded : m_failed).push_back(std::move(m_current));
}

void AsyncFileSystemReader::hanldeDirectoryListerRunningChanged()
{
    if (const auto* const lister = qobject_cast<RecursiveDirectoryLister*>(sender()))
        qCDebug(lcFileSystem) << "Asynchronous directory lister for path" << lister->directoryPath()
                              << (lister->isRunning() ? "running" : "stopped");
}

void AsyncFileSystemReader::reset()
{
    qCDebug(lcFileSystem, "Resetting file system reader");
    const bool wasCaching = isCaching();
    const bool wasReady = isReady();
    m_timer.stop();
    m_paths.clear();
    m_depths.clear();
    dropListers();
    Q_EMIT cachePathsChanged();
    if (wasCaching)
        Q_EMIT isCachingChanged();
    if (wasReady)
        Q_EMIT isReadyChanged();
}

/// The nearest of those that lie above: what a limit has kept one from reading may be another's own.
RecursiveDirectoryLister* AsyncFileSystemReader::listerFor(const QString& path) const
{
    RecursiveDirectoryLister* nearest = nullptr;
    for (const ListerPtr& lister : m_succeeded) {
        const QString root = lister->directoryPath();
        const bool covers = isSamePath(path, root) || isPathBelow(path, root);
        if (covers && (!nearest || isPathBelow(root, nearest->directoryPath())))
            nearest = lister.get();
    }
    return nearest;
}

QList<std::filesystem::path> AsyncFileSystemReader::getFileSystemPaths(const std::filesystem::path& path)
{
    return getFileSystemPaths(QString::fromStdString(path.generic_string()));
}

QList<std::filesystem::path> AsyncFileSystemReader::getFileSystemPaths(const QString& path)
{
    if (!isReady()) {
        qCWarning(lcFileSystem) << "Failed to return" << path
                                << "content since the file system reader is not ready";
        return {};
    }
    const RecursiveDirectoryLister* const lister = listerFor(path);
    if (!lister) {
        qCWarning(lcFileSystem) << "Failed to read" << path << "content from mismatching cache paths";
        return {};
    }
    qCDebug(lcFileSystem) << "Using lister" << lister << "with depth" << lister->depthLimit()
                          << "for finding path" << path << "content";
    ReadDirectories read(lister->contents());
    if (!read.contains(path)) {
        qCWarning(lcFileSystem) << "Unable to find paths for" << path;
        return {};
    }
    const QList<std::filesystem::path> paths = read.getFileSystemPaths(path);
    qCDebug(lcFileSystem) << "Path" << path << "(" << lister->depthLimit() << ") has" << paths.size()
                          << "items";
    return paths;
}

ReadDirectories AsyncFileSystemReader::readDirectories() const
{
    ReadDirectories read;
    for (const ListerPtr& lister : m_succeeded) {
        if (isReady())
            read.add(lister->contents());
    }
    return read;
}

} // namespace vantrel
