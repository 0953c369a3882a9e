#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/mediaaddress.h"

#include <QList>

namespace vantrel {

/// Moves slots of whatever collections to consecutive numbers of one, in the order given and onto whatever is
/// there; where they were and none of them goes, empty slots stay behind. Playlists go on playing them.
class MoveSlotsToCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, const QList<MediaAddress>& from, int collection, int toSlot);
};

} // namespace vantrel
