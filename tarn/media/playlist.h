#pragma once

#include "tarn/media/entryaddress.h"
#include "tarn/media/entrynumberingplan.h"
#include "tarn/media/playlistentry.h"
#include "tarn/media/recordmap.h"

#include <string>

namespace vantrel {

using PlaylistEntryMap = RecordMap<EntryAddress, PlaylistEntry>;

/// A named list of entries in address order. Copies share what they hold; an entry got from the non-const
/// findEntry may be written through until the next toJson() or copy.
class Playlist
{
public:
    explicit Playlist(const std::string& name = {});

    /// Reads {"name", "entries"}. Entries whose node is that of the present one are taken over unread. False,
    /// with the playlist as it was, on bad content.
    bool parseJson(const Json& json, std::string* error = nullptr);
    /// The same node as long as nothing changed.
    const Json& toJson() const;

    std::string getName() const;
    void setName(const std::string& name);

    const PlaylistEntryMap& getEntries() const noexcept { return m_entries; }
    const PlaylistEntry* findEntry(const EntryAddress& address) const { return m_entries.get(address); }
    PlaylistEntry* findEntry(const EntryAddress& address) { return m_entries.edit(address); }
    bool hasEntry(const EntryAddress& address) const { return m_entries.contains(address); }
    /// False when the address is invalid or taken.
    bool addEntry(const EntryAddress& address, const PlaylistEntry& entry);
    /// Adds or overwrites; false when the address is invalid.
    bool replaceEntry(const EntryAddress& address, const PlaylistEntry& entry);
    bool removeEntry(const EntryAddress& address) { return m_entries.erase(address); }
    /// False when the source is absent or the target invalid or taken.
    bool moveEntry(const EntryAddress& from, const EntryAddress& to);

    /// Whole numbers past the last entry, as many as the caller needs.
    EntryNumberingPlan pickAppendingNumberingPlan() const;
    /// Room for count entries between the address and the next entry after it.
    EntryNumberingPlan pickAppendingNumberingPlan(const EntryAddress& after, int count) const;
    /// Room for count entries between the last entry before the address and the address.
    EntryNumberingPlan pickPrependingNumberingPlan(const EntryAddress& before, int count) const;

private:
    mutable Json m_json; // "name" is always current, "entries" as of the last toJson()
    PlaylistEntryMap m_entries;
};

} // namespace vantrel
