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

} // namespace

Rundown::Rundown(const QList<Entry>& entries, const EntryAddress& playing, const Length& length)
{
    const auto found =
        std::ranges::lower_bound(entries, playing, {}, [](const Entry& entry) { return entry->address(); });
    if (found == entries.end() || (*found)->address() != playing) {
        m_kind = Kind::Removed;
        if (found != entries.end())
            m_next = (*found)->address();
        return;
    }
    if (found + 1 != entries.end())
        m_next = (*(found + 1))->address();
    walk(entries, found - entries.begin(), length);
}

void Rundown::walk(const QList<Entry>& entries, qsizetype playing, const Length& length)
{
    const bool isTimed = std::isfinite(entries[playing]->runtimeBefore());
    const double zero = entries[playing]->runtimeAfter();
    double before = 0; // the length of the entry in front
    double end = 0;
    for (qsizetype i = playing; i < entries.size() && m_kind == Kind::None; ++i) {
        const GuiPlaylistEntry& entry = *entries[i];
        double begin = end;
        if (isTimed) {
            begin = i == playing ? 0 : entry.runtimeBefore() - zero;
            end = i == playing && std::isfinite(zero) ? 0 : entry.runtimeAfter() - zero;
            if (!std::isfinite(entry.runtimeAfter()))
                end = entry.runtimeAfter();
        } else {
            const double own = length(entry);
            begin = i == playing ? 0 : end - overlapOf(entry, before, own);
            end = i == playing && std::isfinite(own) ? 0 : begin + own;
            before = own;
        }
        const bool isEndless = !std::isfinite(end);
        m_kind = isEndless ? Kind::Endless : holdOf(entry.endAction(), i + 1 == entries.size());
        m_seconds = isEndless ? begin : end;
        m_ends.append({entry.address(), end});
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
