#include "common/media/edit/slot/renameslotcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool RenameSlotCommand::init(const MediaLibrary* library, int collection, int slot, const QString& name)
{
    const QString text =
        "Rename slot " + QString::number(slot) + " in collection " + QString::number(collection);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        MediaSlot* record = copy.findSlot(collection, slot);
        if (!record) {
            qCWarning(lcCommand) << "Unable to find slot";
            return false;
        }
        record->setName(name.toStdString());
        return true;
    });
}

} // namespace vantrel
