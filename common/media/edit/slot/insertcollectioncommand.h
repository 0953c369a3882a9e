#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Adds an empty collection.
class InsertCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    int id() const override;
    bool init(const MediaLibrary* library, int collection, const QString& name);
};

} // namespace vantrel
