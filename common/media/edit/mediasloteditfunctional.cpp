#include "common/media/edit/mediasloteditfunctional.h"

#include "common/command/execute.h"
#include "common/media/address/medialogging.h"
#include "common/media/edit/slot/clearslotfromcollectioncommand.h"
#include "common/media/edit/slot/editslotscalingcommand.h"
#include "common/media/edit/slot/pointslotsatfilecommand.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/session/session.h"
#include "tarn/media/mediaenums.h"

namespace vantrel {

namespace {

/// An edit of the library that is open. False when there is none, or it refuses.
template <typename Command, typename... Args>
bool edit(const Args&... args)
{
    const Session* session = Session::instance();
    MediaLibraryProvider* provider = session ? session->mediaLibraryProvider() : nullptr;
    return provider && tryExecute<Command>(session->getQUndoStack(), provider->mediaLibrary(), args...);
}

} // namespace

void MediaSlotEditFunctional::setScalingMode(MediaAddress slot, ScaleMode mode)
{
    if (!slot.isValid()) {
        qCWarning(lcMedia) << "Failed to parse collection and index";
        return;
    }
    if (!edit<EditSlotScalingCommand>(slot.collection, slot.slot, mode)) {
        qCWarning(lcMedia) << "Failed to change scaling for collection" << slot.collection << "slot"
                           << slot.slot;
        return;
    }
    qCDebug(lcMedia) << "Collection" << slot.collection << "slot" << slot.slot
                     << "scaling changed to:" << toStr(mode);
}

bool MediaSlotEditFunctional::rename(MediaAddress slot, const QString& name)
{
    return edit<RenameSlotCommand>(slot.collection, slot.slot, name);
}

bool MediaSlotEditFunctional::clearSlots(int collection, const QList<int>& slotNumbers)
{
    return edit<ClearSlotFromCollectionCommand>(collection, slotNumbers);
}

bool MediaSlotEditFunctional::pointAtFile(const QList<MediaAddress>& slotAddresses, const GuiMediaSlot& file)
{
    return edit<PointSlotsAtFileCommand>(slotAddresses, file);
}

} // namespace vantrel
