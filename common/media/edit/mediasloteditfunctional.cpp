#include "common/media/edit/mediasloteditfunctional.h"

#include "common/media/address/medialogging.h"
#include "common/media/edit/slot/clearslotfromcollectioncommand.h"
#include "common/media/edit/slot/editslotscalingcommand.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/session/session.h"

namespace vantrel {

void MediaSlotEditFunctional::setScalingMode(media::ColSlot colSlot, ScaleMode mode)
{
    if (!colSlot.valid) {
        qCWarning(lcMedia) << "Failed to parse collection and index";
        return;
    }
    Session* session = Session::instance();
    MediaLibraryProvider* provider = session ? session->mediaLibraryProvider() : nullptr;
    auto command = std::make_unique<EditSlotScalingCommand>();
    if (!provider || !command->initCmd(provider->mediaLibrary(), colSlot.collection, colSlot.slot, mode)) {
        qCWarning(lcMedia) << "Failed to change scaling for collection" << colSlot.collection << "slot"
                           << colSlot.slot;
        return;
    }
    session->executeCommand(command.release());
    qCDebug(lcMedia) << "Collection" << colSlot.collection << "slot" << colSlot.slot
                     << "scaling changed to:" << toStr(mode);
}

bool MediaSlotEditFunctional::rename(media::ColSlot colSlot, const QString& name)
{
    Session* session = Session::instance();
    MediaLibraryProvider* provider = session ? session->mediaLibraryProvider() : nullptr;
    auto command = std::make_unique<RenameSlotCommand>();
    if (!provider || !command->init(provider->mediaLibrary(), colSlot.collection, colSlot.slot, name))
        return false;
    session->executeCommand(command.release());
    return true;
}

bool MediaSlotEditFunctional::clearSlots(int collection, const QList<int>& slotNumbers)
{
    Session* session = Session::instance();
    MediaLibraryProvider* provider = session ? session->mediaLibraryProvider() : nullptr;
    auto command = std::make_unique<ClearSlotFromCollectionCommand>();
    if (!provider || !command->init(provider->mediaLibrary(), collection, slotNumbers))
        return false;
    session->executeCommand(command.release());
    return true;
}

} // namespace vantrel
