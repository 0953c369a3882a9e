#pragma once

#include "common/command/libraryeditcommand.h"

#include <optional>

namespace vantrel {

/// Moves the out point of a slot, or takes it away. Seconds.
class SetOutpointCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, const QString& slotUrl, std::optional<double> outpoint);
};

} // namespace vantrel
