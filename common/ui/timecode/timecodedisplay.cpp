#include "common/ui/timecode/timecodedisplay.h"

#include "common/session/settings/timeutils.h"
#include "common/ui/style/opaque.h"
#include "common/ui/timecode/accessibletime.h"
#include "util/clocktime.h"
#include "util/smpte_timecode.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

/// Figures take the width of the widest, everything else its own.
int advanceOf(const QFontMetrics& metrics, QChar c)
{
    return metrics.horizontalAdvance(c.isDigit() ? QChar(u'0') : c);
}

/// The rate to count by. A channel without media has none: it counts as at the start, so that the display is
/// never blank.
double usableRate(double fps)
{
    constexpr double initial = 30.0;
    return fps > 0.0 && fps < 65535.0 ? fps : initial;
}

QString longestText(TimecodeViewMode mode)
{
    switch (mode) {
    case TimecodeViewMode::Time:
        return QStringLiteral("00:00:00.000");
    case TimecodeViewMode::Frames:
        return QStringLiteral("0000000");
    default:
        return QStringLiteral("00:00:00:00");
    }
}

int textWidth(const QFontMetrics& metrics, const QString& text)
{
    int width = 0;
    for (const QChar c : text)
        width += advanceOf(metrics, c);
    return width;
}

} // namespace

TimecodeDisplay::TimecodeDisplay(QWidget* parent)
    : ZTLabel(parent)
{
    AccessibleTime::install();
    setTextFormat(Qt::PlainText);
    if (const Configuration* settings = configuration())
        connect(settings, &Configuration::optionChanged, this, &TimecodeDisplay::onTimecodeViewModeChange);
    m_viewMode = static_cast<TimecodeViewMode>(configurationValue(TIMECODE_DISPLAY_MODE).toInt());
    updateText();
}

void TimecodeDisplay::setRunningOn(const QColor& background)
{
    m_background = background;
    fit();
}

void TimecodeDisplay::setFiguresOnly(bool only)
{
    m_figuresOnly = only;
    fit();
}

/// A widget of fixed size does not have its window laid out with each of its texts.
void TimecodeDisplay::fit()
{
    if (!m_background.isValid())
        return;
    const QSize wanted = sizeHint();
    if (minimumSize() != wanted || maximumSize() != wanted)
        setFixedSize(wanted);
}

bool TimecodeDisplay::event(QEvent* event)
{
    const bool handled = ZTLabel::event(event);
    if (!m_background.isValid())
        return handled;
    keepOpaque(this, event);
    if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::FontChange)
        fit();
    return handled;
}

void TimecodeDisplay::setTime(double seconds)
{
    m_time = seconds;
    updateText();
    fit();
}

void TimecodeDisplay::setZeroUnknown(bool unknown)
{
    m_isZeroUnknown = unknown;
    updateText();
}

void TimecodeDisplay::setFps(double fps)
{
    m_fps = fps;
    updateText();
    fit();
}

void TimecodeDisplay::setTimecodeViewMode(TimecodeViewMode mode)
{
    m_viewMode = mode;
    updateText();
    fit();
}

void TimecodeDisplay::onTimecodeViewModeChange(ConfigurationOption option, const QVariant& value)
{
    if (option == TIMECODE_DISPLAY_MODE)
        setTimecodeViewMode(static_cast<TimecodeViewMode>(value.toInt()));
}

void TimecodeDisplay::updateText()
{
    if (std::isnan(m_time) || (m_isZeroUnknown && m_time == 0.0)) {
        setText(QStringLiteral("--:--:--"));
        return;
    }
    const long long ns = clocktime::fromSeconds(m_time);
    if (m_viewMode == TimecodeViewMode::Time) {
        setText(TimeUtils::formatClockTime(ns));
        return;
    }
    const double fps = usableRate(m_fps);
    const long long frame = TimeUtils::frameNumFromClockTime(ns, fps);
    if (m_viewMode == TimecodeViewMode::Frames) {
        setText(QString::number(frame));
        return;
    }
    if (frame > 2147483646 || frame < -2147483646)
        return;
    const long nominal = std::max(std::lround(fps), 1L);
    const auto type =
        m_viewMode == TimecodeViewMode::NDF ? SmpteTimecodeType::NonDrop : SmpteTimecodeType::DropFrame;
    const SmpteTimecode timecode(type, static_cast<int>(frame), static_cast<unsigned short>(nominal));
    setText(QString::fromStdString(timecode.toString()));
}

QSize TimecodeDisplay::sizeHint() const
{
    ensurePolished();
    const QMargins margins = contentsMargins();
    const QFontMetrics metrics = fontMetrics();
    return {textWidth(metrics, text()) + margins.left() + margins.right(),
            (m_figuresOnly ? metrics.capHeight() * 5 / 4 : metrics.height()) + margins.top() +
                margins.bottom()};
}

int TimecodeDisplay::roomyWidth() const
{
    const int now = sizeHint().width(); // polished by now
    const QFontMetrics metrics = fontMetrics();
    return now + std::max(0, textWidth(metrics, longestText(m_viewMode)) - textWidth(metrics, text()));
}

QSize TimecodeDisplay::minimumSizeHint() const
{
    return sizeHint();
}

void TimecodeDisplay::paintEvent(QPaintEvent* event)
{
    if (!m_background.isValid())
        QFrame::paintEvent(event);
    QPainter painter(this);
    if (m_background.isValid())
        painter.fillRect(rect(), m_background);
    painter.setPen(palette().color(isEnabled() ? QPalette::Normal : QPalette::Disabled, foregroundRole()));
    const QFontMetrics metrics = painter.fontMetrics();
    const QRect area = contentsRect();
    int x = area.left();
    if (alignment() & Qt::AlignRight)
        x = area.right() + 1 - textWidth(metrics, text());
    else if (alignment() & Qt::AlignHCenter)
        x += (area.width() - textWidth(metrics, text())) / 2;
    for (const QChar c : text()) {
        const int width = advanceOf(metrics, c);
        painter.drawText(QRect(x, area.top(), width, area.height()), Qt::AlignCenter | Qt::TextDontClip, c);
        x += width;
    }
}

} // namespace vantrel
