#pragma once

#include <QObject>
#include <QPointer>

namespace vantrel {

class ChannelWidget;
class Hotkeys;
class PlaybackControls;
class PlaybackWidget;
class PlayerPlaybackView;

/// The player by keyboard: the hotkeys of the key map on the channel that has them. That is program while
/// the focus is inside it, and preview otherwise, so that nothing on air changes by a stray key. The take and
/// the mute of program work from every page of the window. Owned by PlayerPlaybackView; main thread.
class PlayerKeys : public QObject
{
    Q_OBJECT

public:
    PlayerKeys(Hotkeys* hotkeys, PlayerPlaybackView* view);

    /// Null while there is no channel.
    PlaybackWidget* focusedChannel() const;
    /// A channel has come; the first of them is the one that the keys are for.
    void addChannel(ChannelWidget* channel);
    void removeChannel(const ChannelWidget* channel);

private:
    void addTransport(Hotkeys* hotkeys);
    void addPoints(Hotkeys* hotkeys);
    void addWindowKeys(Hotkeys* hotkeys);
    /// The transport of the focused channel, if there is anything to play on it.
    PlaybackControls* controls() const;
    /// Shows which channel has the keys.
    void markFocusedChannel();

    PlayerPlaybackView* m_view;
    QPointer<ChannelWidget> m_channel;
    QPointer<PlaybackWidget> m_marked;
};

} // namespace vantrel
