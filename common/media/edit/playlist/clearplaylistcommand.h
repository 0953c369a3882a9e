#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Removes all entries of a playlist.
class ClearPlaylistCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist);
};

} // namespace vantrel
