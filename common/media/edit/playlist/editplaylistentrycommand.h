#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/playlistentry.h"

#include <QList>

#include <functional>

namespace vantrel {

/// What an entry of a playlist becomes.
struct EditEntryData
{
    int playlist = 0;
    EntryAddress address;
    PlaylistEntry entry;
};

/// Gives entries of playlists other contents; they keep their addresses.
class EditPlaylistEntryCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    using Change = std::function<void(PlaylistEntry& entry)>;

    /// Changes entries of one playlist in what the change touches; the rest of them stays what it is by then,
    /// edits that are under way included.
    bool init(const MediaLibrary* library, int playlist, const QList<EntryAddress>& addresses,
              const Change& change);
    /// Gives them whole records.
    bool init(const MediaLibrary* library, const QList<EditEntryData>& entries);
    bool init(const MediaLibrary* library, int playlist, const EntryAddress& address,
              const PlaylistEntry& entry);
};

} // namespace vantrel
