#pragma once

#include "common/session/settings/configuration.h"
#include "common/session/settings/timecodeviewmode.h"
#include "common/ui/toolkit/ztlabel.h"

namespace vantrel {

/// A time in the format the operator has chosen for all displays, in figures of one width so that a running
/// time stands still. Owned by its parent widget; main thread.
class TimecodeDisplay : public ZTLabel
{
    Q_OBJECT
    Q_PROPERTY(double time READ getTime WRITE setTime NOTIFY timeChanged)
    Q_PROPERTY(double fps READ getFps WRITE setFps NOTIFY fpsChanged)

public:
    explicit TimecodeDisplay(QWidget* parent = nullptr);

    double getTime() const { return m_time; }
    double getFps() const { return m_fps; }
    /// Seconds, or NaN for a time that nobody knows, which is shown as "--:--:--". The signals stay silent,
    /// the display being the end of the line.
    void setTime(double seconds);
    /// For a time that is never none, a duration say.
    void setZeroUnknown(bool unknown);
    /// The real rate, 29.97 say; the nominal one is its nearest whole number.
    void setFps(double fps);
    void setTimecodeViewMode(TimecodeViewMode mode);
    /// For a time that runs with the pictures, on this background: each step asks for room only when the
    /// width changes, and paints nothing but the display.
    void setRunningOn(const QColor& background);
    /// As high as its figures alone, without the room that letters need below the line.
    void setFiguresOnly(bool only);
    /// Pixels that it takes with any time of a day, however little it says now: who makes room
    /// by it need not make room anew as the time runs.
    int roomyWidth() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    void onTimecodeViewModeChange(vantrel::ConfigurationOption option, const QVariant& value);

Q_SIGNALS:
    void timeChanged();
    void fpsChanged();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void updateText();
    void fit();

    bool m_figuresOnly = false;
    bool m_isZeroUnknown = false;
    QColor m_background; // invalid: what lies below shows
    TimecodeViewMode m_viewMode = TimecodeViewMode::Time;
    double m_time = 0.0;
    double m_fps = 30.0;
};

} // namespace vantrel
