#include "common/filesystem/server/serverlistings.h"

#include "common/filesystem/model/pathhelpers.h"

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int freshFor = 6000; // milliseconds
constexpr int dayMs = 24 * 60 * 60 * 1000;

QString keyOf(const QString& directory)
{
    const QString path = normalizePath(directory);
    return path.endsWith(u'/') ? path : path + u'/';
}

FileSystem::ItemType itemType(ClientFileSystemType type)
{
    switch (type) {
    case ClientFileSystemType::File:
        return FileSystem::File;
    case ClientFileSystemType::Directory:
        return FileSystem::Directory;
    case ClientFileSystemType::Unknown:
        break;
    }
    return FileSystem::Unknown;
}

void removeByName(QList<ClientFileSystemInfo>& entries, const QString& name)
{
    const auto found = std::ranges::find(entries, name, &ClientFileSystemInfo::name);
    if (found != entries.end())
        entries.erase(found);
}

} // namespace

DirectoryListingRequest* ServerListings::find(const QString& directory)
{
    const auto found = m_listings.find(keyOf(directory));
    return found == m_listings.end() ? nullptr : &*found;
}

bool ServerListings::isFresh(const QString& directory) const
{
    const auto found = m_listings.constFind(keyOf(directory));
    if (found == m_listings.constEnd() || !found->time.isValid())
        return false;
    const int age = (found->time.msecsTo(m_clock()) + dayMs) % dayMs; // midnight may lie between
    return age < freshFor;
}

bool ServerListings::isKnown(const QString& directory) const
{
    const auto found = m_listings.constFind(keyOf(directory));
    return found != m_listings.constEnd() && found->isAnswered && isFresh(directory);
}

void ServerListings::noteRequest(const QString& directory)
{
    m_listings[keyOf(directory)].time = m_clock();
}

void ServerListings::noteNoAnswer(const QString& directory)
{
    const QString key = keyOf(directory);
    const auto found = m_listings.find(key);
    if (found == m_listings.end())
        return;
    found->time = {};
    if (!found->isAnswered && !found->isWatched)
        m_listings.erase(found);
}

void ServerListings::store(const QString& directory, ClientListing entries)
{
    Listing& listing = m_listings[keyOf(directory)];
    listing.time = m_clock();
    listing.isAnswered = true;
    listing.entries = std::move(entries.shown);
    listing.all = std::move(entries.all);
}

bool ServerListings::markStale(const QString& directory)
{
    DirectoryListingRequest* listing = find(directory);
    if (!listing)
        return false;
    listing->time = {};
    return true;
}

QStringList ServerListings::markTreeStale(const QString& directory)
{
    QStringList watched;
    const QString key = keyOf(directory);
    for (auto found = m_listings.lowerBound(key); found != m_listings.end() && found.key().startsWith(key);
         ++found) {
        found->time = {};
        if (found->isWatched)
            watched.append(found.key());
    }
    return watched;
}

void ServerListings::markAllUnanswered()
{
    for (Listing& listing : m_listings)
        if (!listing.isAnswered)
            listing.time = {};
}

void ServerListings::add(const QString& path, ClientFileSystemType type, qint64 sizeBytes)
{
    const QString plain = withoutTrailingSlash(path);
    const bool isDirectory = type == ClientFileSystemType::Directory;
    const ClientFileSystemInfo entry{type, getNameInPath(plain), isDirectory ? plain + u'/' : plain,
                                     sizeBytes, false};
    if (const auto parent = m_listings.find(keyOf(getParentPath(plain))); parent != m_listings.end()) {
        if (parent->all.contains(entry.name))
            removeByName(parent->entries, entry.name);
        parent->all.insert(entry.name, entry);
        if (ClientListing::isShown(entry))
            parent->entries.append(entry);
    }
}

void ServerListings::remove(const QString& path)
{
    const QString plain = withoutTrailingSlash(path);
    const QString name = getNameInPath(plain);
    if (const auto parent = m_listings.find(keyOf(getParentPath(plain))); parent != m_listings.end()) {
        parent->all.remove(name);
        removeByName(parent->entries, name);
    }
    const QString key = keyOf(plain);
    for (auto found = m_listings.lowerBound(key); found != m_listings.end() && found.key().startsWith(key);)
        found = m_listings.erase(found);
}

FileSystem::ItemType ServerListings::type(const QString& path) const
{
    if (withoutTrailingSlash(path) == QStringLiteral("/"))
        return FileSystem::Directory;
    const std::optional<ClientFileSystemInfo> found = entry(path);
    return found && ClientListing::isShown(*found) ? itemType(found->type) : FileSystem::Unknown;
}

std::optional<ClientFileSystemInfo> ServerListings::entry(const QString& path) const
{
    const QString plain = withoutTrailingSlash(path);
    const auto parent = m_listings.constFind(keyOf(getParentPath(plain)));
    if (parent == m_listings.constEnd())
        return {};
    const auto found = parent->all.constFind(getNameInPath(plain));
    return found == parent->all.constEnd() ? std::nullopt : std::optional(*found);
}

int ServerListings::otherFiles(const QString& directory) const
{
    const auto listing = m_listings.constFind(keyOf(directory));
    if (listing == m_listings.constEnd())
        return 0;
    return static_cast<int>(std::ranges::count_if(listing->all, [](const ClientFileSystemInfo& entry) {
        return entry.type == ClientFileSystemType::File && !entry.name.startsWith(u'.') &&
               !ClientListing::isShown(entry);
    }));
}

qint64 ServerListings::fileSize(const QString& path) const
{
    const std::optional<ClientFileSystemInfo> found = entry(path);
    return found && found->type == ClientFileSystemType::File && ClientListing::isShown(*found)
               ? found->sizeBytes
               : -1;
}

} // namespace vantrel
