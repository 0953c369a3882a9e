#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"

#include <QList>

namespace vantrel {

class Playlist;
class PlaylistEntry;

/// Adds media to a playlist that exists.
class AddMediaToPlaylistCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    /// Where entries go, seen from an entry's address. Replace puts the first one in that entry's place and
    /// the others behind it; AtEnd looks at no address.
    enum AddMode : int { Before = 0, Replace = 1, After = 2, AtEnd = 3 };

    /// The URLs name slots. After an invalid address is the start of the list.
    bool init(const MediaLibrary* library, int playlist, AddMode mode, const EntryAddress& address,
              const QList<QString>& urls);

    /// Puts entries into a list in their order; false, after a warning, where they find no room.
    static bool place(Playlist& list, AddMode mode, const EntryAddress& address,
                      QList<PlaylistEntry> entries);
};

} // namespace vantrel
