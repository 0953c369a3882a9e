#include "common/media/edit/slot/pointslotsatfilecommand.h"

#include "common/command/commandlogging.h"
#include "common/media/address/mediafiles.h"
#include "common/media/address/showntext.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/othermembers.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

namespace {

MediaSlot pointed(const MediaSlot& slot, const GuiMediaSlot& file)
{
    MediaSlot result = file.toSdkMediaSlot();
    if (file.duration() <= 0)
        result.setInherentMediaDuration(std::nullopt);
    if (const auto rate = slot.getFrameRate(); rate && file.mediaType() == MediaType::ImageSequence)
        result.setFrameRate(*rate);
    result.setName(slot.getName());
    result.setScaleMode(slot.getScaleMode());
    const MediaType kind = file.mediaType().value_or(MediaType::Unknown);
    result.setMediaType(kind);
    const bool isSameKind = kind == slot.getMediaType();
    result.setCustomMediaDuration(isSameKind ? slot.getCustomMediaDuration() : std::nullopt);
    if (isSameKind)
        result.setDurationType(slot.getDurationType());
    const double length = result.getEffectiveMediaDuration();
    const auto isWithin = [length](double seconds) { return length <= 0 || seconds <= length; };
    if (isWithin(slot.getInpoint()))
        result.setInpoint(slot.getInpoint());
    if (const auto outpoint = slot.getOutpoint(); outpoint && isWithin(*outpoint))
        result.setOutpoint(outpoint);
    return withOtherMembers(result, otherMembersOf(slot));
}

} // namespace

bool PointSlotsAtFileCommand::init(const MediaLibrary* library, const QList<MediaAddress>& slotAddresses,
                                   const GuiMediaSlot& file)
{
    const QString name = shownText(getNameInPath(file.contentUrl().path()));
    const QString text = slotAddresses.size() == 1
                             ? tr("Point 1 slot at \"%1\"").arg(name)
                             : tr("Point %1 slots at \"%2\"").arg(slotAddresses.size()).arg(name);
    return rehearse(library, text, [=](MediaLibrary& copy) {
        if (slotAddresses.isEmpty() || file.contentUrl().isEmpty()) {
            qCWarning(lcCommand) << "No slot, or no file to point it at";
            return false;
        }
        for (const MediaAddress& address : slotAddresses) {
            MediaSlot* slot = copy.findSlot(address.collection, address.slot);
            if (!slot) {
                qCWarning(lcCommand) << "Unable to find slot";
                return false;
            }
            *slot = pointed(*slot, file);
        }
        return true;
    });
}

} // namespace vantrel
