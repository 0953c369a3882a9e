#include "common/media/edit/slot/renamecollectioncommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool RenameCollectionCommand::init(const MediaLibrary* library, int collection, const QString& name)
{
    const QString text = "Rename collection " + QString::number(collection);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        MediaCollection* target = copy.findCollection(collection);
        if (!target) {
            qCWarning(lcCommand) << "Unable to find media collection.";
            return false;
        }
        target->setName(name.toStdString());
        return true;
    });
}

} // namespace vantrel
