#pragma once

#include "common/command/libraryeditcommand.h"

namespace vantrel {

/// Copies a collection with all its slots to a free index.
class CopyCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    int id() const override;
    bool init(const MediaLibrary* library, int fromCollection, int toCollection);
};

} // namespace vantrel
