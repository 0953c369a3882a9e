#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"

#include <QList>

namespace vantrel {

class Playlist;

/// Gives entries of a playlist ascending addresses from a first one on.
class RenumberPlaylistCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    /// The entries take their addresses in the order of the list that is given.
    bool init(const MediaLibrary* library, int playlist, const EntryAddress& first,
              const QList<EntryAddress>& addresses);

    enum class Outcome { Done, NoPlaylist, NoEntry, NoRoom };
    /// What became of the rehearsal; nothing of it where there was none.
    Outcome outcome() const { return m_outcome; }

private:
    static Outcome renumber(Playlist& list, const EntryAddress& first, const QList<EntryAddress>& addresses);

    Outcome m_outcome = Outcome::NoPlaylist;
};

} // namespace vantrel
