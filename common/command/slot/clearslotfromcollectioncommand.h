#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Leaves an empty slot where there was one.
class ClearSlotFromCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, int slot);
};

} // namespace vantrel
