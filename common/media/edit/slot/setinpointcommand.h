#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Moves the in point of a slot. Seconds.
class SetInpointCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, const QString& slotUrl, double inpoint);
};

} // namespace vantrel
