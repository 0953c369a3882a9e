#include "common/filesystem/operations/recursivedirectorylister.h"

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace vantrel {

using namespace std::chrono_literals;

namespace {

constexpr auto interval = 10ms;
// Of a tree without a limit: what is deeper goes in circles, by a link to a directory above it.
constexpr qint64 maxDepth = 100;

} // namespace

RecursiveDirectoryLister::RecursiveDirectoryLister(FileSystem* fileSystem, const QString& path,
                                                   qint64 depthLimit, QObject* parent)
    : QObject(parent)
    , m_fileSystem(fileSystem)
    , m_directoryPath(path)
    , m_depthLimit(depthLimit)
{
    if (fileSystem)
        connect(fileSystem, &FileSystem::invalidDirectoryPathRequest, this,
                &RecursiveDirectoryLister::handleInvalidDirectoryRequest);
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &RecursiveDirectoryLister::handleNextDirectoryRequest);
}

RecursiveDirectoryLister::~RecursiveDirectoryLister() = default;

QString RecursiveDirectoryLister::key(const QString& path)
{
    return path.size() > 1 && path.endsWith(QLatin1Char('/')) ? path.chopped(1) : path;
}

bool RecursiveDirectoryLister::isDeepEnough(qint64 depth) const
{
    return depth + 1 >= (m_depthLimit > 0 ? m_depthLimit : maxDepth);
}

void RecursiveDirectoryLister::start()
{
    qCDebug(lcFileSystem) << "Starting listing directories for path" << m_directoryPath;
    if (m_isRunning) {
        qCDebug(lcFileSystem) << "Already running directory listing." << this;
        return;
    }
    m_directories.clear();
    m_files.clear();
    m_depths.clear();
    m_queue.clear();
    m_inFlight.clear();
    m_hasFailed = m_isValid = m_hasFinished = false;
    Q_EMIT isValidChanged();
    Q_EMIT hasFinishedChanged();
    if (m_fileSystem)
        connect(m_fileSystem, &FileSystem::directoryChanged, this,
                &RecursiveDirectoryLister::onDirectoryChanged, Qt::QueuedConnection);
    m_depths.insert(key(m_directoryPath), 0);
    m_queue.enqueue(m_directoryPath);
    m_timer.start();
    m_isRunning = true;
    Q_EMIT isRunningChanged();
}

void RecursiveDirectoryLister::stop()
{
    stopRequests(false);
}

void RecursiveDirectoryLister::handleNextDirectoryRequest()
{
    if (!m_fileSystem)
        return stopRequests(false); // nobody will answer any more
    if (!m_inFlight.isEmpty() || !m_fileSystem->isReady() || m_fileSystem->isLoading())
        return;
    qCDebug(lcFileSystem) << "Handling next path in directory lister for" << m_directoryPath
                          << "- Paths:" << m_queue.size();
    if (m_queue.isEmpty())
        return stopRequests(!m_hasFailed);
    const QString path = m_inFlight = m_queue.dequeue();
    QList<FileSystemDirectory> directories;
    QList<FileSystemFile> files;
    const bool hasDirectories = m_fileSystem->getDirectories(path, directories);
    const bool hasFiles = m_fileSystem && m_fileSystem->getFiles(path, files);
    if (!hasDirectories || !hasFiles || m_inFlight != path)
        return;
    savePathContent(path, directories, files);
    m_inFlight.clear();
}

void RecursiveDirectoryLister::onDirectoryChanged(const FileSystemDirectory& directory)
{
    const QString path = directory.fullPath;
    // What is not on the way is not asked for: it is outside, or too deep.
    if (!m_isRunning || !m_fileSystem || !m_depths.contains(key(path)))
        return;
    qCDebug(lcFileSystem) << "Directory" << path << "request finished for" << this;
    QList<FileSystemDirectory> directories;
    QList<FileSystemFile> files;
    if (!m_fileSystem->getDirectories(path, directories) || !m_fileSystem->getFiles(path, files))
        return;
    savePathContent(path, directories, files);
    if (key(m_inFlight) == key(path))
        m_inFlight.clear();
}

void RecursiveDirectoryLister::savePathContent(const QString& path,
                                               const QList<FileSystemDirectory>& directories,
                                               const QList<FileSystemFile>& files)
{
    const qint64 depth = m_depths.value(key(path));
    QList<FileSystemDirectory> below;
    for (const FileSystemDirectory& directory : directories) {
        if (directory.name == QLatin1String("..") || directory.name == QLatin1String("."))
            continue;
        below.append(directory);
        const QString name = key(directory.fullPath);
        if (isDeepEnough(depth) || m_depths.contains(name))
            continue;
        m_depths.insert(name, depth + 1);
        m_queue.enqueue(directory.fullPath);
    }
    m_directories.insert(key(path), below);
    m_files.insert(key(path), files);
    qCDebug(lcFileSystem) << "Stored" << below.size() << "sub-directories and" << files.size() << "files in"
                          << path << "- Queue size:" << m_queue.size();
}

void RecursiveDirectoryLister::handleInvalidDirectoryRequest(const QString& path)
{
    const auto isIt = [&](const QString& one) { return key(one) == key(path); };
    if (!m_isRunning || (!isIt(m_inFlight) && std::none_of(m_queue.cbegin(), m_queue.cend(), isIt)))
        return;
    qCDebug(lcFileSystem) << "Invalid path request:" << path;
    m_hasFailed = true;
    m_queue.clear();
    m_inFlight.clear();
}

void RecursiveDirectoryLister::stopRequests(bool success)
{
    qCDebug(lcFileSystem) << "Stopping" << this << "listing. Finished succesfully:" << success;
    m_timer.stop();
    if (m_fileSystem)
        disconnect(m_fileSystem, &FileSystem::directoryChanged, this, nullptr);
    m_inFlight.clear();
    m_isValid = success;
    m_hasFinished = true;
    m_isRunning = false;
    Q_EMIT isValidChanged();
    Q_EMIT hasFinishedChanged();
    Q_EMIT isRunningChanged();
}

bool RecursiveDirectoryLister::getRootListing(DirectoryItem& item) const
{
    return getListing(m_directoryPath, item);
}

bool RecursiveDirectoryLister::getListing(const QString& path, DirectoryItem& item) const
{
    DirectoryItem root;
    root.name = QStringLiteral(".");
    const bool isParsed = parseDirectory(path, m_depths.value(key(path)), root);
    qCDebug(lcFileSystem) << (isParsed ? "Succesfully parsed file listing for"
                                       : "Failed to parse directory content for path")
                          << path;
    if (isParsed)
        item = std::move(root);
    return isParsed;
}

bool RecursiveDirectoryLister::parseDirectory(const QString& path, qint64 depth, DirectoryItem& item) const
{
    const auto directories = m_directories.constFind(key(path));
    if (directories == m_directories.constEnd()) {
        qCDebug(lcFileSystem) << "Failed to construct listing of path" << path
                              << "since the content doesn't exist.";
        return false;
    }
    item.type = DirectoryItem::Directory;
    for (const FileSystemDirectory& directory : *directories) {
        DirectoryItem below;
        below.name = directory.name;
        below.type = DirectoryItem::Directory;
        if (!isDeepEnough(depth) && !parseDirectory(directory.fullPath, depth + 1, below)) {
            qCDebug(lcFileSystem) << "Failed to parse sub-directory" << directory.name << "content";
            return false;
        }
        item.sizeBytes += below.sizeBytes;
        item.items.append(below);
    }
    for (const FileSystemFile& file : m_files.value(key(path))) {
        item.sizeBytes += file.sizeBytes;
        item.items.append({file.name, file.sizeBytes, DirectoryItem::File, {}});
    }
    return true;
}

} // namespace vantrel
