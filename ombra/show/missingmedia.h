#pragma once

#include "tarn/media/medialibrary.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The media of a library's slots that this server does not have, each once, in the order of the slots: paths
/// in the media folder. Asks the disk for each; any thread.
std::vector<std::string> missingMedia(const std::filesystem::path& mediaFolder, const MediaLibrary& library);

/// How many there are as a sentence; beside their names.
std::string missingCount(const std::vector<std::string>& missing);

/// The same as a sentence that names some of them.
std::string missingSentence(const std::vector<std::string>& missing);

} // namespace vantrel::ombra
