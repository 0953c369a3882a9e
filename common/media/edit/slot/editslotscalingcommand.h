#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/mediaenums.h"

namespace vantrel {

/// Sets how a slot's picture fills the output.
class EditSlotScalingCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, int slot, ScaleMode mode);
};

} // namespace vantrel
