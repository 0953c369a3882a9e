#pragma once

#include "common/ui/toolkit/iconbutton.h"

namespace vantrel {

/// Silences a channel. A click only tells; what the button shows is the channel's state. Owned by
/// PlaybackWidgetHeader; main thread.
class MuteButton : public IconButton
{
    Q_OBJECT
    Q_PROPERTY(bool muted READ isMuted WRITE setMuted NOTIFY mutedChanged)

public:
    explicit MuteButton(QWidget* parent = nullptr);

    bool isMuted() const { return isChecked(); }

public Q_SLOTS:
    void setMuted(bool muted);

Q_SIGNALS:
    /// The operator's wish, which becomes a command.
    void muteStateChanged(bool muted);
    /// Silent, since the property only ever follows the scene.
    void mutedChanged();
};

} // namespace vantrel
