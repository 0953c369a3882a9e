#include "common/filesystem/local/locallistings.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"

#include <algorithm>

namespace vantrel {

namespace {

constexpr qsizetype mostWatched = 10;
// An unwatched answer serves the two calls that ask for directories and files, and hardly more.
constexpr qint64 unwatchedMs = 2000;
// Disks of other machines do not tell what happens there: what was looked at longer ago is read again behind
// the answer.
constexpr qint64 watchedMs = 6000;
// Whoever asks gets what was true after that, but not never where something happens without end.
constexpr int mostRereadings = 3;

} // namespace

LocalListings::LocalListings(QObject* parent)
    : QObject(parent)
{
    // A disk that hangs must not hold the others up.
    m_pool.setMaxThreadCount(4);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this](const QString& path) {
        invalidate(path);
        Q_EMIT touched(path);
    });
}

LocalListings::~LocalListings()
{
    m_pool.clear();
    m_pool.waitForDone();
}

bool LocalListings::isWatched(const QString& path) const
{
    return m_watcher.directories().contains(path);
}

const DirectoryContent* LocalListings::find(const QString& path)
{
    const QString key = withoutTrailingSlash(path);
    Entry& entry = m_entries[key];
    const bool isOld = entry.age.isValid() && entry.age.hasExpired(isWatched(key) ? watchedMs : unwatchedMs);
    const bool holds = entry.content && !entry.isStale && (!isOld || isWatched(key));
    if (!holds || isOld)
        read(key, entry);
    entry.isAwaited |= !holds;
    return holds ? &*entry.content : nullptr;
}

FileSystem::ItemType LocalListings::typeOf(const QString& path) const
{
    const QString key = withoutTrailingSlash(path);
    const QString name = getNameInPath(key);
    const auto holder = m_entries.constFind(withoutTrailingSlash(getParentPath(key)));
    if (m_entries.contains(key) && m_entries[key].content)
        return FileSystem::Directory;
    if (holder == m_entries.constEnd() || !holder->content)
        return FileSystem::Unknown;
    const auto holds = [&name](const auto& items) {
        return std::ranges::any_of(items, [&name](const auto& item) { return item.name == name; });
    };
    return holds(holder->content->directories) ? FileSystem::Directory
           : holds(holder->content->files)     ? FileSystem::File
                                               : FileSystem::Unknown;
}

int LocalListings::otherFiles(const QString& path) const
{
    const auto entry = m_entries.constFind(withoutTrailingSlash(path));
    return entry != m_entries.cend() && entry->content ? entry->content->otherFiles : 0;
}

void LocalListings::watch(const QString& path)
{
    const QString key = withoutTrailingSlash(path);
    if (isWatched(key))
        return;
    if (m_watcher.addPath(key))
        qCInfo(lcFileSystem) << "Observing folder changes:" << key;
    else
        qCWarning(lcFileSystem) << "Failed to watch path" << key;
    const QStringList watched = m_watcher.directories();
    if (watched.size() > mostWatched)
        m_watcher.removePaths(watched.first(watched.size() - mostWatched));
}

void LocalListings::invalidate(const QString& path)
{
    const auto entry = m_entries.find(withoutTrailingSlash(path));
    if (entry == m_entries.end())
        return;
    entry->isStale = true;
    entry->isAgain = entry->isReading;
}

void LocalListings::refresh(const QString& path)
{
    const QString key = withoutTrailingSlash(path);
    const auto entry = m_entries.find(key);
    if (entry == m_entries.end()) {
        Q_EMIT changed(key);
        return;
    }
    entry->isStale = true;
    entry->isAwaited = true;
    entry->isAgain = entry->isReading;
    read(key, *entry);
}

void LocalListings::read(const QString& path, Entry& entry)
{
    if (entry.isReading)
        return;
    entry.isReading = true;
    m_pool.start([this, path] {
        std::optional<DirectoryContent> content = DirectoryContent::read(path);
        QMetaObject::invokeMethod(
            this, [this, path, content = std::move(content)]() mutable { take(path, std::move(content)); },
            Qt::QueuedConnection);
    });
}

void LocalListings::take(const QString& path, std::optional<DirectoryContent> content)
{
    const auto found = m_entries.find(path);
    if (found == m_entries.end())
        return;
    Entry& entry = *found;
    entry.isReading = false;
    if (std::exchange(entry.isAgain, false) && entry.rereadings++ < mostRereadings) {
        read(path, entry);
        return;
    }
    entry.rereadings = 0;
    const bool isNews = std::exchange(entry.isAwaited, false) || entry.content != content;
    entry.isStale = false;
    entry.age.start();
    if (content)
        entry.content = std::move(content);
    else
        m_entries.erase(found);
    forgetOld();
    if (isNews)
        Q_EMIT changed(path);
}

void LocalListings::forgetOld()
{
    erase_if(m_entries, [this](const QHash<QString, Entry>::iterator entry) {
        return !entry->isReading && entry->age.hasExpired(unwatchedMs) && !isWatched(entry.key());
    });
}

} // namespace vantrel
