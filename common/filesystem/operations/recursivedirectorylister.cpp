#include "common/filesystem/operations/recursivedirectorylister.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"

#include <QDebug>
#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int tick = 10;            // milliseconds; only a fallback: answers wake the lister at once
constexpr int patience = 100;       // ticks until an answer that does not come is asked for again
constexpr qint64 sliceTime = 5;     // milliseconds of reading before the window may breathe
constexpr qint64 deepestLevel = 64; // deeper leads only what leads back into itself

} // namespace

RecursiveDirectoryLister::RecursiveDirectoryLister(FileSystem* fileSystem, const QString& path,
                                                   qint64 depthLimit, QObject* parent)
    : QObject(parent)
    , m_fileSystem(fileSystem)
    , m_directoryPath(path)
    , m_depthLimit(depthLimit)
{
    m_timer.setInterval(tick);
    connect(&m_timer, &QTimer::timeout, this, &RecursiveDirectoryLister::onTick);
    if (!fileSystem)
        return;
    connect(fileSystem, &FileSystem::invalidDirectoryPathRequest, this,
            &RecursiveDirectoryLister::handleInvalidDirectoryRequest);
    connect(fileSystem, &FileSystem::isReadyChanged, this, &RecursiveDirectoryLister::wake);
    connect(fileSystem, &FileSystem::isLoadingChanged, this, &RecursiveDirectoryLister::wake);
}

RecursiveDirectoryLister::~RecursiveDirectoryLister()
{
    giveUpInFlight();
}

void RecursiveDirectoryLister::start()
{
    qCDebug(lcFileSystem) << "Starting listing directories for path" << m_directoryPath;
    if (m_isRunning) {
        qCDebug(lcFileSystem) << "Already running directory listing." << *this;
        return;
    }
    m_contents.clear();
    m_depths.clear();
    m_queue.clear();
    m_inFlight.clear();
    m_hasFailed = false;
    m_isTooDeep = false;
    m_otherFiles = 0;
    m_isValid = false;
    m_hasFinished = false;
    Q_EMIT isValidChanged();
    Q_EMIT hasFinishedChanged();
    if (m_fileSystem)
        m_following = connect(m_fileSystem, &FileSystem::directoryChanged, this,
                              &RecursiveDirectoryLister::onDirectoryChanged, Qt::QueuedConnection);
    m_queue.enqueue(m_directoryPath);
    m_depths.insert(withoutTrailingSlash(m_directoryPath), 0);
    m_isRunning = true;
    m_timer.start();
    wake();
    Q_EMIT isRunningChanged();
}

void RecursiveDirectoryLister::stop()
{
    if (m_isRunning || !m_hasFinished)
        stopRequests(false);
}

void RecursiveDirectoryLister::forget()
{
    if (m_isRunning)
        return;
    m_contents.clear();
    m_depths.clear();
}

void RecursiveDirectoryLister::stopRequests(bool success)
{
    qCDebug(lcFileSystem) << "Stopping" << *this
                          << "listing. Finished succesfully:" << (success ? "true" : "false");
    m_timer.stop();
    disconnect(m_following);
    m_queue.clear();
    giveUpInFlight();
    m_isValid = success;
    m_hasFinished = true;
    m_isRunning = false;
    const QPointer<RecursiveDirectoryLister> self(this); // who hears of the end may let go of this
    Q_EMIT isValidChanged();
    if (self)
        Q_EMIT hasFinishedChanged();
    if (self)
        Q_EMIT isRunningChanged();
}

/// A folder of a million files would be listed for a minute that nobody waits for, and hold up all others.
void RecursiveDirectoryLister::giveUpInFlight()
{
    const QString path = std::exchange(m_inFlight, {});
    if (!path.isEmpty() && m_fileSystem)
        m_fileSystem->giveUpListing(path);
}

void RecursiveDirectoryLister::wake()
{
    if (!m_isRunning || std::exchange(m_isWoken, true))
        return;
    QMetaObject::invokeMethod(this, &RecursiveDirectoryLister::handleNextDirectoryRequest,
                              Qt::QueuedConnection);
}

void RecursiveDirectoryLister::onTick()
{
    if (m_inFlight.isEmpty() || ++m_ticksInFlight >= patience)
        handleNextDirectoryRequest();
}

void RecursiveDirectoryLister::handleNextDirectoryRequest()
{
    m_isWoken = false;
    QElapsedTimer clock;
    clock.start();
    while (m_isRunning) {
        if (!m_fileSystem)
            return stopRequests(false);
        if (!m_fileSystem->isReady() || m_fileSystem->isLoading())
            return;
        if (m_inFlight.isEmpty() && m_queue.isEmpty())
            return stopRequests(!m_hasFailed);
        if (clock.elapsed() >= sliceTime)
            return wake();
        if (!askForNext())
            return;
    }
}

/// The one in flight once more, whose answer may have been lost, or the next. True when it was answered at
/// once.
bool RecursiveDirectoryLister::askForNext()
{
    if (m_inFlight.isEmpty()) {
        m_inFlight = m_queue.dequeue();
        qCDebug(lcFileSystem) << "Handling next path in directory lister for" << m_directoryPath
                              << "- Paths:" << m_queue.size();
    }
    const QString path = m_inFlight;
    m_ticksInFlight = 0;
    if (!m_fileSystem->isValidDirectoryPath(path)) {
        handleInvalidDirectoryRequest(path);
        return true;
    }
    Content content;
    const bool hasDirectories = m_fileSystem->getDirectories(path, content.directories);
    const bool hasFiles = m_fileSystem->getFiles(path, content.files);
    // One that has been asked just now answers with what it knew before.
    if (!hasDirectories || !hasFiles || m_fileSystem->isLoading() || m_inFlight != path)
        return false;
    savePathContent(path, content);
    m_otherFiles += m_fileSystem->otherFiles(path);
    m_inFlight.clear();
    return true;
}

void RecursiveDirectoryLister::onDirectoryChanged(const FileSystemDirectory& directory)
{
    if (!m_isRunning || m_inFlight.isEmpty() ||
        withoutTrailingSlash(directory.fullPath) != withoutTrailingSlash(m_inFlight))
        return;
    qCDebug(lcFileSystem) << "Directory" << directory.fullPath << "request finished for" << *this;
    wake();
}

void RecursiveDirectoryLister::savePathContent(const QString& path, const Content& content)
{
    const QString key = withoutTrailingSlash(path);
    const qint64 below = m_depths.value(key) + 1;
    const bool isDeepEnough = m_depthLimit > 0 && below >= m_depthLimit;
    for (const FileSystemDirectory& directory : content.directories) {
        const QString directoryKey = withoutTrailingSlash(directory.fullPath);
        if (directory.name == QStringLiteral("..") || isDeepEnough || m_depths.contains(directoryKey))
            continue;
        if (below > deepestLevel || directory.leadsBack) {
            m_isTooDeep = true;
            continue;
        }
        m_depths.insert(directoryKey, below);
        m_queue.enqueue(directory.fullPath);
    }
    m_contents.insert(key, content);
    qCDebug(lcFileSystem) << "Stored" << content.directories.size() << "sub-directories and"
                          << content.files.size() << "files in" << path << "- Queue size:" << m_queue.size();
}

void RecursiveDirectoryLister::handleInvalidDirectoryRequest(const QString& path)
{
    const auto isThis = [key = withoutTrailingSlash(path)](const QString& asked) {
        return withoutTrailingSlash(asked) == key;
    };
    const bool isInFlight = !m_inFlight.isEmpty() && isThis(m_inFlight);
    if (!m_isRunning || (!isInFlight && std::ranges::none_of(m_queue, isThis)))
        return;
    qCInfo(lcFileSystem) << "Invalid path request:" << path;
    m_hasFailed = true;
    m_queue.clear();
    m_inFlight.clear();
    wake();
}

bool RecursiveDirectoryLister::getListing(const QString& path, DirectoryItem& item) const
{
    DirectoryItem root{QStringLiteral("."), 0, DirectoryItem::Directory, {}};
    const bool isParsed = parseDirectory(path, m_depths.value(withoutTrailingSlash(path)), root);
    if (isParsed) {
        qCDebug(lcFileSystem) << "Succesfully parsed file listing for" << path;
        item = std::move(root);
    } else {
        qCDebug(lcFileSystem) << "Failed to parse directory content for path" << path;
    }
    return isParsed;
}

bool RecursiveDirectoryLister::parseDirectory(const QString& path, qint64 depth, DirectoryItem& item) const
{
    const auto content = m_contents.constFind(withoutTrailingSlash(path));
    if (content == m_contents.constEnd()) {
        qCDebug(lcFileSystem) << "Failed to construct listing of path" << path
                              << "since the content doesn't exist.";
        return false;
    }
    for (const FileSystemDirectory& directory : content->directories) {
        if (directory.name == QStringLiteral(".."))
            continue;
        DirectoryItem child{directory.name, 0, DirectoryItem::Directory, {}};
        const bool isRead = m_depthLimit == 0 || depth + 1 < m_depthLimit;
        if (isRead && !parseDirectory(directory.fullPath, depth + 1, child)) {
            qCDebug(lcFileSystem) << "Failed to parse sub-directory" << directory.name << "content";
            return false;
        }
        item.sizeBytes += child.sizeBytes;
        item.items.append(std::move(child));
    }
    for (const FileSystemFile& file : content->files) {
        item.items.append({file.name, file.sizeBytes, DirectoryItem::File, {}});
        item.sizeBytes += file.sizeBytes;
    }
    return true;
}

QDebug operator<<(QDebug debug, const RecursiveDirectoryLister& lister)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "RecursiveDirectoryLister(" << lister.directoryPath() << ')';
    return debug;
}

} // namespace vantrel
