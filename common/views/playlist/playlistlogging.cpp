#include "common/views/playlist/playlistlogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcPlaylist, "vantrel.playlist")

} // namespace vantrel
