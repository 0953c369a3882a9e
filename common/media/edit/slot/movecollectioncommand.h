#pragma once

#include "common/command/libraryeditcommand.h"

#include <map>

namespace vantrel {

/// Puts a collection in front of another one in the order of their numbers. Playlists go on playing the same
/// slots, which have other addresses then.
class MoveCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    /// The new numbers by the old ones, of all that get another: between two others the collection takes a
    /// free number. Where there is none it takes that of its neighbour and pushes aside, towards where it
    /// came from, as few as it can; so it does at both ends where all up to there are numbered without a gap.
    /// before: -1 is behind all. Empty where nothing would change.
    static std::map<int, int> numbersFor(const MediaLibrary& library, int collection, int before);

    bool init(const MediaLibrary* library, int collection, int before);
};

} // namespace vantrel
