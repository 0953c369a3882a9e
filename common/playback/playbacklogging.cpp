#include "common/playback/playbacklogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcPlayback, "vantrel.playback")

} // namespace vantrel
