#pragma once

#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vantrel::ombra {

/// What looking into a slot's media tells.
struct SlotFacts
{
    MediaType type = MediaType::Unknown;
    bool playable = false;
    double duration = 0; // seconds; 0 where there is none
};

/// Changes whenever the media of this URL do, and is the same again when the same file comes back with its
/// disk; of a sequence it is that of its folder. Nothing for what is missing or leads out of the folder. Any
/// thread.
std::optional<std::string> mediaStamp(const std::filesystem::path& mediaFolder,
                                      const std::string& contentUrl);

/// Opens the media. Nothing when they are missing or lead out of the folder. Blocks; any thread.
std::optional<SlotFacts> probeFacts(const std::filesystem::path& mediaFolder, const std::string& contentUrl);

/// What the slot says of itself.
SlotFacts factsOf(const MediaSlot& slot);
/// Fills in type, whether it plays, and duration. Without facts it cannot be played, and keeps the rest for
/// when it comes back. False when that changes nothing.
bool applyFacts(const std::optional<SlotFacts>& facts, MediaSlot& slot);

} // namespace vantrel::ombra
