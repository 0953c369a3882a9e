#pragma once

#include "common/ui/toolkit/ztframe.h"

class QGridLayout;

namespace vantrel {

class TimecodeDisplay;
class ZTLabel;

/// Where the playhead stands and what is left to the out point. The two readouts share a row as long as they
/// fit. Owned by its parent widget; main thread.
class PlaybackTimecodes : public ZTFrame
{
    Q_OBJECT

public:
    explicit PlaybackTimecodes(QWidget* parent = nullptr);

    /// base for this widget, base + "-Playhead" and base + "-Remaining" for its displays.
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

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void updatePlayhead();
    void updateRemaining();
    void arrange();
    void stackLayout();
    void unstackLayout();
    void placeMiddle();

    QGridLayout* m_layout;
    ZTLabel* m_playheadLabel;
    TimecodeDisplay* m_playhead;
    ZTLabel* m_remainingLabel;
    TimecodeDisplay* m_remaining;
    QWidget* m_middle = nullptr;
    double m_position = 0.0;
    double m_outpoint = 0.0;
    bool m_hasOutpoint = false;
    bool m_isHeldAtEnd = false;
    double m_fps = 0.0;
    bool m_isStacked = false;
};

} // namespace vantrel
