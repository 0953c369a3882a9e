#pragma once

#include "common/media/address/mediautils.h"

namespace vantrel {

class GuiMediaSlot;

/// Edits of a slot that several views offer. Each runs a command of the session; main thread.
class MediaSlotEditFunctional
{
public:
    MediaSlotEditFunctional() = delete;

    static void setScalingMode(MediaAddress slot, ScaleMode mode);
    static bool rename(MediaAddress slot, const QString& name);
    /// One undoable step, however many.
    static bool clearSlots(int collection, const QList<int>& slotNumbers);
    /// The same: see PointSlotsAtFileCommand.
    static bool pointAtFile(const QList<MediaAddress>& slotAddresses, const GuiMediaSlot& file);
};

} // namespace vantrel
