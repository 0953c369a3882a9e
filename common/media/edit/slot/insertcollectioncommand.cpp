#include "common/media/edit/slot/insertcollectioncommand.h"

#include "common/command/commandid.h"
#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

int InsertCollectionCommand::id() const
{
    return static_cast<int>(CommandId::InsertCollection);
}

bool InsertCollectionCommand::init(const MediaLibrary* library, int collection, const QString& name)
{
    return rehearse(library, tr("Insert collection %1").arg(collection), [=](MediaLibrary& copy) {
        return copy.insertMediaCollection(collection, MediaCollection(name.toStdString()), true);
    });
}

} // namespace vantrel
