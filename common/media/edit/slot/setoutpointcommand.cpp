#include "common/media/edit/slot/setoutpointcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool SetOutpointCommand::init(const MediaLibrary* library, const QString& slotUrl,
                              std::optional<double> outpoint)
{
    const QString text = outpoint ? tr("Set outpoint to %1").arg(*outpoint) : tr("Reset outpoint");
    return rehearse(library, text, [=](MediaLibrary& copy) {
        MediaSlot* slot = copy.findSlot(slotUrl.toStdString());
        if (!slot) {
            qCWarning(lcCommand) << "Media slot not found for setting outpoint";
            return false;
        }
        slot->setOutpoint(outpoint);
        return true;
    });
}

} // namespace vantrel
