#pragma once

#include "tarn/media/playlistentry.h"

#include <QList>

class QJsonObject;
class QJsonValue;
class QMimeData;

namespace vantrel {

class GuiPlaylistEntry;

/// Entries of the clipboard or of a drag, read with distrust: items take any number for what they hold.
class PlaylistPayload
{
public:
    PlaylistPayload() = delete;

    /// Bytes of JSON. That of a whole library is some megabytes; what is larger was not made here.
    static constexpr qsizetype largest = 16 * 1024 * 1024;

    /// All of a payload of entries or slots, or nothing: half of what somebody copied is not what they
    /// copied.
    static QList<PlaylistEntry> entries(const QMimeData* payload);
    /// An entry of a payload, with the members of its record that this version does not know.
    static QJsonObject jsonOf(const GuiPlaylistEntry& entry, const PlaylistEntry& record);
    /// The record of an entry that was read from a payload.
    static PlaylistEntry recordOf(const GuiPlaylistEntry& entry, const QJsonObject& json);
    /// By its looks: what it holds is read when it is wanted.
    static bool isOffered(const QMimeData* payload);
    /// Whether each value of an entry's JSON is one that means something.
    static bool isSound(const QJsonObject& entry);
    /// Whether it is a whole number within these bounds.
    static bool isWhole(const QJsonValue& value, int least, int most);
};

} // namespace vantrel
