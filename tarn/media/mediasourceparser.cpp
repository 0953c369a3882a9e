#include "tarn/media/mediasourceparser.h"

namespace vantrel {

bool MediaSourceParser::parseString(std::string_view url)
{
    *this = {};
    if (m_slot.parseString(url))
        m_mode = SourceMode::Slot;
    else if (parseEntryUrl(url, m_playlist, m_entry))
        m_mode = SourceMode::Playlist;
    return m_mode != SourceMode::None;
}

} // namespace vantrel
