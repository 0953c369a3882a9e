#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Gives a playlist another name.
class RenamePlaylistCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist, const QString& name);
};

} // namespace vantrel
