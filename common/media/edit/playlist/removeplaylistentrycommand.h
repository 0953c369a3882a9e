#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"

#include <QList>

namespace vantrel {

/// Removes entries from a playlist.
class RemovePlaylistEntryCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist, const QList<EntryAddress>& addresses);
};

} // namespace vantrel
