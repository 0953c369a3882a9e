#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/playlistentry.h"

#include <QList>

#include <utility>

namespace vantrel {

class Playlist;

/// Makes a playlist of entries that come with their addresses. A list that has the number keeps its name and
/// loses what it holds.
class ImportPlaylistCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    using Entries = QList<std::pair<EntryAddress, PlaylistEntry>>;

    bool init(const MediaLibrary* library, int playlist, const QString& name, const Entries& entries);
    /// As a copy of a whole list.
    bool init(const MediaLibrary* library, int playlist, const Playlist& list);

private:
    static QString textFor(int playlist);
};

} // namespace vantrel
