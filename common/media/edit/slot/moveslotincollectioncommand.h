#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Moves a slot to a free number of its collection and leaves an empty slot behind.
class MoveSlotInCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, int fromSlot, int toSlot);
};

} // namespace vantrel
