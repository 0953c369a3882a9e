#include "tarn/media/playlistruntime.h"

#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"

#include <algorithm>
#include <limits>

namespace vantrel {

namespace {

/// The slot that an entry plays; null when there is none. Entries name slots by address as a rule.
const MediaSlot* slotOf(const MediaLibrary& library, const PlaylistEntry& entry)
{
    const Json* url = entry.toJson().find("slotUrl");
    MediaAddress address;
    if (url && address.parseString(url->stringView()))
        return library.findSlot(address.collection, address.slot);
    return library.findSlot(entry.getMediaUrl());
}

double overlapInto(const PlaylistEntry& entry, double previous, double duration)
{
    if (entry.getTransitionType() == TakeTransitionType::DirectCut)
        return 0;
    return std::min({entry.getTransitionDuration(), previous, duration});
}

} // namespace

PlaylistRuntimeInfo calculatePlaylistRuntime(const MediaLibrary& library, int playlist)
{
    PlaylistRuntimeInfo info;
    const Playlist* list = library.findPlaylist(playlist);
    if (!list)
        return info;
    constexpr double never = std::numeric_limits<double>::infinity();
    info.entries.reserve(list->getEntries().size());
    double previous = 0; // trimmed duration of the entry before
    double end = 0;      // when it ends
    for (const auto& [address, entry] : list->getEntries()) {
        const MediaSlot* slot = slotOf(library, entry);
        const double duration = !slot ? 0 : slot->isFinite() ? slot->getTrimmedDuration() : never;
        if (info.isInfinite) {
            info.entries.push_back({address, never, never});
            continue;
        }
        const double start = end - overlapInto(entry, previous, duration);
        info.entries.push_back({address, start, start + duration});
        if (duration == never) {
            info.isInfinite = true;
            info.totalDuration = start;
        } else {
            end = start + duration;
            previous = duration;
            info.totalDuration = end;
        }
    }
    return info;
}

} // namespace vantrel
