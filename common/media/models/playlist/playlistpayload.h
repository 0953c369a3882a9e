#pragma once

#include "tarn/media/playlistentry.h"

#include <QList>

class QMimeData;

namespace vantrel {

/// Entries of the clipboard or of a drag, read with distrust.
class PlaylistPayload
{
public:
    PlaylistPayload() = delete;

    /// All of a payload of entries or slots, or nothing: half of what somebody copied is not what they
    /// copied.
    static QList<PlaylistEntry> entries(const QMimeData* payload);
    /// By its looks: what it holds is read when it is wanted.
    static bool isOffered(const QMimeData* payload);
};

} // namespace vantrel
