#pragma once

#include "common/media/edit/playlist/addmediatoplaylistcommand.h"

namespace vantrel {

/// Adds whole entries, with their transitions and end actions, to a playlist; makes the list where there is
/// none.
class PastePlaylistEntriesCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist, AddMediaToPlaylistCommand::AddMode mode,
              const EntryAddress& address, const QList<PlaylistEntry>& entries);
};

} // namespace vantrel
