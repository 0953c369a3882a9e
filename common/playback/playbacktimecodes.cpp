#include "common/playback/playbacktimecodes.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/spacing.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QEvent>
#include <QGridLayout>

#include <limits>
#include <utility>

namespace vantrel {

namespace {

/// What a single row needs besides its four items.
constexpr int rowSlack = 23;
constexpr int leastMiddle = 160;  // pixels in which a number and a name can be read
constexpr double soonFrom = 10.0; // seconds that are left
constexpr double nowFrom = 5.0;
constexpr double assumedPicture = 0.04; // seconds, of media without a rate

} // namespace

PlaybackTimecodes::PlaybackTimecodes(QWidget* parent)
    : ZTFrame(parent)
    , m_layout(new QGridLayout(this))
    , m_playheadLabel(new ZTLabel(tr("Playhead (abs):"), this))
    , m_playhead(new TimecodeDisplay(this))
    , m_remainingLabel(new ZTLabel(tr("Time left:"), this))
    , m_remaining(new TimecodeDisplay(this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setHorizontalSpacing(spacing::tight);
    m_layout->setVerticalSpacing(0);
    m_layout->setColumnStretch(2, 1);
    m_layout->addWidget(m_playheadLabel, 0, 0);
    m_layout->addWidget(m_playhead, 0, 1, Qt::AlignLeft | Qt::AlignVCenter);
    m_playhead->setStyleClass(QStringLiteral("time"));
    m_remaining->setStyleClass(QStringLiteral("time"));
    for (TimecodeDisplay* display : {m_playhead, m_remaining})
        display->setRunningOn(colors::getColor(colors::Slate_grey_800)); // the panel's
    m_playheadLabel->setStyleClass(QStringLiteral("dim"));
    m_remainingLabel->setStyleClass(QStringLiteral("dim"));
    m_playhead->setAccessibleName(tr("Playhead position"));
    m_remaining->setAccessibleName(tr("Time left"));
    unstackLayout();
}

void PlaybackTimecodes::setViewMode(PlaybackViewMode viewMode)
{
    const bool isProgram = viewMode == Program;
    m_largest = isProgram ? m_remaining : new TimecodeDisplay(this);
    m_largest->setVisible(isProgram);
    m_largest->setStyleClass(QStringLiteral("clock"));
    m_largest->setFiguresOnly(true);
    m_ended = new ZTLabel(tr("Ended, holding"), this);
    m_ended->setStyleClass(isProgram ? QStringLiteral("ended") : QStringLiteral("endedsmall"));
    m_ended->hide();
    place();
    showRemaining();
}

void PlaybackTimecodes::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_playhead->setObjectName(base + QStringLiteral("-Playhead"));
    m_remaining->setObjectName(base + QStringLiteral("-Remaining"));
    if (m_ended)
        m_ended->setObjectName(base + QStringLiteral("-Ended"));
}

void PlaybackTimecodes::setMiddle(QWidget* widget)
{
    m_middle = widget;
    widget->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    placeMiddle();
}

/// A display that wants another width, a middle that comes or goes.
bool PlaybackTimecodes::event(QEvent* event)
{
    const bool handled = ZTFrame::event(event);
    if (event->type() == QEvent::LayoutRequest)
        arrange();
    return handled;
}

void PlaybackTimecodes::fitMiddle(int left)
{
    const bool isShown = m_middle && m_middle->isVisibleTo(this);
    m_playheadLabel->setVisible(!isShown || m_isStacked || left >= leastMiddle);
}

void PlaybackTimecodes::placeMiddle()
{
    if (m_middle)
        m_layout->addWidget(m_middle, 0, 2, 1, m_isStacked ? 3 : 1);
}

QSize PlaybackTimecodes::sizeHint() const
{
    return {m_playhead->sizeHint().width() + m_remaining->sizeHint().width(), m_layout->sizeHint().height()};
}

QSize PlaybackTimecodes::minimumSizeHint() const
{
    return {m_playheadLabel->sizeHint().width() + m_playhead->sizeHint().width() + spacing::tight,
            m_layout->minimumSize().height()};
}

void PlaybackTimecodes::setPosition(double seconds)
{
    m_position = seconds;
    updatePlayhead();
    updateRemaining();
}

void PlaybackTimecodes::setHeldAtEnd(bool held)
{
    m_isHeldAtEnd = held;
    updatePlayhead();
}

void PlaybackTimecodes::updatePlayhead()
{
    const bool isPastEnd = m_isHeldAtEnd && m_hasOutpoint && m_outpoint > 0.0 && m_position > m_outpoint;
    m_playhead->setTime(isPastEnd ? m_outpoint : m_position);
}

void PlaybackTimecodes::setOutpoint(double seconds)
{
    m_outpoint = seconds;
    m_hasOutpoint = true;
    updatePlayhead();
    updateRemaining();
}

void PlaybackTimecodes::setFps(double mediaFps)
{
    if (mediaFps == m_fps)
        return;
    m_fps = mediaFps;
    m_playhead->setFps(mediaFps);
    m_remaining->setFps(mediaFps);
    updateRemaining();
}

void PlaybackTimecodes::setRemainingTimeVisible(bool visible)
{
    m_isRemainingVisible = visible;
    showRemaining();
}

void PlaybackTimecodes::setState(const QString& state)
{
    m_state = state;
    updateRemaining();
}

void PlaybackTimecodes::updateRemaining()
{
    const double left = m_outpoint - m_position;
    // What runs without an end that is known is not over.
    const bool isUnknown = m_position > 0.0 && m_outpoint <= 0.0;
    m_remaining->setTime(isUnknown                     ? std::numeric_limits<double>::quiet_NaN()
                         : m_hasOutpoint && left > 0.0 ? left
                                                       : 0.0);
    if (!m_ended)
        return;
    // The last picture is the one that begins before the out point.
    const double picture = m_fps > 0.0 ? 1.0 / m_fps : assumedPicture;
    const bool isHolding = m_outpoint > 0.0 && left < 1.5 * picture && m_state == QLatin1String("pause");
    if (std::exchange(m_isHolding, isHolding) != isHolding)
        showRemaining();
    if (const QString now = urgency(left); std::exchange(m_urgency, now) != now)
        setDynamicStyle(m_remaining, "urgency", now);
}

QString PlaybackTimecodes::urgency(double left) const
{
    if (!m_hasOutpoint || m_outpoint <= 0.0 || left >= soonFrom)
        return {};
    return left < nowFrom ? QStringLiteral("now") : QStringLiteral("soon");
}

void PlaybackTimecodes::showRemaining()
{
    const bool isHolding = m_isHolding && m_isRemainingVisible;
    const bool hasRoom =
        !m_largest || !m_isStacked ||
        m_remainingLabel->sizeHint().width() + m_remaining->roomyWidth() + spacing::tight <= width();
    m_remainingLabel->setVisible(m_isRemainingVisible && !isHolding && hasRoom);
    m_remaining->setVisible(m_isRemainingVisible && !isHolding);
    if (m_ended)
        m_ended->setVisible(isHolding);
}

int PlaybackTimecodes::remainingWidth() const
{
    return (m_largest ? m_largest : m_remaining)->roomyWidth();
}

void PlaybackTimecodes::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    arrange();
}

void PlaybackTimecodes::arrange()
{
    const int used = m_playheadLabel->sizeHint().width() + m_playhead->roomyWidth() +
                     m_remainingLabel->sizeHint().width() + remainingWidth();
    const bool fitsInARow = width() - used > rowSlack;
    if (fitsInARow && m_isStacked)
        unstackLayout();
    else if (!fitsInARow && !m_isStacked)
        stackLayout();
    // Placing lays out anew, which comes back here.
    if (m_largest && (m_isPlacedStacked != m_isStacked || m_placedHeight != m_largest->sizeHint().height()))
        place();
    showRemaining();
    fitMiddle(width() - used);
}

void PlaybackTimecodes::stackLayout()
{
    m_isStacked = true;
    m_layout->addWidget(m_remainingLabel, 1, 0);
    m_layout->addWidget(m_remaining, 1, 1, Qt::AlignLeft | Qt::AlignVCenter);
    placeMiddle();
}

void PlaybackTimecodes::unstackLayout()
{
    m_isStacked = false;
    m_layout->addWidget(m_remainingLabel, 0, 3);
    m_layout->addWidget(m_remaining, 0, 4, Qt::AlignLeft | Qt::AlignVCenter);
    placeMiddle();
}

/// In a channel what is left stands at the right end of its row, which is as high on both channels.
void PlaybackTimecodes::place()
{
    m_isPlacedStacked = m_isStacked;
    m_placedHeight = m_largest->sizeHint().height();
    const int row = m_isStacked ? 1 : 0;
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    m_layout->setRowMinimumHeight(1 - row, 0);
    m_layout->setRowMinimumHeight(row, m_placedHeight);
    if (m_isStacked) { // in one cell with the label: neither is bound to the columns of the row above
        m_layout->addWidget(m_remainingLabel, 1, 0, 1, 5, Qt::AlignLeft | Qt::AlignVCenter);
        m_layout->addWidget(m_remaining, 1, 0, 1, 5, right);
    }
    m_layout->addWidget(m_ended, row, m_isStacked ? 0 : 2, 1, m_isStacked ? 5 : 3, right);
}

} // namespace vantrel
