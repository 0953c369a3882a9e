#pragma once

#include "common/ui/toolkit/iconbutton.h"

#include <QMouseEvent>

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

protected:
    /// The second click of a double one would undo the first.
    void mouseDoubleClickEvent(QMouseEvent* event) override { event->accept(); }
};

} // namespace vantrel
