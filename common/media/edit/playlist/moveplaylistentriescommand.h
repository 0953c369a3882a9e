#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"

#include <QList>

namespace vantrel {

/// Moves entries of a playlist past another one: behind it, or in front of it where it stands before the
/// first of them.
class MovePlaylistEntriesCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist, const QList<EntryAddress>& addresses,
              const EntryAddress& target);
};

} // namespace vantrel
