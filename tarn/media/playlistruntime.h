#pragma once

#include "tarn/media/entryaddress.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace vantrel {

class MediaLibrary;
enum class TakeTransitionType : std::int32_t;

/// The running time before and after one entry, in seconds; infinite where an entry before it never ends.
struct EntryRuntime
{
    EntryAddress address;
    double runtimeBefore = 0;
    double runtimeAfter = 0;
};

/// The running times of a playlist, entries in address order.
///
/// An entry starts when the one before it ends, earlier by the overlap where it comes in by a crossfade or a
/// dip: its transition's duration, at most the shorter of the two entries. It runs from its slot's in point
/// to the out point or the end. An infinite slot never ends: its runtimeAfter and all times behind it are
/// infinity. End actions do not count, since the operator goes on by hand. An entry without a slot takes no
/// time.
struct PlaylistRuntimeInfo
{
    double totalDuration = 0; // seconds; of a playlist that never ends, up to the entry that does not
    bool isInfinite = false;
    std::vector<EntryRuntime> entries;
};

/// Adds the entries of a playlist up, in address order, by the rule above.
class PlaylistClock
{
public:
    /// transition and duration in seconds; duration as of playedDuration().
    EntryRuntime next(const EntryAddress& address, TakeTransitionType type, double transition,
                      double duration);
    double total() const noexcept { return m_total; }
    bool isInfinite() const noexcept { return m_isInfinite; }

private:
    double m_previous = 0; // what of the entry before is played
    double m_end = 0;      // when it ends
    double m_total = 0;
    bool m_isInfinite = false;
};

/// What of an entry's slot is played, in seconds: infinity where it never ends, 0 without a slot.
double playedDuration(const MediaLibrary& library, std::string_view slotUrl);

PlaylistRuntimeInfo calculatePlaylistRuntime(const MediaLibrary& library, int playlist);

} // namespace vantrel
