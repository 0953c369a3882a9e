#include "tarn/media/playlistruntime.h"

#include "tarn/media/medialibrary.h"

#include <algorithm>
#include <limits>

namespace vantrel {

namespace {

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
    double previous = 0; // trimmed duration of the entry before
    double end = 0;      // when it ends
    for (const auto& [address, entry] : list->getEntries()) {
        const MediaSlot* slot = library.findSlot(entry.getMediaUrl());
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
