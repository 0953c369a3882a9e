#pragma once

#include "common/media/items/guiplaylistentry.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/media/playlistentry.h"

#include <QList>
#include <QString>

class QJsonObject;
class QMimeData;

namespace vantrel {

/// What a drag or the clipboard brings to a playlist, read with distrust: a payload comes from anywhere, and
/// either all of it is what it says it is, or nothing of it counts.
class PlaylistDrop
{
public:
    enum class Kind { Nothing, Playlist, Entries, Media };

    static PlaylistDrop read(const QMimeData* data);

    Kind kind() const { return m_kind; }
    /// Why it is nothing, as a sentence for the operator.
    const QString& fault() const { return m_fault; }
    /// Of a playlist its number, of entries that of the list they are from.
    uint playlist() const { return m_playlist; }
    const QList<GuiPlaylistEntry>& entries() const { return m_entries; }
    /// The same as a list takes them.
    const QList<PlaylistEntry>& records() const { return m_records; }
    /// Of media, the slots in the order in which they were dragged.
    const QList<MediaAddress>& media() const { return m_media; }
    /// The same as the addresses that commands take.
    QList<QString> mediaUrls() const;

private:
    static PlaylistDrop refused(const QString& fault);
    static PlaylistDrop readSlotNumbers(const QJsonObject& object);
    bool add(const QMimeData* data, const QJsonObject& object);
    bool addEntry(const GuiPlaylistEntry& entry, const QJsonObject& object);

    Kind m_kind = Kind::Nothing;
    QString m_fault;
    uint m_playlist = 0;
    QList<GuiPlaylistEntry> m_entries;
    QList<PlaylistEntry> m_records;
    QList<MediaAddress> m_media;
};

} // namespace vantrel
