#pragma once

#include "tarn/media/medialibrary.h"

#include <filesystem>

namespace vantrel::ombra {

/// The library of a first start: collection 1, "Media", with a slot for each media file and image sequence of
/// the folder, in the order of their paths. Nothing is probed: the durations are still unknown.
MediaLibrary makeInitialLibrary(const std::filesystem::path& mediaFolder);

/// Fills in what probing a slot's media tells: type, whether it plays, duration, and the frames of a
/// sequence. False when that changes nothing. Blocks; any thread.
bool probeSlot(const std::filesystem::path& mediaFolder, MediaSlot& slot);

} // namespace vantrel::ombra
