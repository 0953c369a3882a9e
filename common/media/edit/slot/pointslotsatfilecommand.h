#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/mediaaddress.h"

#include <QList>

namespace vantrel {

class GuiMediaSlot;

/// Lets slots, in whatever collections, play another file than before. Names, scaling, and the points that
/// lie within the file stay; what was chosen for another kind of media does not.
class PointSlotsAtFileCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    /// file: its URL, kind, length (0 for one that nobody knows), and whether it can be played.
    bool init(const MediaLibrary* library, const QList<MediaAddress>& slotAddresses,
              const GuiMediaSlot& file);
};

} // namespace vantrel
