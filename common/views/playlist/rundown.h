#pragma once

#include "tarn/media/entryaddress.h"

#include <QList>

#include <functional>
#include <memory>
#include <optional>

namespace vantrel {

class GuiPlaylistEntry;

/// How a playlist goes on from the entry that plays, as long as nobody touches it: to its end, or to the
/// first entry that holds it up. Times are seconds, counted from the end of the entry that plays.
class Rundown
{
public:
    enum class Kind {
        None,    // the list does not play
        Removed, // what plays is no entry any more; the list goes on behind its place
        Ends,    // after the last entry
        Pauses,  // at the end of an entry, until somebody goes on
        Stops,   // the same
        Repeats, // an entry, over and over
        Endless, // an entry has no end
    };
    using Entry = std::shared_ptr<const GuiPlaylistEntry>;
    /// The seconds that an entry takes by itself, infinity where it has no end.
    using Length = std::function<double(const GuiPlaylistEntry& entry)>;

    Rundown() = default;
    /// Entries in address order. isGone: what plays is none of them, also where one has its address. Lengths
    /// are asked for only behind an entry without an end, where the running times of the list say nothing.
    Rundown(const QList<Entry>& entries, const EntryAddress& playing, bool isGone, const Length& length);

    Kind kind() const { return m_kind; }
    /// The last entry that comes by itself.
    EntryAddress last() const;
    /// Until the last one is over, or until it begins where it has no end.
    double seconds() const { return m_seconds; }
    /// What follows the entry that plays in the list; no address where it is the last.
    const EntryAddress& next() const { return m_next; }
    /// When the entry is over; nothing for one that is over already, has no end or does not come by itself.
    std::optional<double> endOf(const EntryAddress& address) const;

private:
    struct End
    {
        EntryAddress address;
        double seconds;
    };
    void walk(const QList<Entry>& entries, qsizetype playing, const Length& length);

    Kind m_kind = Kind::None;
    double m_seconds = 0;
    EntryAddress m_next;
    QList<End> m_ends; // by address
};

} // namespace vantrel
