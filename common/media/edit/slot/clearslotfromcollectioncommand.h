#pragma once

#include "common/command/libraryeditcommand.h"

#include <QList>

namespace vantrel {

/// Leaves an empty slot where there was one, or where there were several.
class ClearSlotFromCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, int slot);
    bool init(const MediaLibrary* library, int collection, const QList<int>& slotNumbers);
};

} // namespace vantrel
