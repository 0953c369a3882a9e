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
    const auto fits = [=, count = medias.size()](const MediaLibrary& on) {
        if (count == 0) {
            qCWarning(lcCommand) << "No medias to add to collection";
            return false;
        }
        if (!on.findCollection(collection)) {
            qCWarning(lcCommand) << "Unable to find collection";
            return false;
        }
        if (firstSlot < MediaCollection::slotIndexMin ||
            firstSlot + count - 1 > MediaCollection::getMediaSlotIndexMax()) {
            qCWarning(lcCommand) << "Not enough slots to add media";
            return false;
        }
        return true;
    };
    const auto edit = [=](MediaLibrary& copy) {
        MediaCollection* const target = copy.findCollection(collection);
        int slot = firstSlot;
        for (const GuiMediaSlot& media : medias)
            target->insertMediaSlot(slot++, media.toSdkMediaSlot(), true);
        return true;
    };
    return rehearseMany(library, tr(text.toUtf8().constData()), medias.size(), fits, edit);
}

} // namespace vantrel
