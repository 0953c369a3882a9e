#pragma once

#include "common/playback/levelballistics.h"
#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"
#include "tarn/preview/audiolevels.h"

#include <QBasicTimer>
#include <QList>

#include <functional>
#include <string>

namespace vantrel {

/// How loud a channel is: a bar for each of its sound's channels from -60 to 0 dBFS, the first on top, with a
/// mark at the latest peak. Grey where the media has no sound, blank while nothing is heard of the server.
/// Owned by PlaybackWidgetFooter; main thread.
class LevelMeter : public ZTFrame
{
    Q_OBJECT

public:
    enum class State { Blank, NoSound, Sound };

    explicit LevelMeter(PlaybackViewMode viewMode, QWidget* parent = nullptr);

    /// The scene path of the playback whose levels are shown; before this none are.
    void setSource(const std::string& path) { m_source = path; }
    State state() const { return m_state; }
    bool isMuted() const { return m_isMuted; }
    /// Milliseconds that only go up; for tests in place of the real time.
    void setClock(std::function<double()> clock);
    /// How far the bar and the mark of a channel reach, dBFS.
    const QList<LevelBallistics>& bars() const { return m_bars; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    void setLevels(const vantrel::AudioLevels& levels);
    /// All levels of the server; those of another source are not for this widget.
    void onLevels(const std::string& source, const vantrel::AudioLevels& levels);
    /// A band instead of the levels: nothing of them is heard.
    void setMuted(bool muted);
    /// The server is gone.
    void clear();

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    bool event(QEvent* event) override;

private:
    struct Extent
    {
        int level = 0, mark = 0; // pixels from the left; a mark at 0 is not shown
        friend bool operator==(const Extent&, const Extent&) = default;
    };

    void setState(State state);
    void moveOn(int msToNext);
    QList<Extent> extents() const;
    int reach(double decibels) const;
    QRect barRect(int channel) const;
    void paintBar(QPainter& painter, const QRect& bar, const Extent& extent) const;
    void paintMuted(QPainter& painter) const;
    void describe();

    const QString m_title;
    std::string m_source;
    State m_state = State::Blank;
    bool m_isMuted = false;
    QList<LevelBallistics> m_bars;
    QList<Extent> m_painted; // what was on the screen last
    double m_peak = AudioLevels::silence;
    double m_describedAt = -1e9;
    std::function<double()> m_clock;
    QBasicTimer m_timer; // runs while a bar or a mark falls
};

} // namespace vantrel
