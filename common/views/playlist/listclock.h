#pragma once

#include "common/views/playlist/rundown.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QTimer>

namespace vantrel {

class AbstractPlaylistProvider;
class GUIPlayback;
class Session;

/// When what plays on a channel will be over: the entry, those after it and the list, on the wall clock.
/// Follows the channel and the library; what it is given must outlive it. Main thread.
class ListClock : public QObject
{
    Q_OBJECT

public:
    ListClock(GUIPlayback* playback, AbstractPlaylistProvider* provider, QObject* parent = nullptr);
    /// Program's, the session's own: working out a long list is done once for all who show it.
    static ListClock* ofProgram(Session* session);

    /// The list that plays and its entry; the list is 0, and the entry no address, while none does.
    uint playlist() const { return m_playlist; }
    const EntryAddress& playing() const { return m_playing; }
    /// Whether this entry of the list plays. One that was removed does not, whatever has its number by now.
    bool isPlaying(const EntryAddress& address) const
    {
        return address == m_playing && m_rundown.kind() != Rundown::Kind::Removed;
    }
    /// As the server tells it, or else as the list has it.
    EntryAddress next() const;
    const Rundown& rundown() const { return m_rundown; }
    /// Seconds left of the entry that plays, 0 or more.
    double left() const;
    /// While the channel is paused every end moves on with the clock.
    bool isRunning() const;
    /// The server says nothing any more: ends stay where they were last known to be, and are told as such.
    void setStale(bool stale);
    /// Nothing for an entry that is not about to come by itself.
    std::optional<QDateTime> endOf(const EntryAddress& address) const;
    /// When the list is over, or how it goes on instead, in a few words: "Ends at 21:47:30 (in 00:12:08)".
    /// Empty while no list plays.
    QString text() const;
    /// The number and name of the next entry: "3.5 Applause loop". Empty where there is none.
    QString nextName() const;
    /// The number of an entry, and the name of its media where that is known.
    static QString nameOf(const AbstractPlaylistProvider* provider, uint playlist,
                          const EntryAddress& address);

    /// A time of the day, to the nearest second: "21:47:30".
    static QString clockText(const QDateTime& time);

Q_SIGNALS:
    /// Another entry plays, or other entries come after it.
    void courseChanged();
    /// Some end has moved by more than a clock's second.
    void ticked();

private:
    QString courseText() const;
    bool isHeld() const;
    void follow();
    void recalculate();
    void tick();
    double lengthOf(const GuiPlaylistEntry& entry) const;
    /// When the entry that plays is over.
    QDateTime zero() const;

    QPointer<GUIPlayback> m_playback;
    AbstractPlaylistProvider* m_provider;
    QTimer m_recalculate;
    QTimer m_tick;
    uint m_playlist = 0;
    EntryAddress m_playing;
    Rundown m_rundown;
    bool m_isGone = false; // what plays is no entry any more
    bool m_isStale = false;
    mutable double m_left = -1;
    mutable QDateTime m_zero; // when the entry that plays is over, as last told
};

} // namespace vantrel
