#include "common/playback/playbackwidgetheader.h"

#include "common/media/address/mediautils.h"
#include "common/media/address/showntext.h"
#include "common/playback/mutebutton.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QStackedWidget>

namespace vantrel {

PlaybackWidgetHeader::PlaybackWidgetHeader(PlaybackViewMode viewMode, QWidget* parent)
    : ZTFrame(parent)
    , m_layout(new QGridLayout(this))
    , m_title(new QWidget(this))
    , m_location(new ZTLabel(m_title))
    , m_name(new ElidedLabel(m_title))
    , m_repeat(new ZTLabel(tr("Repeat"), m_title))
    , m_duration(new TimecodeDisplay(this))
{
    const bool isProgram = viewMode == Program;
    auto* channel = new ZTLabel(isProgram ? tr("Program") : tr("Preview"), this);
    channel->setStyleClass(isProgram ? QStringLiteral("program") : QStringLiteral("preview"));
    m_location->setStyleClass(QStringLiteral("dim"));
    m_name->setElided(true);
    m_name->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    m_repeat->setStyleClass(QStringLiteral("mark"));
    m_repeat->setToolTip(
        tr("At its end the media begins anew, and so does what comes next on this channel."));
    m_repeat->hide();
    m_duration->setAccessibleName(tr("Duration"));
    auto* title = new QHBoxLayout(m_title);
    title->setContentsMargins(0, 0, 0, 0);
    title->setSpacing(spacing::tight);
    title->addWidget(m_location);
    title->addWidget(m_name);
    title->addWidget(m_repeat, 0, Qt::AlignVCenter);
    title->addStretch(1);

    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setHorizontalSpacing(spacing::normal);
    m_layout->setVerticalSpacing(0);
    m_layout->setColumnStretch(1, 1);
    m_layout->addWidget(channel, 0, 0, Qt::AlignVCenter);
    if (isProgram)
        addDuration();
    else
        m_duration->hide();
    followFontSize(this, [this](FontSize) { setColumnStep(m_step); });
}

void PlaybackWidgetHeader::addDuration()
{
    m_infinite = new ZTLabel(tr("Infinite"), this);
    m_infinite->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_duration->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_duration->setZeroUnknown(true);
    m_durationStack = new QStackedWidget(this);
    m_durationStack->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    m_durationStack->setToolTip(tr("Duration"));
    m_durationStack->addWidget(m_duration);
    m_durationStack->addWidget(m_infinite);
    m_mute = new MuteButton(this);
    m_lock = new IconButton(this);
    m_lock->setToggleIcons(QStringLiteral("lock"), QStringLiteral("unlock"));
    m_lock->setCheckedColor(colors::getColor(colors::Zt_spot_color));
    m_lock->setChecked(true);
    m_lock->setAccessibleName(tr("Lock program"));
    setHotkeyTip(m_lock, tr("Lock: holds the timeline and the transport of program"),
                 {QStringLiteral("lock_program")});
    connect(m_lock, &QAbstractButton::toggled, this, &PlaybackWidgetHeader::locked);
    m_durationLabel = new ZTLabel(tr("Duration"), this);
    m_durationLabel->setObjectName(QStringLiteral("duration-caption"));
    m_durationLabel->setStyleClass(QStringLiteral("dim"));
    m_layout->addWidget(m_durationLabel, 0, 2);
    m_layout->addWidget(m_durationStack, 0, 3);
    m_layout->addWidget(m_mute, 0, 4);
    m_layout->addWidget(m_lock, 0, 5);
}

void PlaybackWidgetHeader::setColumnStep(ColumnStep step)
{
    m_step = step;
    const bool isWide = step == ColumnStep::Wide;
    // As high as the mute button, also where there is none: both pictures begin on one line.
    m_layout->setRowMinimumHeight(0, buttonSizes(step).value(currentFontSize()).height());
    if (isWide)
        m_layout->addWidget(m_title, 0, 1);
    else
        m_layout->addWidget(m_title, 1, 0, 1, 6);
    if (m_mute) {
        m_mute->setSizes(buttonSizes(step));
        m_lock->setSizes(buttonSizes(step));
    }
    fitCaption();
}

void PlaybackWidgetHeader::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    fitCaption();
}

bool PlaybackWidgetHeader::event(QEvent* event)
{
    const bool handled = ZTFrame::event(event);
    if (event->type() == QEvent::LayoutRequest) // another name, say
        fitCaption();
    return handled;
}

void PlaybackWidgetHeader::fitCaption()
{
    if (!m_durationLabel)
        return;
    const int caption = m_durationLabel->sizeHint().width() + spacing::normal;
    const int whole = m_layout->sizeHint().width() + (m_durationLabel->isHidden() ? caption : 0);
    m_durationLabel->setVisible(m_step == ColumnStep::Wide && whole <= width());
}

void PlaybackWidgetHeader::setMediaName(const QString& name)
{
    m_name->setText(shownText(name));
    m_title->updateGeometry(); // at once, so that the caption gives way with the name
}

void PlaybackWidgetHeader::setMediaAddress(const QString& address)
{
    QString location;
    if (const auto slot = media::MediaUtils::isSlotAddress(address)
                              ? media::MediaUtils::parseSlotAddress(address)
                              : MediaAddress();
        slot.isValid()) {
        location = QStringLiteral("%1-%2:").arg(slot.collection).arg(slot.slot);
    } else if (media::MediaUtils::isPlaylistAddress(address)) {
        const auto entry = media::MediaUtils::parsePlaylistAddress(address);
        if (entry.valid)
            location = QString::fromStdString(entry.entry.toString(true)) + QLatin1Char(':');
    }
    m_location->setText(location);
    m_location->setVisible(!location.isEmpty());
}

void PlaybackWidgetHeader::setHasInfiniteDuration(bool infinite)
{
    if (m_durationStack)
        m_durationStack->setCurrentWidget(infinite ? static_cast<QWidget*>(m_infinite) : m_duration);
    if (infinite == m_hasInfiniteDuration)
        return;
    m_hasInfiniteDuration = infinite;
    Q_EMIT hasInfiniteDurationChanged();
}

void PlaybackWidgetHeader::setRepeats(bool repeats)
{
    m_repeat->setVisible(repeats);
}

void PlaybackWidgetHeader::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_name->setObjectName(base + QStringLiteral("-MediaName"));
    m_location->setObjectName(base + QStringLiteral("-MediaLocation"));
    m_repeat->setObjectName(base + QStringLiteral("-Repeat"));
    m_duration->setObjectName(base + QStringLiteral("-Duration"));
    if (m_mute)
        m_mute->setObjectName(base + QStringLiteral("-Mute"));
    if (m_lock)
        m_lock->setObjectName(base + QStringLiteral("-Lock"));
}

} // namespace vantrel
