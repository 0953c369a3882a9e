#pragma once

#include "common/playback/columnstep.h"
#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"

class QGridLayout;
class QStackedWidget;

namespace vantrel {

class ElidedLabel;
class IconButton;
class MuteButton;
class TimecodeDisplay;
class ZTLabel;

/// Which channel it is and what plays on it; on program also its duration, the mute and the lock. Owned
/// by PlaybackWidget; main thread.
class PlaybackWidgetHeader : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(bool hasInfiniteDuration READ hasInfiniteDuration WRITE setHasInfiniteDuration NOTIFY
                   hasInfiniteDurationChanged)

public:
    explicit PlaybackWidgetHeader(PlaybackViewMode viewMode, QWidget* parent = nullptr);

    void setMediaName(const QString& name);
    /// A slot's address is shown as "1-5:", an entry's as "5.1:", anything else not at all.
    void setMediaAddress(const QString& address);
    TimecodeDisplay* duration() const { return m_duration; }
    /// Null on preview.
    MuteButton* muteButton() const { return m_mute; }
    /// Holds the timeline and the transport; null on preview.
    IconButton* lockButton() const { return m_lock; }
    bool hasInfiniteDuration() const { return m_hasInfiniteDuration; }
    void setHasInfiniteDuration(bool infinite);
    /// The media begins anew at its end: a mark beside the name, since the next media goes on with that.
    void setRepeats(bool repeats);
    void setColumnStep(ColumnStep step);
    /// base for this widget, base + "-MediaName", "-MediaLocation" and "-Repeat" for its labels.
    void setObjectNames(const QString& base) override;

Q_SIGNALS:
    /// The operator opened or closed the channel's lock.
    void locked(bool locked);
    void hasInfiniteDurationChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void addDuration();
    /// The caption of the duration gives way to the name, which is nowhere else.
    void fitCaption();

    QGridLayout* m_layout;
    QWidget* m_title;
    ZTLabel* m_location;
    ElidedLabel* m_name;
    ZTLabel* m_repeat;
    TimecodeDisplay* m_duration;
    ZTLabel* m_infinite = nullptr;
    ZTLabel* m_durationLabel = nullptr;
    QStackedWidget* m_durationStack = nullptr;
    MuteButton* m_mute = nullptr;
    IconButton* m_lock = nullptr;
    ColumnStep m_step = ColumnStep::Wide;
    bool m_hasInfiniteDuration = false;
};

} // namespace vantrel
