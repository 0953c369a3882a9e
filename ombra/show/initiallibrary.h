#pragma once

#include "tarn/media/medialibrary.h"

#include <filesystem>

namespace vantrel::ombra {

/// The library of a first start: collection 1, "Media", with a slot for each media file and image sequence of
/// the folder, in the order of their paths. Nothing is probed: the durations are still unknown.
MediaLibrary makeInitialLibrary(const std::filesystem::path& mediaFolder);

} // namespace vantrel::ombra
