#pragma once

#include "tarn/media/entryaddress.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vantrel {

/// The place of a slot: its collection and its number there.
class MediaAddress
{
public:
    std::int32_t collection = -1;
    std::int32_t slot = -1;

    MediaAddress() = default; // no address
    MediaAddress(int collectionIndex, int slotIndex)
        : collection(collectionIndex)
        , slot(slotIndex)
    {
    }

    bool isValid() const noexcept { return collection >= 0 && slot >= 0; }

    /// "brume://collections/<collection>/slots/<slot>"; empty for no address.
    std::string toString() const;
    /// Reads a slot's URL, case ignored, also with the singular "collection". False, and the address as it
    /// was, on any other text.
    bool parseString(std::string_view text);

    friend auto operator<=>(const MediaAddress&, const MediaAddress&) = default;
};

/// "brume://playlists/<playlist>/entries/<address>".
std::string entryUrl(int playlist, const EntryAddress& entry);
/// Reads a playlist entry's URL, case ignored, also with the singular "playlist"; the playlist must be 1 or
/// more.
bool parseEntryUrl(std::string_view text, int& playlist, EntryAddress& entry);

} // namespace vantrel
