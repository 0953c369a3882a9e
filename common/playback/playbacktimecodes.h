#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"

class QGridLayout;

namespace vantrel {

class TimecodeDisplay;
class ZTLabel;

/// Where the playhead stands and what is left to the out point. The two readouts share a row as long as they
/// fit. In a channel what is left stands out: on program at twice the size, on both in colour as the end
/// comes near, and as a word once the last picture is held. Owned by its parent widget; main thread.
class PlaybackTimecodes : public ZTFrame
{
    Q_OBJECT

public:
    explicit PlaybackTimecodes(QWidget* parent = nullptr);

    /// Whose times these are. Both channels take the same room, so that they stand in line.
    void setViewMode(PlaybackViewMode viewMode);
    /// base for this widget, base + "-Playhead" and base + "-Remaining" for its displays, base + "-Ended" for
    /// the word.
    void setObjectNames(const QString& base) override;
    /// Gives the room between the two readouts to a widget, which takes no more than that.
    void setMiddle(QWidget* widget);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    /// Seconds.
    void setPosition(double seconds);
    /// Seconds; until it is called nothing remains.
    void setOutpoint(double seconds);
    void setFps(double mediaFps);
    /// A still stands at its end for as long as nothing follows: its playhead does not count on.
    void setHeldAtEnd(bool held);
    void setRemainingTimeVisible(bool visible);
    /// The channel's, "play" say.
    void setState(const QString& state);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void updatePlayhead();
    void updateRemaining();
    void showRemaining();
    QString urgency(double left) const;
    int remainingWidth() const;
    void place();
    void arrange();
    void stackLayout();
    void unstackLayout();
    void placeMiddle();
    /// Where the middle needs it, the caption of the playhead gives way: the figures have a name of their
    /// own.
    void fitMiddle(int left);

    QGridLayout* m_layout;
    ZTLabel* m_playheadLabel;
    TimecodeDisplay* m_playhead;
    ZTLabel* m_remainingLabel;
    TimecodeDisplay* m_remaining;
    TimecodeDisplay* m_largest = nullptr; // in a channel: what the room is measured by
    ZTLabel* m_ended = nullptr;           // likewise
    QString m_urgency;
    QString m_state;
    bool m_isRemainingVisible = true;
    bool m_isHolding = false;
    QWidget* m_middle = nullptr;
    double m_position = 0.0;
    double m_outpoint = 0.0;
    bool m_hasOutpoint = false;
    bool m_isHeldAtEnd = false;
    double m_fps = 0.0;
    bool m_isStacked = false;
    bool m_isPlacedStacked = false;
    int m_placedHeight = 0;
};

} // namespace vantrel
