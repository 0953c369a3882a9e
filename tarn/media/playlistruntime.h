#pragma once

#include "tarn/media/entryaddress.h"

#include <vector>

namespace vantrel {

class MediaLibrary;

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

PlaylistRuntimeInfo calculatePlaylistRuntime(const MediaLibrary& library, int playlist);

} // namespace vantrel
