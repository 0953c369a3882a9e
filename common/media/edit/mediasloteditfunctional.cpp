#include "common/media/edit/mediasloteditfunctional.h"

#include "common/media/address/medialogging.h"
#include "common/media/edit/slot/clearslotfromcollectioncommand.h"
#include "common/media/edit/slot/editslotscalingcommand.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/session/session.h"

namespace vantrel {

void MediaSlotEditFunctional::setScalingMode(MediaAddress slot, ScaleMode mode)
{
    if (!slot.isValid()) {
        qCWarning(lcMedia) << "Failed to parse collection and index";
        return;
    }
    Session* session = Session::instance();
    MediaLibraryProvider* provider = session ? session->mediaLibraryProvider() : nullptr;
    auto command = std::make_unique<EditSlotScalingCommand>();
    if (!provider || !command->initCmd(provider->mediaLibrary(), slot.collection, slot.slot, mode)) {
        qCWarning(lcMedia) << "Failed to change scaling for collection" << slot.collection << "slot"
                           << slot.slot;
        return;
    }
    session->executeCommand(command.release());
    qCDebug(lcMedia) << "Collection" << slot.collection << "slot" << slot.slot
                     << "scaling changed to:" << toStr(mode);
}

bool MediaSlotEditFunctional::rename(MediaAddress slot, const QString& name)
{
    Session* session = Session::instance();
    MediaLibraryProvider* provider = session ? session->mediaLibraryProvider() : nullptr;
    auto command = std::make_unique<RenameSlotCommand>();
    if (!provider || !command->init(provider->mediaLibrary(), slot.collection, slot.slot, name))
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
