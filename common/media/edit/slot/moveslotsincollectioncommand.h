#pragma once

#include "common/command/libraryeditcommand.h"

#include <QList>

namespace vantrel {

/// Moves slots of a collection to consecutive numbers, in the order given and onto whatever is there; where
/// they were and none of them goes, empty slots stay behind.
class MoveSlotsInCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, const QList<int>& fromSlots, int toSlot);
};

} // namespace vantrel
