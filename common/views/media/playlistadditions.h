#pragma once

#include <QList>
#include <QObject>
#include <QVariantList>

namespace vantrel {

class Session;

/// Puts slots at the end of playlists for the MEDIA tab ("playlistAdditions"), each time as one step of undo.
/// The view owns it; main thread only.
class PlaylistAdditions : public QObject
{
    Q_OBJECT

public:
    /// session: null has no playlists; else it must outlive this.
    PlaylistAdditions(Session* session, QObject* parent = nullptr);

    /// By number: maps with "number" and "text".
    Q_INVOKABLE QVariantList lists() const;
    /// The one that the player's editor shows; -1 for none.
    Q_INVOKABLE int shownList() const;
    /// playlist: -1 makes one. What has been sent off, a sentence; empty where that was refused.
    Q_INVOKABLE QString add(int collection, const QList<int>& slotNumbers, int playlist);

private:
    Session* m_session;
};

} // namespace vantrel
