#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Gives a collection another name.
class RenameCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, const QString& name);
};

} // namespace vantrel
