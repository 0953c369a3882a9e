#pragma once

#include "common/playback/columnstep.h"
#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"
#include "tarn/ref.h"

#include <array>

class QHBoxLayout;
class QUndoStack;

namespace vantrel {

class IconButton;
class Object;

/// The transport of a channel. The state follows the scene through the property "state"; the operator's click
/// sets it at once, and the server's next word decides. Owned by PlaybackWidget; main thread.
class PlaybackControls : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(QString state READ state WRITE setState NOTIFY stateChanged)

public:
    /// stack: executes the commands; must outlive this. Without one they fail with a warning.
    PlaybackControls(PlaybackViewMode viewMode, QUndoStack* stack, QWidget* parent = nullptr);
    ~PlaybackControls() override;

    QString state() const { return m_state; }
    /// "play", "pause" or "stop"; anything else is logged and leaves the buttons alone.
    void setState(const QString& state);
    /// The playback object that the commands go to, or null.
    void setObject(Object* object);
    void setSeekButtonsVisible(bool visible);
    void setSeekButtonsEnabled(bool enabled);
    /// Of the two that set points, which need a slot; behind setSeekButtonsEnabled().
    void setPointsEnabled(bool enabled);
    /// Why the transport cannot be used, in the place of its tooltips; empty when it can.
    void setBlocked(const QString& reason);
    void setColumnStep(ColumnStep step);
    /// Whether the media and the channel have points to seek to, and to set.
    bool canSeekPoints() const;
    bool canSetPoints() const;

public Q_SLOTS:
    void handlePlayPause();
    void handleSeekInpoint();
    void handleSetInpoint();
    void handlePrevFrame();
    void handlePrevious();
    void handlePause();
    void handlePlay();
    void handleStop();
    void handleNext();
    void handleNextFrame();
    void handleSeekOutpoint();
    void handleSetOutpoint();
    /// Seconds.
    void handleSeekPosition(double position);
    void handleSeekStarting();
    void handleSeekEnding();

Q_SIGNALS:
    /// The operator chose another state; "state" goes to the scene.
    void stateChanged();
    void stateChangeDone();
    void setInpoint();
    void seekPosition();
    void setOutpoint();

private:
    enum Button { SetIn, SeekIn, Previous, Pause, Play, Stop, Next, SeekOut, SetOut, ButtonCount };

    void invoke(const QString& method, const QString& text, const char* logName);
    void step(int frames);
    std::array<IconButton*, 4> seekButtons() const;

    PlaybackViewMode m_viewMode;
    QUndoStack* m_stack;
    QHBoxLayout* m_layout;
    std::array<IconButton*, ButtonCount> m_buttons{};
    QString m_state = QStringLiteral("play");
    QString m_stateBeforeSeek = QStringLiteral("play");
    Ref<Object> m_object;
};

} // namespace vantrel
