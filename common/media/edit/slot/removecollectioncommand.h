#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Removes a collection with all its slots.
class RemoveCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    int id() const override;
    bool init(const MediaLibrary* library, int collection);
};

} // namespace vantrel
