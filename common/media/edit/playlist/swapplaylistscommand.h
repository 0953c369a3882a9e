#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Gives two playlists each other's number: how lists are put in order where no number is free.
class SwapPlaylistsCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist, int other);
};

} // namespace vantrel
