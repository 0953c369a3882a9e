#pragma once

#include "common/command/libraryeditcommand.h"

#include <cstdint>

namespace vantrel {

enum class ScaleMode : std::int32_t;

/// Sets how a slot's picture fills the output.
class EditSlotScalingCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, int slot, ScaleMode mode);
};

} // namespace vantrel
