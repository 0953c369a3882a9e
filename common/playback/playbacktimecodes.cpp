#include "common/playback/playbacktimecodes.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/spacing.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QGridLayout>

namespace vantrel {

namespace {

/// What a single row needs besides its four items.
constexpr int rowSlack = 23;

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

void PlaybackTimecodes::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_playhead->setObjectName(base + QStringLiteral("-Playhead"));
    m_remaining->setObjectName(base + QStringLiteral("-Remaining"));
}

void PlaybackTimecodes::setMiddle(QWidget* widget)
{
    m_middle = widget;
    widget->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    placeMiddle();
}

void PlaybackTimecodes::placeMiddle()
{
    if (m_middle)
        m_layout->addWidget(m_middle, 0, 2, m_isStacked ? 2 : 1, 1);
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
}

void PlaybackTimecodes::setRemainingTimeVisible(bool visible)
{
    m_remainingLabel->setVisible(visible);
    m_remaining->setVisible(visible);
}

void PlaybackTimecodes::updateRemaining()
{
    const double left = m_outpoint - m_position;
    m_remaining->setTime(m_hasOutpoint && left > 0.0 ? left : 0.0);
}

void PlaybackTimecodes::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    arrange();
}

void PlaybackTimecodes::arrange()
{
    const int used = m_playheadLabel->sizeHint().width() + m_playhead->sizeHint().width() +
                     m_remainingLabel->sizeHint().width() + m_remaining->sizeHint().width();
    const bool fitsInARow = width() - used > rowSlack;
    if (fitsInARow && m_isStacked)
        unstackLayout();
    else if (!fitsInARow && !m_isStacked)
        stackLayout();
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

} // namespace vantrel
