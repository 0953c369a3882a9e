#include "common/views/playlist/rundown.h"

#include "common/media/items/guiplaylistentry.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

Rundown::Kind holdOf(EndAction action, bool isLast)
{
    switch (action) {
    case EndAction::Repeat:
        return Rundown::Kind::Repeats;
    case EndAction::Pause:
    case EndAction::GoTo: // it waits for where to go
        return isLast ? Rundown::Kind::Ends : Rundown::Kind::Pauses;
    case EndAction::Stop:
        return isLast ? Rundown::Kind::Ends : Rundown::Kind::Stops;
    default:
        return isLast ? Rundown::Kind::Ends : Rundown::Kind::None;
    }
}

/// By how much an entry begins before the one in front of it is over.
double overlapOf(const GuiPlaylistEntry& entry, double before, double length)
{
    if (entry.transitionType() == TakeTransitionType::DirectCut)
        return 0;
    return std::min({entry.transitionDuration(), before, length});
}

/// What the list takes no time for is passed over, and so is its end action.
qsizetype playableFrom(const QList<Rundown::Entry>& entries, qsizetype index)
{
    while (index < entries.size() && !entries[index]->isPlayable())
        ++index;
    return index;
}

} // namespace

Rundown::Rundown(const QList<Entry>& entries, const EntryAddress& playing, bool isGone, const Length& length)
{
    const auto found =
        std::ranges::lower_bound(entries, playing, {}, [](const Entry& entry) { return entry->address(); });
    const bool isThere = !isGone && found != entries.end() && (*found)->address() == playing;
    const qsizetype next = playableFrom(entries, found - entries.begin() + isThere);
    if (next < entries.size())
        m_next = entries[next]->address();
    if (isThere)
        walk(entries, found - entries.begin(), length);
    else
        m_kind = Kind::Removed;
}

void Rundown::walk(const QList<Entry>& entries, qsizetype playing, const Length& length)
{
    double before = 0; // the length of the entry in front
    double end = 0;
    for (qsizetype i = playing; i < entries.size() && m_kind == Kind::None;) {
        const GuiPlaylistEntry& entry = *entries[i];
        // Behind an entry without an end the running times say nothing.
        const double own = std::isfinite(entry.runtimeBefore()) ? entry.runtimeAfter() - entry.runtimeBefore()
                                                                : length(entry);
        const bool isEndless = !std::isfinite(own);
        const double begin = i == playing ? 0 : end - overlapOf(entry, before, own);
        end = i == playing && !isEndless ? 0 : begin + own;
        before = own;
        m_ends.append({entry.address(), end});
        const qsizetype next = playableFrom(entries, i + 1);
        m_kind = isEndless ? Kind::Endless : holdOf(entry.endAction(), next == entries.size());
        m_seconds = isEndless ? begin : end;
        i = next;
    }
}

EntryAddress Rundown::last() const
{
    return m_ends.isEmpty() ? EntryAddress() : m_ends.last().address;
}

std::optional<double> Rundown::endOf(const EntryAddress& address) const
{
    const auto found = std::ranges::lower_bound(m_ends, address, {}, &End::address);
    if (found == m_ends.end() || found->address != address || !std::isfinite(found->seconds))
        return std::nullopt;
    return found->seconds;
}

} // namespace vantrel
