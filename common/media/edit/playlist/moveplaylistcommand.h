#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Gives a playlist another number.
class MovePlaylistCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int from, int to);
};

} // namespace vantrel
