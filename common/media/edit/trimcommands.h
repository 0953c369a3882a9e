#pragma once

#include "tarn/media/mediaaddress.h"

#include <optional>

namespace vantrel {

class AbstractSessionCommand;
class MediaLibrary;

/// The command that sets the in point of a slot, in seconds. The caller owns it; null where there is no such
/// slot or nothing would change.
AbstractSessionCommand* makeInpointCommand(MediaLibrary* library, const MediaAddress& address,
                                           std::optional<double> seconds);
/// The same for the out point; nothing means the end of the medium.
AbstractSessionCommand* makeOutpointCommand(MediaLibrary* library, const MediaAddress& address,
                                            std::optional<double> seconds);

} // namespace vantrel
