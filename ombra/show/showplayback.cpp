#include "ombra/show/showplayback.h"

#include "tarn/media/medialibrary.h"
#include "tarn/media/mediasourceparser.h"

#include <utility>

namespace vantrel::ombra {

namespace {

/// Of the medium that a player would play there; empty for none.
std::string contentAt(const MediaLibrary& library, const std::string& url)
{
    MediaSourceParser source;
    if (!source.parseString(url))
        return {};
    const MediaAddress at = source.getMediaAddress();
    const MediaSlot* slot = source.getSourceMode() == SourceMode::Playlist
                                ? library.findEntryAndSlot(url).second
                                : library.findSlot(at.collection, at.slot);
    return slot ? slot->getUrl() : std::string();
}

} // namespace

void leaveOtherMedia(Json& settings, const MediaLibrary& ofShow, const MediaLibrary& present,
                     std::string& note)
{
    std::string stays;
    for (const auto& [side, name] : {std::pair("preview", "Preview"), std::pair("program", "Program")}) {
        const std::string base = "/device/channels/0/" + std::string(side) + "/properties/";
        const std::string url(settings.get(base + "media").stringView());
        if (url.empty() || contentAt(ofShow, url) == contentAt(present, url))
            continue;
        for (const char* property : {"media", "state", "mediaPosition"})
            settings.erase(base + property);
        stays += (stays.empty() ? "" : " and ") + std::string(stays.empty() ? name : side);
    }
    if (stays.empty())
        return;
    const bool isOne = stays.find(' ') == std::string::npos;
    note += (note.empty() ? "" : " ") + stays + (isOne ? " stays as it is" : " stay as they are") +
            ": the library here has other media where the show has those that it plays. Import its media "
            "library as well.";
}

} // namespace vantrel::ombra
