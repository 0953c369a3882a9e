#pragma once

#include "common/filesystem/ftp/clientlisting.h"
#include "common/filesystem/model/filesystem.h"

#include <QHash>
#include <QMap>
#include <QTime>

#include <functional>
#include <optional>

namespace vantrel {

/// One directory as the server listed it.
struct DirectoryListingRequest
{
    QTime time;                          // of the request or of the last answer; invalid: stale
    QList<ClientFileSystemInfo> entries; // what is shown of it, possibly the answer of an earlier request
    bool isAnswered = false;
    bool isWatched = false; // somebody shows it
};

/// What is known of the server's directories, hidden files included, from its listings and from what was
/// changed there by the application itself. A value of the server file system; directories may be given with
/// or without the "/" at their end.
class ServerListings
{
public:
    using Clock = std::function<QTime()>;

    /// A clock of a test's.
    void setClock(Clock clock) { m_clock = std::move(clock); }
    QTime now() const { return m_clock(); }

    /// Null when it was never asked for.
    DirectoryListingRequest* find(const QString& directory);
    qsizetype count() const { return m_listings.size(); }
    /// Asked for or answered within the last six seconds.
    bool isFresh(const QString& directory) const;
    /// Fresh, and answered: what is not in it is not there.
    bool isKnown(const QString& directory) const;
    void noteRequest(const QString& directory);
    /// No answer will come to the last request.
    void noteNoAnswer(const QString& directory);
    /// An answer.
    void store(const QString& directory, ClientListing entries);
    /// False when it was never asked for.
    bool markStale(const QString& directory);
    /// It and all below it; gives those that somebody shows.
    QStringList markTreeStale(const QString& directory);
    /// What was asked for will not be answered.
    void markAllUnanswered();

    /// What was made, and what was removed, by the application itself; directories with all that they hold.
    void add(const QString& path, ClientFileSystemType type, qint64 sizeBytes);
    void remove(const QString& path);

    /// Of what is shown; the root is a directory.
    FileSystem::ItemType type(const QString& path) const;
    /// Shown or not; nothing when it is in no listing.
    std::optional<ClientFileSystemInfo> entry(const QString& path) const;
    /// Files that are no media, without hidden ones.
    int otherFiles(const QString& directory) const;
    /// Bytes of a shown file; -1 for anything else.
    qint64 fileSize(const QString& path) const;

private:
    struct Listing : DirectoryListingRequest
    {
        QHash<QString, ClientFileSystemInfo> all; // by name
    };

    Clock m_clock = [] { return QTime::currentTime(); };
    QMap<QString, Listing> m_listings; // by path, which ends with "/"
};

} // namespace vantrel
