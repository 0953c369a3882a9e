#include "common/media/edit/slot/removecollectioncommand.h"

#include "common/command/commandid.h"
#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

int RemoveCollectionCommand::id() const
{
    return static_cast<int>(CommandId::RemoveCollection);
}

bool RemoveCollectionCommand::init(const MediaLibrary* library, int collection)
{
    return rehearse(library, tr("Remove collection %1").arg(collection), [=](MediaLibrary& copy) {
        if (!std::as_const(copy).findCollection(collection)) {
            qCWarning(lcCommand) << "Unable to find media collection.";
            return false;
        }
        return copy.removeCollection(collection);
    });
}

} // namespace vantrel
