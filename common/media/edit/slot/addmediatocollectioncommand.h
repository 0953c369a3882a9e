#pragma once

#include "common/command/libraryeditcommand.h"

#include <QList>

namespace vantrel {

class GuiMediaSlot;

/// Puts media into consecutive slots, over what they hold.
class AddMediaToCollectionCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int collection, int firstSlot, const QList<GuiMediaSlot>& medias);
};

} // namespace vantrel
