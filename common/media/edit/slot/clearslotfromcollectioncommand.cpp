#include "common/media/edit/slot/clearslotfromcollectioncommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool ClearSlotFromCollectionCommand::init(const MediaLibrary* library, int collection, int slot)
{
    return init(library, collection, QList<int>{slot});
}

bool ClearSlotFromCollectionCommand::init(const MediaLibrary* library, int collection,
                                          const QList<int>& slotNumbers)
{
    QStringList numbers;
    for (const int slot : slotNumbers)
        numbers.append(QString::number(slot));
    const QString text = "Cleared slot " + numbers.join(QStringLiteral(", ")) + " from collection " +
                         QString::number(collection);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        MediaCollection* target = copy.findCollection(collection);
        if (!target) {
            qCWarning(lcCommand) << "Unable to find collection";
            return false;
        }
        for (const int slot : slotNumbers) {
            if (!std::as_const(*target).findMediaSlot(slot)) {
                qCWarning(lcCommand) << "Unable to find slot";
                return false;
            }
            target->insertMediaSlot(slot, MediaSlot(), true);
        }
        return true;
    });
}

} // namespace vantrel
