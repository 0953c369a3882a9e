#include "ombra/show/slotfacts.h"

#include "ombra/decode/mediaprobe.h"
#include "ombra/decode/mediaurl.h"
#include "tarn/media/mediaenums.h"

#include <array>
#include <cstdio>
#include <sys/stat.h>

namespace vantrel::ombra {

std::optional<std::string> mediaStamp(const std::filesystem::path& mediaFolder, const std::string& contentUrl)
{
    const auto file = resolveMediaUrl(mediaFolder, contentUrl);
    struct stat status
    {
    };
    if (!file)
        return std::nullopt;
    bool found = ::stat(file->c_str(), &status) == 0 && S_ISREG(status.st_mode);
    if (const auto pattern = parseSequencePattern(*file); pattern && !found)
        found = findSequenceRange(*pattern) && ::stat(file->parent_path().c_str(), &status) == 0;
    if (!found)
        return std::nullopt;
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), "%llu %lld %lld.%09ld %lld.%09ld",
                  static_cast<unsigned long long>(status.st_ino), static_cast<long long>(status.st_size),
                  static_cast<long long>(status.st_mtim.tv_sec), status.st_mtim.tv_nsec,
                  static_cast<long long>(status.st_ctim.tv_sec), status.st_ctim.tv_nsec);
    return text.data();
}

std::optional<SlotFacts> probeFacts(const std::filesystem::path& mediaFolder, const std::string& contentUrl)
{
    const auto file = resolveMediaUrl(mediaFolder, contentUrl);
    const auto info = file ? probeMedia(*file, nullptr) : std::nullopt;
    if (!info)
        return std::nullopt;
    return SlotFacts{info->type, info->playable, info->duration};
}

SlotFacts factsOf(const MediaSlot& slot)
{
    return {slot.getMediaType(), slot.getIsPlayable(), slot.getInherentMediaDuration().value_or(0)};
}

bool applyFacts(const std::optional<SlotFacts>& facts, MediaSlot& slot)
{
    const MediaSlot before = slot;
    if (!facts) {
        slot.setIsPlayable(false);
        return !(slot == before);
    }
    slot.setMediaType(facts->type);
    slot.setIsPlayable(facts->playable);
    if (facts->type == MediaType::ImageSequence)
        return !(slot == before); // its length follows from the frames
    if (facts->duration > 0)
        slot.setInherentMediaDuration(facts->duration);
    else if (before.getMediaType() == MediaType::VideoFile || before.getMediaType() == MediaType::AudioFile)
        slot.setInherentMediaDuration(std::nullopt); // another file took its place
    return !(slot == before);
}

} // namespace vantrel::ombra
