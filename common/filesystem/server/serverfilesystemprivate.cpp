// What the server file system answers.

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/server/serverfilesystem_p.h"
#include "common/filesystem/server/servertask.h"
#include "common/session/session.h"

#include <algorithm>
#include <utility>

namespace vantrel {

ServerFileSystemPrivate::ServerFileSystemPrivate(ServerFileSystem* q, const QUrl& server,
                                                 QSharedPointer<FileSystemClient> client)
    : m_q(q)
    , m_client(std::move(client))
    , m_server(server)
    , m_commands(m_client)
{
    const FileSystemClient* raw = m_client.data();
    // A listing is kept before the task that wanted it goes on.
    connect(raw, &FileSystemClient::listFinished, this, &ServerFileSystemPrivate::onListFinished);
    m_commands.follow();
    connect(raw, &FileSystemClient::isServerConnectedChanged, this,
            &ServerFileSystemPrivate::onServerConnectionChanged);
    connect(raw, &FileSystemClient::isServerConnectedChanged, q,
            &ServerFileSystem::isConnectedToServerChanged);
    connect(raw, &FileSystemClient::isLoadingChanged, this,
            &ServerFileSystemPrivate::onClienIsLoadingChanged);
    connect(q, &ServerFileSystem::isConnectedToServerChanged, q, &FileSystem::isReadyChanged);
    connect(&m_commands, &ServerCommands::idle, this, &ServerFileSystemPrivate::onClienIsLoadingChanged);
    connect(&m_metadata, &ServerMetadata::changed, q, &FileSystem::fileMetadataChanged);
}

ServerFileSystemPrivate::~ServerFileSystemPrivate() = default;

void ServerFileSystemPrivate::onServerConnectionChanged(bool connected)
{
    qCInfo(lcFileSystem) << "Server is now" << (connected ? "connected" : "disconnected");
    const Session* session = Session::instance();
    m_metadata.setAggregator(connected && session ? session->mediaDataAggregator() : nullptr);
    if (connected)
        return;
    m_listings.markAllUnanswered();
    m_listedPath.clear();
    m_givenUpPath.clear();
}

void ServerFileSystemPrivate::onClienIsLoadingChanged()
{
    if (!isLoading() && !m_wantedPath.isEmpty())
        QMetaObject::invokeMethod(this, &ServerFileSystemPrivate::listWanted, Qt::QueuedConnection);
    tellLoading();
}

void ServerFileSystemPrivate::tellLoading()
{
    const bool isNow = isLoading();
    if (std::exchange(m_isToldLoading, isNow) != isNow)
        Q_EMIT m_q->isLoadingChanged(isNow);
}

/// What a view asked for while the client was busy.
void ServerFileSystemPrivate::listWanted()
{
    if (m_wantedPath.isEmpty())
        return;
    if (m_commands.hasWork())
        return askForWanted();
    if (isLoading())
        return;
    bool hasCache = false;
    bool requested = false;
    requestDirectoryListing(std::exchange(m_wantedPath, {}), &hasCache, &requested);
}

/// In its turn among what operations want, which may leave the client no other time for hours.
void ServerFileSystemPrivate::askForWanted()
{
    const QString path = std::exchange(m_wantedPath, {});
    m_listings.noteRequest(path);
    const auto onListed = [this, path](ServerCommands::Outcome outcome) {
        if (outcome == ServerCommands::Outcome::NotSent)
            m_listings.noteNoAnswer(path);
    };
    m_commands.ask(this, {ServerCommands::Kind::List,
                          [path](FileSystemClient& client) { return client.list(path); }, onListed});
}

QList<ClientFileSystemInfo> ServerFileSystemPrivate::requestDirectoryListing(const QString& path,
                                                                             bool* hasCache, bool* requested)
{
    if (!isValidDirectoryPath(path)) {
        qCInfo(lcFileSystem) << "Path" << path << "is not valid in" << m_q->fileSystemName()
                             << "- Skipping it";
        return {};
    }
    QList<ClientFileSystemInfo> known;
    if (const DirectoryListingRequest* listing = m_listings.find(path)) {
        known = listing->entries;
        *hasCache = listing->isAnswered;
        if (m_listings.isFresh(path)) {
            qCDebug(lcFileSystem) << "Already requested directory" << path << "at"
                                  << listing->time.toString(QStringLiteral("hh:mm:ss.zzz"))
                                  << "- Skipping this request. Cache count:" << known.size();
            return known;
        }
    }
    m_listings.noteRequest(path);
    if (m_client->list(path)) {
        qCDebug(lcFileSystem) << "Requested server directory listing for path" << path;
        m_listedPath = path;
        *requested = true;
    } else {
        qCWarning(lcFileSystem) << "Failed to request directory list from a server";
        m_listings.noteNoAnswer(path);
    }
    return known;
}

bool ServerFileSystemPrivate::getDirectoryListing(const QString& path, QList<ClientFileSystemInfo>& result)
{
    bool hasCache = false;
    if (isLoading()) {
        const DirectoryListingRequest* listing = m_listings.find(path);
        hasCache = listing && listing->isAnswered;
        if (hasCache)
            result = listing->entries;
        if (!m_listings.isFresh(path) && isValidDirectoryPath(path))
            m_wantedPath = path;
    } else {
        bool requested = false;
        result = requestDirectoryListing(path, &hasCache, &requested);
    }
    if (DirectoryListingRequest* listing = m_listings.find(path))
        listing->isWatched = true;
    return hasCache;
}

void ServerFileSystemPrivate::onListFinished(const QString& path, const QList<ClientFileSystemInfo>& entries,
                                             bool succeeded)
{
    const bool isGivenUp = std::exchange(m_givenUpPath, {}) == path;
    if (m_listedPath == path)
        m_listedPath.clear();
    if (succeeded) {
        m_invalidPaths.remove(withoutTrailingSlash(path));
        m_listings.store(path, m_client->takeListing(entries));
        Q_EMIT m_q->directoryChanged(FileSystemDirectory::fromFullPath(path));
        return;
    }
    const DirectoryListingRequest* listing = m_listings.find(path);
    const bool wasAnswered = listing && listing->isAnswered;
    m_listings.noteNoAnswer(path);
    if (!m_client->isServerConnected())
        return; // nothing was said of the path
    if (isGivenUp) {
        // Who waits for it all the same, or was told nothing since it was on its way, asks again.
        Q_EMIT m_q->directoryChanged(FileSystemDirectory::fromFullPath(path));
        return;
    }
    if (wasAnswered)
        qCWarning(lcFileSystem) << "Received invalid directory listing for a path that was requested earlier:"
                                << path;
    else
        m_invalidPaths.insert(withoutTrailingSlash(path));
    Q_EMIT m_q->invalidDirectoryPathRequest(path);
}

/// What operations list is theirs to give up.
void ServerFileSystemPrivate::giveUpListing(const QString& path)
{
    if (m_listedPath.isEmpty() || !m_givenUpPath.isEmpty() || !isSamePath(m_listedPath, path))
        return;
    qCDebug(lcFileSystem) << "Giving up the listing of" << path;
    m_givenUpPath = m_listedPath;
    m_client->abort();
}

bool ServerFileSystemPrivate::isValidDirectoryPath(const QString& path) const
{
    const QString plain = withoutTrailingSlash(path);
    if (plain == QStringLiteral("/"))
        return true;
    // What a newer listing shows is there, whatever the server said before.
    if (m_listings.type(plain) == FileSystem::Directory)
        return true;
    return !m_invalidPaths.contains(plain) && path.startsWith(u'/');
}

bool ServerFileSystemPrivate::getFiles(const QString& path, QList<FileSystemFile>& result)
{
    qCDebug(lcFileSystem) << "Requesting files from" << path;
    if (!m_client->isServerConnected()) {
        qCInfo(lcFileSystem) << "Unable to get server files when it's not connected.";
        return false;
    }
    QList<ClientFileSystemInfo> entries;
    if (getDirectoryListing(path, entries)) {
        result = parseFileList(path, entries);
        return true;
    }
    qCDebug(lcFileSystem) << "Unable to get server files from" << path
                          << "while it's loading and/or no cache is available.";
    return false;
}

QList<FileSystemFile> ServerFileSystemPrivate::parseFileList(const QString& path,
                                                             const QList<ClientFileSystemInfo>& entries)
{
    QList<FileSystemFile> files;
    files.reserve(entries.size());
    const FileSystemDirectory directory = FileSystemDirectory::fromFullPath(path);
    for (const ClientFileSystemInfo& entry : entries)
        if (entry.type == ClientFileSystemType::File)
            files.append({entry.name, entry.sizeBytes, directory});
    return files;
}

bool ServerFileSystemPrivate::getDirectories(const QString& path, QList<FileSystemDirectory>& result)
{
    qCDebug(lcFileSystem) << "Requesting directories from" << path;
    if (!m_client->isServerConnected()) {
        qCInfo(lcFileSystem) << "Unable to get server directories when it's not connected.";
        return false;
    }
    QList<ClientFileSystemInfo> entries;
    if (getDirectoryListing(path, entries)) {
        result += parseDirectoryList(path, entries);
        return true;
    }
    qCDebug(lcFileSystem) << "Unable to get server directories from" << path
                          << "while it's loading and/or no cache is available.";
    return false;
}

QList<FileSystemDirectory>
ServerFileSystemPrivate::parseDirectoryList(const QString& path, const QList<ClientFileSystemInfo>& entries)
{
    const QString up = QStringLiteral("..");
    QList<FileSystemDirectory> directories;
    for (const ClientFileSystemInfo& entry : entries)
        if (entry.type == ClientFileSystemType::Directory && entry.path.startsWith(path))
            directories.append({entry.name, entry.path});
    const bool hasUp = std::ranges::find(directories, up, &FileSystemDirectory::name) != directories.end();
    if (!hasUp && withoutTrailingSlash(path) != QStringLiteral("/"))
        directories.prepend({up, createJoinedPath(path, up, true)});
    return directories;
}

void ServerFileSystemPrivate::giveUp(const QString& message)
{
    const auto tasks = findChildren<ServerTask*>(QString(), Qt::FindDirectChildrenOnly);
    for (ServerTask* task : tasks)
        if (!task->isSettling()) // the server has done its part
            task->giveUp(message);
    Q_EMIT m_q->givenUp(message);
}

} // namespace vantrel
