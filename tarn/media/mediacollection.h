#pragma once

#include "tarn/media/mediaslot.h"
#include "tarn/media/recordmap.h"

#include <string>

namespace vantrel {

using MediaSlotMap = RecordMap<int, MediaSlot>;

/// A named collection of numbered slots. Copies share what they hold; a slot got from the non-const
/// findMediaSlot may be written through until the next toJson() or copy.
class MediaCollection
{
public:
    static constexpr int slotIndexMin = 1;
    static constexpr int slotIndexMax = 9999;

    explicit MediaCollection(const std::string& name = {});

    /// Reads {"name", "slots"}. Slots whose node is that of the present one are taken over unread. False,
    /// with the collection as it was, on bad content.
    bool parseJson(const Json& json, std::string* error = nullptr);
    /// The same node as long as nothing changed.
    const Json& toJson() const;

    std::string getName() const;
    void setName(const std::string& name);

    /// Slots by index, in ascending order.
    const MediaSlotMap& getSlots() const noexcept { return m_slots; }
    const MediaSlot* findMediaSlot(int index) const { return m_slots.get(index); }
    MediaSlot* findMediaSlot(int index) { return m_slots.edit(index); }
    /// False when the index is out of range, or taken and overwrite is false.
    bool insertMediaSlot(int index, const MediaSlot& slot, bool overwrite);
    bool removeMediaSlot(int index) { return m_slots.erase(index); }
    /// The highest index that a collection may hold.
    static int getMediaSlotIndexMax() noexcept { return slotIndexMax; }

private:
    mutable Json m_json; // "name" is always current, "slots" as of the last toJson()
    MediaSlotMap m_slots;
};

} // namespace vantrel
