#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Removes a playlist with all its entries.
class RemovePlaylistCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist);
};

} // namespace vantrel
