#include "common/media/edit/playlist/followslots.h"

#include "tarn/media/medialibrary.h"

#include <string>
#include <vector>

namespace vantrel {

void followSlots(MediaLibrary& library, const std::function<MediaAddress(const MediaAddress&)>& newAddress)
{
    struct Followed
    {
        int playlist;
        EntryAddress entry;
        std::string url;
    };
    std::vector<Followed> followed; // an edit while they are walked would copy what is walked
    for (const auto& [playlist, list] : library.getPlaylists()) {
        for (const auto& [address, entry] : list.getEntries()) {
            MediaAddress slot;
            if (!slot.parseString(entry.getMediaUrl()))
                continue;
            if (const MediaAddress now = newAddress(slot); now.isValid())
                followed.push_back({playlist, address, now.toString()});
        }
    }
    for (const Followed& entry : followed)
        library.findPlaylistEntry(entry.playlist, entry.entry)->setMediaUrl(entry.url);
}

} // namespace vantrel
