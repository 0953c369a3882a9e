#include "common/media/edit/trimcommands.h"

#include "common/command/refusal.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/slot/setinpointcommand.h"
#include "common/media/edit/slot/setoutpointcommand.h"

#include <memory>

namespace vantrel {

namespace {

template <class Command, class Value>
AbstractSessionCommand* make(MediaLibrary* library, const MediaAddress& address, Value seconds)
{
    auto command = std::make_unique<Command>();
    if (command->init(library, media::MediaUtils::toSlotAddress(address), seconds))
        return command.release();
    if (command->wasRehearsed())
        tellNotDone(QObject::tr("Set in or out point"),
                    QObject::tr("Slot %1 of collection %2 is not in the library any more.")
                        .arg(address.slot)
                        .arg(address.collection));
    return nullptr;
}

} // namespace

AbstractSessionCommand* makeInpointCommand(MediaLibrary* library, const MediaAddress& address,
                                           std::optional<double> seconds)
{
    return make<SetInpointCommand>(library, address, seconds.value_or(0.0));
}

AbstractSessionCommand* makeOutpointCommand(MediaLibrary* library, const MediaAddress& address,
                                            std::optional<double> seconds)
{
    return make<SetOutpointCommand>(library, address, seconds);
}

} // namespace vantrel
