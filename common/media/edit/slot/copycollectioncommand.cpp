#include "common/media/edit/slot/copycollectioncommand.h"

#include "common/command/commandid.h"
#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

int CopyCollectionCommand::id() const
{
    return static_cast<int>(CommandId::CopyCollection);
}

bool CopyCollectionCommand::init(const MediaLibrary* library, int fromCollection, int toCollection)
{
    const QString text = tr("Copy collection from %1 to %2").arg(fromCollection).arg(toCollection);
    return rehearse(library, text, [=](MediaLibrary& copy) {
        const MediaCollection* source = std::as_const(copy).findCollection(fromCollection);
        if (!source) {
            qCWarning(lcCommand) << "Unable to find source media collection.";
            return false;
        }
        const QString name = QString::fromStdString(source->getName());
        if (!copy.copyCollection(fromCollection, toCollection)) {
            qCWarning(lcCommand) << "Unable to copy media collection" << fromCollection << "to"
                                 << toCollection;
            return false;
        }
        copy.findCollection(toCollection)->setName(tr("Duplicate of %1").arg(name).toStdString());
        return true;
    });
}

} // namespace vantrel
