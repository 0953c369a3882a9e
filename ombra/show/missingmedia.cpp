#include "ombra/show/missingmedia.h"

#include "ombra/decode/mediaurl.h"
#include "ombra/show/slotfacts.h"

#include <algorithm>
#include <unordered_set>

namespace vantrel::ombra {

std::vector<std::string> missingMedia(const std::filesystem::path& mediaFolder, const MediaLibrary& library)
{
    std::vector<std::string> missing;
    std::unordered_set<std::string> asked;
    for (const auto& [index, collection] : library.getCollections()) {
        for (const auto& [number, slot] : collection.getSlots()) {
            const std::string url = slot.getUrl();
            if (url.empty() || !asked.insert(url).second || mediaStamp(mediaFolder, url))
                continue;
            const auto file = resolveMediaUrl(mediaFolder, url);
            missing.push_back(file ? file->lexically_relative(mediaFolder).string() : url);
        }
    }
    return missing;
}

std::string missingCount(const std::vector<std::string>& missing)
{
    return missing.size() == 1
               ? "One of the show's media is not on this server."
               : std::to_string(missing.size()) + " of the show's media are not on this server.";
}

std::string missingSentence(const std::vector<std::string>& missing)
{
    constexpr std::size_t named = 8;
    std::string text = missingCount(missing);
    text.back() = ':';
    for (std::size_t i = 0; i < std::min(named, missing.size()); ++i)
        text += (i > 0 ? ", " : " ") + missing[i];
    if (missing.size() > named)
        text += " and " + std::to_string(missing.size() - named) + " more";
    return text + '.';
}

} // namespace vantrel::ombra
