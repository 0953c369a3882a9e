#include "common/playback/levelmeter.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/opaque.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QPainter>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantrel {

namespace {

constexpr int smallestWidth = 48; // pixels
constexpr int usualWidth = 120;
constexpr int largestWidth = 240;
constexpr int framesMs = 40;       // between two steps of what falls
constexpr double describeMs = 500; // texts are for reading, and slower
constexpr double orangeFrom = -18; // dBFS
constexpr double redFrom = -6;

QColor trackColor()
{
    return colors::getColor(colors::Slate_grey_900);
}

} // namespace

LevelMeter::LevelMeter(PlaybackViewMode viewMode, QWidget* parent)
    : ZTFrame(parent)
    , m_title(viewMode == Preview ? tr("Preview level") : tr("Program level"))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMaximumWidth(largestWidth);
    QElapsedTimer timer;
    timer.start();
    m_clock = [timer] { return double(timer.nsecsElapsed()) / 1e6; };
    followFontSize(this, [this](FontSize) { updateGeometry(); });
    describe();
}

void LevelMeter::setClock(std::function<double()> clock)
{
    m_clock = std::move(clock);
}

QSize LevelMeter::sizeHint() const
{
    return {usualWidth, fontMetrics().height()};
}

QSize LevelMeter::minimumSizeHint() const
{
    return {smallestWidth, fontMetrics().height()};
}

void LevelMeter::setState(State state)
{
    if (state == m_state)
        return;
    m_state = state;
    m_describedAt = -1e9;
    if (state != State::Sound) {
        m_bars.clear();
        m_timer.stop();
    }
    update();
}

void LevelMeter::setLevels(const AudioLevels& levels)
{
    setState(levels.channels.empty() ? State::NoSound : State::Sound);
    m_peak = levels.peak();
    const auto count = std::min(qsizetype(levels.channels.size()), qsizetype(AudioLevels::maxChannels));
    if (m_bars.size() != count) {
        m_bars.resize(count);
        update();
    }
    const double now = m_clock();
    for (qsizetype i = 0; i < count; ++i)
        m_bars[i].feed(levels.channels[size_t(i)].peak, now);
    moveOn(2 * framesMs); // the next levels come before that, and draw it
}

void LevelMeter::onLevels(const std::string& source, const AudioLevels& levels)
{
    if (source == m_source)
        setLevels(levels);
}

void LevelMeter::setMuted(bool muted)
{
    if (std::exchange(m_isMuted, muted) == muted)
        return;
    describe();
    update();
}

void LevelMeter::clear()
{
    setState(State::Blank);
    describe();
}

void LevelMeter::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_timer.timerId())
        moveOn(framesMs);
}

void LevelMeter::moveOn(int msToNext)
{
    const double now = m_clock();
    for (LevelBallistics& bar : m_bars)
        bar.advance(now);
    if (std::ranges::all_of(m_bars, &LevelBallistics::isResting))
        m_timer.stop();
    else
        m_timer.start(msToNext, this);
    if (extents() != m_painted)
        update();
    if (now - m_describedAt >= describeMs)
        describe();
}

int LevelMeter::reach(double decibels) const
{
    const double share = (decibels - LevelBallistics::floorDb) / -LevelBallistics::floorDb;
    return static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * width()));
}

QList<LevelMeter::Extent> LevelMeter::extents() const
{
    QList<Extent> extents;
    for (const LevelBallistics& bar : m_bars)
        extents.append({reach(bar.level()), reach(bar.held())});
    return extents;
}

QRect LevelMeter::barRect(int channel) const
{
    // A mono bar is as slim as a stereo one.
    const int bars = std::max(2, int(m_bars.size()));
    const int gap = bars > 4 ? 1 : 2;
    const int thick = std::clamp((height() - (bars - 1) * gap) / bars, 1, 4 + height() / 8);
    const int used = int(std::max(qsizetype(1), m_bars.size())) * (thick + gap) - gap;
    return {0, (height() - used) / 2 + channel * (thick + gap), width(), thick};
}

void LevelMeter::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), colors::getColor(colors::Slate_grey_800));
    m_painted = extents();
    if (m_isMuted) {
        paintMuted(painter);
        return;
    }
    if (m_state == State::Blank)
        return;
    if (m_state == State::NoSound) {
        painter.fillRect(barRect(0), colors::getColor(colors::Slate_grey_400));
        return;
    }
    const QRect bars = barRect(0).united(barRect(std::max(1, int(m_bars.size())) - 1));
    painter.setPen(colors::getColor(colors::Slate_grey_400));
    painter.drawRect(bars.adjusted(0, -1, -1, 0));
    for (int i = 0; i < m_painted.size(); ++i)
        paintBar(painter, barRect(i), m_painted[i]);
}

void LevelMeter::paintBar(QPainter& painter, const QRect& bar, const Extent& extent) const
{
    struct Zone
    {
        int begin, end;
        colors::ColorCode color;
    };
    const int orange = reach(orangeFrom), red = reach(redFrom);
    const Zone zones[] = {
        {0, orange, colors::Zt_green}, {orange, red, colors::Zt_orange}, {red, bar.width(), colors::Zt_red}};
    painter.fillRect(bar, trackColor());
    for (const Zone& zone : zones) {
        const int end = std::min(zone.end, extent.level);
        if (end > zone.begin)
            painter.fillRect(zone.begin, bar.top(), end - zone.begin, bar.height(),
                             colors::getColor(zone.color));
        const int mark = extent.mark - 1;
        if (mark >= zone.begin && mark < zone.end)
            painter.fillRect(std::max(0, mark - 1), bar.top(), 2, bar.height(), colors::getColor(zone.color));
    }
}

void LevelMeter::paintMuted(QPainter& painter) const
{
    painter.fillRect(rect(), colors::getColor(colors::Zt_red));
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    const QString text = tr("MUTED");
    const int room = width() - 4;
    if (const int needed = QFontMetrics(bold).horizontalAdvance(text); needed > room)
        bold.setPixelSize(std::max(8, bold.pixelSize() * room / needed));
    painter.setFont(bold);
    painter.setPen(colors::getColor(colors::White));
    painter.drawText(rect(), Qt::AlignCenter, text);
}

void LevelMeter::describe()
{
    m_describedAt = m_clock();
    QString text;
    switch (m_state) {
    case State::Blank:
        text = tr("%1: not connected").arg(m_title);
        break;
    case State::NoSound:
        text = tr("%1: the media has no sound").arg(m_title);
        break;
    case State::Sound:
        text = m_peak > LevelBallistics::floorDb
                   ? tr("%1: %2 dBFS peak").arg(m_title).arg(std::lround(m_peak))
                   : tr("%1: silence").arg(m_title);
        break;
    }
    if (m_isMuted)
        text += u' ' + tr("(muted)");
    if (text == toolTip())
        return;
    setToolTip(text);
    setAccessibleName(text);
}

bool LevelMeter::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip)
        describe();
    const bool handled = ZTFrame::event(event);
    keepOpaque(this, event);
    return handled;
}

} // namespace vantrel
