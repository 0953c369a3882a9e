#include "tarn/media/playlistruntime.h"

#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"

#include <algorithm>
#include <limits>

namespace vantrel {

namespace {

constexpr double never = std::numeric_limits<double>::infinity();

} // namespace

double playedDuration(const MediaLibrary& library, std::string_view slotUrl)
{
    // Entries name slots by address as a rule.
    MediaAddress address;
    const MediaSlot* slot = address.parseString(slotUrl) ? library.findSlot(address.collection, address.slot)
                                                         : library.findSlot(slotUrl);
    if (!slot)
        return 0;
    return slot->isFinite() ? slot->getTrimmedDuration() : never;
}

EntryRuntime PlaylistClock::next(const EntryAddress& address, TakeTransitionType type, double transition,
                                 double duration)
{
    if (m_isInfinite)
        return {address, never, never};
    const double overlap =
        type == TakeTransitionType::DirectCut ? 0 : std::min({transition, m_previous, duration});
    const double start = m_end - overlap;
    m_isInfinite = duration == never;
    if (!m_isInfinite) {
        m_end = start + duration;
        m_previous = duration;
    }
    m_total = m_isInfinite ? start : m_end;
    return {address, start, start + duration};
}

PlaylistRuntimeInfo calculatePlaylistRuntime(const MediaLibrary& library, int playlist)
{
    PlaylistRuntimeInfo info;
    const Playlist* list = library.findPlaylist(playlist);
    if (!list)
        return info;
    info.entries.reserve(list->getEntries().size());
    PlaylistClock clock;
    for (const auto& [address, entry] : list->getEntries()) {
        const Json* url = entry.toJson().find("slotUrl");
        info.entries.push_back(clock.next(address, entry.getTransitionType(), entry.getTransitionDuration(),
                                          playedDuration(library, url ? url->stringView() : "")));
    }
    info.totalDuration = clock.total();
    info.isInfinite = clock.isInfinite();
    return info;
}

} // namespace vantrel
