#pragma once

#include "tarn/media/playlistentry.h"

#include <QtGlobal>

class QJsonObject;
class QJsonValue;

namespace vantrel {

class GuiPlaylistEntry;

/// What is believed of an entry on the clipboard or of a drag: items take any number for what they hold.
class EntryPayload
{
public:
    EntryPayload() = delete;

    /// Bytes of JSON. That of a whole library is some megabytes; what is larger was not made here.
    static constexpr qsizetype largest = 16 * 1024 * 1024;

    /// An entry of a payload, with the members of its record that this version does not know.
    static QJsonObject jsonOf(const GuiPlaylistEntry& entry, const PlaylistEntry& record);
    /// The record of an entry that was read from a payload.
    static PlaylistEntry recordOf(const GuiPlaylistEntry& entry, const QJsonObject& json);
    /// Whether each value of an entry's JSON is one that means something.
    static bool isSound(const QJsonObject& entry);
    /// Whether it is a whole number within these bounds.
    static bool isWhole(const QJsonValue& value, int least, int most);
};

} // namespace vantrel
