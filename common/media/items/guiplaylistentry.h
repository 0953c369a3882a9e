#pragma once

#include "common/media/items/guimediaitem.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/playenums.h"

#include <QString>

namespace vantrel {

class PlaylistEntry;

/// A playlist entry as views see it. Times are seconds; the runtimes count from the start of the playlist to
/// the start and to the end of the entry.
class GuiPlaylistEntry final : public GuiMediaItem
{
public:
    GuiPlaylistEntry() = default;
    GuiPlaylistEntry(uint playlist, EntryAddress address, const PlaylistEntry& entry);

    uint playlistNumber() const { return m_playlist; }
    EntryAddress address() const { return m_address; }
    const QString& slotUrl() const { return m_slotUrl; }
    void setSlotUrl(const QString& url) { m_slotUrl = url; }
    EndAction endAction() const { return m_endAction; }
    void setEndAction(EndAction action) { m_endAction = action; }
    TakeTransitionType transitionType() const { return m_transitionType; }
    void setTransitionType(TakeTransitionType type) { m_transitionType = type; }
    double transitionDuration() const { return m_transitionDuration; }
    void setTransitionDuration(double seconds) { m_transitionDuration = seconds; }
    double runtimeBefore() const { return m_runtimeBefore; }
    double runtimeAfter() const { return m_runtimeAfter; }
    void setRuntimes(double before, double after);
    /// Whether its slot is there and can be played; a list passes over one that cannot. Not in its JSON.
    bool isPlayable() const { return m_isPlayable; }
    void setPlayable(bool playable) { m_isPlayable = playable; }

    /// The library's record of this entry, for commands.
    PlaylistEntry toSdkEntry() const;
    QJsonObject toJson() const;
    bool fromJson(const QJsonObject& json) override;

private:
    uint m_playlist = 0;
    EntryAddress m_address;
    QString m_slotUrl;
    EndAction m_endAction = EndAction::Next;
    TakeTransitionType m_transitionType = TakeTransitionType::DirectCut;
    bool m_isPlayable = true;
    double m_transitionDuration = 0;
    double m_runtimeBefore = 0;
    double m_runtimeAfter = 0;
};

} // namespace vantrel
