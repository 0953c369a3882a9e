#include "ombra/engine/runningorder.h"

namespace vantrel::ombra {

bool isSameMedium(const std::optional<MediaItem>& one, const std::optional<MediaItem>& other)
{
    return one && other && one->contentUrl == other->contentUrl && one->sequence == other->sequence;
}

Loaded RunningOrder::load(const std::string& url, std::optional<MediaItem> item, EndAction before) const
{
    Loaded loaded{url, std::move(item), before};
    if (loaded.item && loaded.item->mode == SourceMode::Playlist)
        loaded.endAction = loaded.item->endAction;
    else if (loaded.item && (before == EndAction::Next || before == EndAction::GoTo))
        loaded.endAction = EndAction::Pause;
    findNeighbours(loaded);
    return loaded;
}

void RunningOrder::findNeighbours(Loaded& loaded) const
{
    loaded.previous = m_source.neighbour(loaded.url, -1);
    loaded.next = m_source.neighbour(loaded.url, 1);
}

std::optional<Loaded> RunningOrder::after(const Loaded& loaded) const
{
    if (loaded.item && loaded.endAction == EndAction::Repeat && !hasFailed(*loaded.item))
        return loaded;
    return loaded.item && loaded.endAction == EndAction::Next ? beside(loaded, 1) : std::nullopt;
}

std::optional<Loaded> RunningOrder::beside(const Loaded& loaded, int direction) const
{
    std::string url = direction < 0 ? loaded.previous : loaded.next;
    for (; !url.empty(); url = m_source.neighbour(url, direction)) {
        std::optional<MediaItem> item = m_source.resolve(url);
        if (item && !hasFailed(*item))
            return load(url, std::move(item), loaded.endAction);
    }
    return std::nullopt;
}

std::string RunningOrder::expectedAfter(const Loaded& loaded) const
{
    for (std::string url = loaded.next; !url.empty(); url = m_source.neighbour(url, 1)) {
        const std::optional<MediaItem> item = m_source.resolve(url);
        if (item && item->playable && !hasFailed(*item))
            return url;
    }
    return {};
}

bool RunningOrder::followEdit(Loaded& loaded, std::optional<MediaItem>& item) const
{
    const std::string place = m_source.whereabouts(loaded.url);
    const std::string& url = place.empty() ? loaded.url : place;
    item = m_source.resolve(url);
    if (isSameMedium(item, loaded.item)) {
        loaded.url = url;
        loaded.held = false; // it may have come back
        findNeighbours(loaded);
        return true;
    }
    const std::string previous = whereIs(loaded.previous, loaded.next, -1);
    loaded.next = whereIs(loaded.next, loaded.previous, 1);
    loaded.previous = previous;
    return false;
}

/// Where the neighbour in that direction is now; where it is gone as well, or never was, the one in its
/// place: the next in the direction, seen from itself or from the neighbour on the other side.
std::string RunningOrder::whereIs(const std::string& url, const std::string& other, int direction) const
{
    if (url.empty())
        return other.empty() ? std::string() : m_source.neighbour(m_source.whereabouts(other), direction);
    const std::string place = m_source.whereabouts(url);
    return place.empty() ? m_source.neighbour(url, direction) : place;
}

void RunningOrder::noteFailure(const Loaded& loaded)
{
    if (loaded.item)
        m_failed[loaded.item->contentUrl] = loaded.item->playable;
}

bool RunningOrder::hasFailed(const MediaItem& item) const
{
    const auto at = m_failed.find(item.contentUrl);
    return at != m_failed.end() && at->second == item.playable;
}

} // namespace vantrel::ombra
