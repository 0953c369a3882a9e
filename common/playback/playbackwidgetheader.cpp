#include "common/playback/playbackwidgetheader.h"

#include "common/media/mediautils.h"
#include "common/playback/mutebutton.h"
#include "common/playback/timecodedisplay.h"
#include "common/ui/elidedlabel.h"
#include "common/ui/fontsizefollower.h"
#include "common/ui/ztlabel.h"

#include <QHBoxLayout>
#include <QStackedWidget>

namespace vantrel {

namespace {

constexpr int headerHeight = 32; // pixels at the medium text size: that of the mute button, on both channels

} // namespace

PlaybackWidgetHeader::PlaybackWidgetHeader(PlaybackViewMode viewMode, QWidget* parent)
    : ZTFrame(parent)
    , m_location(new ZTLabel(this))
    , m_name(new ElidedLabel(this))
    , m_duration(new TimecodeDisplay(this))
{
    const bool isProgram = viewMode == Program;
    auto* channel = new ZTLabel(isProgram ? tr("Program") : tr("Preview"), this);
    channel->setStyleClass(isProgram ? QStringLiteral("program") : QStringLiteral("preview"));
    m_location->setStyleClass(QStringLiteral("dim"));
    m_name->setElided(true);
    m_name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_duration->setAccessibleName(tr("Duration"));

    followFontSize(this, [this](FontSize size) { setMinimumHeight(scaled(headerHeight, size)); });

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(channel, 0, Qt::AlignVCenter);
    layout->addSpacing(6);
    layout->addWidget(m_location);
    layout->addWidget(m_name, 1);
    if (!isProgram) {
        m_duration->hide();
        return;
    }
    m_infinite = new ZTLabel(tr("Infinite"), this);
    m_infinite->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_duration->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_durationStack = new QStackedWidget(this);
    m_durationStack->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    m_durationStack->addWidget(m_duration);
    m_durationStack->addWidget(m_infinite);
    m_mute = new MuteButton(this);
    auto* durationLabel = new ZTLabel(tr("Duration"), this);
    durationLabel->setStyleClass(QStringLiteral("dim"));
    layout->addWidget(durationLabel);
    layout->addWidget(m_durationStack);
    layout->addWidget(m_mute);
}

void PlaybackWidgetHeader::setMediaName(const QString& name)
{
    m_name->setText(name);
}

void PlaybackWidgetHeader::setMediaAddress(const QString& address)
{
    QString location;
    if (const auto slot = media::MediaUtils::isSlotAddress(address)
                              ? media::MediaUtils::parseSlotAddress(address)
                              : media::ColSlot();
        slot.valid) {
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

void PlaybackWidgetHeader::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_name->setObjectName(base + QStringLiteral("-MediaName"));
    m_location->setObjectName(base + QStringLiteral("-MediaLocation"));
    m_duration->setObjectName(base + QStringLiteral("-Duration"));
    if (m_mute)
        m_mute->setObjectName(base + QStringLiteral("-Mute"));
}

} // namespace vantrel
