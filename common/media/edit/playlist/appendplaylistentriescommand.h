#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"

#include <QList>

namespace vantrel {

/// Moves entries of a playlist past its last one.
class AppendPlaylistEntriesCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist, const QList<EntryAddress>& addresses);
};

} // namespace vantrel
