#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"

#include <QList>

namespace vantrel {

/// Moves entries of a playlist behind another one.
class DragPlaylistEntriesCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    /// An invalid target is the start of the list.
    bool init(const MediaLibrary* library, int playlist, const QList<EntryAddress>& addresses,
              const EntryAddress& target);
};

} // namespace vantrel
