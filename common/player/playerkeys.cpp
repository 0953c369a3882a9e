#include "common/player/playerkeys.h"

#include "common/playback/mutebutton.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/takebutton.h"
#include "common/playback/takecontrols.h"
#include "common/player/channelwidget.h"
#include "common/player/playerplaybackview.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/toolkit/iconbutton.h"

#include <QApplication>
#include <QShortcut>

namespace vantrel {

PlayerKeys::PlayerKeys(Hotkeys* hotkeys, PlayerPlaybackView* view)
    : QObject(view)
    , m_view(view)
{
    addTransport(hotkeys);
    addPoints(hotkeys);
    addWindowKeys(hotkeys);
    // Later: a channel that goes gives up the focus half-destroyed.
    connect(
        qApp, &QApplication::focusChanged, this, [this] { markFocusedChannel(); }, Qt::QueuedConnection);
}

void PlayerKeys::addTransport(Hotkeys* hotkeys)
{
    const auto add = [&](const char* name, bool repeats, void (PlaybackControls::*action)(), bool ofMoving) {
        const auto run = [this, action, ofMoving] {
            PlaybackControls* transport = controls();
            if (transport && (!ofMoving || transport->canSeekPoints()))
                (transport->*action)();
        };
        QShortcut* shortcut =
            hotkeys->addShortcut(QLatin1String(name), this, run, Qt::WindowShortcut, m_view);
        if (shortcut)
            shortcut->setAutoRepeat(repeats);
    };
    add("play_pause", false, &PlaybackControls::handlePlayPause, false);
    add("seek_inpoint", false, &PlaybackControls::handleSeekInpoint, true);
    add("seek_outpoint", false, &PlaybackControls::handleSeekOutpoint, true);
    add("prev_frame", true, &PlaybackControls::handlePrevFrame, true);
    add("next_frame", true, &PlaybackControls::handleNextFrame, true);
}

void PlayerKeys::addPoints(Hotkeys* hotkeys)
{
    const auto add = [&](const char* name, void (PlaybackControls::*action)()) {
        const auto run = [this, action] {
            PlaybackControls* transport = controls();
            if (transport && transport->canSetPoints())
                (transport->*action)();
        };
        if (QShortcut* shortcut =
                hotkeys->addShortcut(QLatin1String(name), this, run, Qt::WindowShortcut, m_view))
            shortcut->setAutoRepeat(false);
    };
    add("set_inpoint", &PlaybackControls::handleSetInpoint);
    add("set_outpoint", &PlaybackControls::handleSetOutpoint);
}

void PlayerKeys::addWindowKeys(Hotkeys* hotkeys)
{
    const auto add = [&](const char* name, const std::function<void()>& run) {
        // A key that is held down must not take, or mute, over and over.
        if (QShortcut* shortcut = hotkeys->addShortcut(QLatin1String(name), this, run))
            shortcut->setAutoRepeat(false);
    };
    add("take", [this] {
        if (m_channel)
            m_channel->takeControls()->takeButton()->click();
    });
    add("mute_program", [this] {
        if (m_channel)
            m_channel->programWidget()->muteButton()->click();
    });
    add("lock_program", [this] {
        if (m_channel)
            m_channel->programWidget()->lockButton()->click();
    });
}

void PlayerKeys::addChannel(ChannelWidget* channel)
{
    if (!m_channel)
        m_channel = channel;
    markFocusedChannel();
}

void PlayerKeys::removeChannel(const ChannelWidget* channel)
{
    if (m_channel == channel)
        m_channel = nullptr;
    markFocusedChannel();
}

PlaybackWidget* PlayerKeys::focusedChannel() const
{
    for (QWidget* widget = QApplication::focusWidget(); widget && widget != m_view;
         widget = widget->parentWidget()) {
        if (auto* focused = qobject_cast<PlaybackWidget*>(widget))
            return focused;
    }
    return m_channel ? m_channel->previewWidget() : nullptr;
}

PlaybackControls* PlayerKeys::controls() const
{
    const PlaybackWidget* focused = focusedChannel();
    return focused && focused->controls()->isEnabled() ? focused->controls() : nullptr;
}

void PlayerKeys::markFocusedChannel()
{
    PlaybackWidget* focused = focusedChannel();
    if (focused == m_marked)
        return;
    if (m_marked)
        setDynamicStyle(m_marked, "keys", false);
    m_marked = focused;
    if (focused)
        setDynamicStyle(focused, "keys", true);
}

} // namespace vantrel
