#pragma once

#include "tarn/media/entryaddress.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/media/playenums.h"

#include <string>
#include <string_view>

namespace vantrel {

/// Tells what a source URL names: a slot, a playlist entry, or nothing.
class MediaSourceParser
{
public:
    MediaSourceParser() = default;
    explicit MediaSourceParser(const std::string& url) { parseString(url); }

    /// Reads another URL; false, with the mode None, when it names neither.
    bool parseString(std::string_view url);

    SourceMode getSourceMode() const noexcept { return m_mode; }
    MediaAddress getMediaAddress() const noexcept { return m_slot; }  // for the mode Slot
    int getPlaylistNumber() const noexcept { return m_playlist; }     // for the mode Playlist
    EntryAddress getEntryAddress() const noexcept { return m_entry; } // for the mode Playlist

private:
    SourceMode m_mode = SourceMode::None;
    MediaAddress m_slot;
    int m_playlist = 0;
    EntryAddress m_entry;
};

} // namespace vantrel
