#include "common/media/edit/slot/addmediatocollectioncommand.h"

#include "common/command/commandlogging.h"
#include "common/media/items/guimediaslot.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool AddMediaToCollectionCommand::init(const MediaLibrary* library, int collection, int firstSlot,
                                       const QList<GuiMediaSlot>& medias)
{
    const QString text =
        "Add media to slot " + QString::number(firstSlot) + " in collection " + QString::number(collection);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        if (medias.isEmpty()) {
            qCWarning(lcCommand) << "No medias to add to collection";
            return false;
        }
        MediaCollection* target = copy.findCollection(collection);
        if (!target) {
            qCWarning(lcCommand) << "Unable to find collection";
            return false;
        }
        if (firstSlot + medias.size() - 1 > MediaCollection::getMediaSlotIndexMax()) {
            qCWarning(lcCommand) << "Not enough slots to add media";
            return false;
        }
        int slot = firstSlot;
        for (const GuiMediaSlot& media : medias) {
            if (!target->insertMediaSlot(slot++, media.toSdkMediaSlot(), true)) {
                qCWarning(lcCommand) << "Not enough slots to add media";
                return false;
            }
        }
        return true;
    });
}

} // namespace vantrel
