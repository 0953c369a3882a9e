#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Gives a slot another name.
class RenameSlotCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, int slot, const QString& name);
};

} // namespace vantrel
