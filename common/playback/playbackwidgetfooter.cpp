#include "common/playback/playbackwidgetfooter.h"

#include "common/playback/endactionwidget.h"
#include "common/playback/levelmeter.h"
#include "common/playback/volumecontrolpopup.h"
#include "common/playback/volumefader.h"
#include "common/playback/volumeslider.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>

namespace vantrel {

namespace {

constexpr int sideMargin = 10; // pixels
constexpr int usualMargin = 10;
constexpr int narrowMargin = 2;

} // namespace

PlaybackWidgetFooter::PlaybackWidgetFooter(PlaybackViewMode viewMode, QWidget* parent)
    : ZTFrame(parent)
    , m_volume(new IconButton(QStringLiteral(":/icons/volume.svg"), {}, this))
    , m_speaker(new ZTLabel(this))
    , m_fader(new VolumeFader(this))
    , m_levels(new LevelMeter(viewMode, this))
    , m_endActionLabel(new ZTLabel(tr("At end"), this))
    , m_endAction(new EndActionWidget(this))
    , m_popup(new VolumeControlPopup(this))
{
    m_volume->setToolTip(tr("Playback control: Adjust audio volume"));
    m_volume->setAccessibleName(tr("Volume"));
    m_endActionLabel->setStyleClass(QStringLiteral("dim"));
    m_endActionLabel->setToolTip(tr("What happens when the media has played to its end"));
    followFontSize(this, [this](FontSize size) {
        m_speaker->setPixmap(tintedIcon(QStringLiteral("volume")).pixmap(iconExtent(size)));
    });
    connect(m_popup, &VolumeControlPopup::volumeChanged, m_fader,
            [this] { m_fader->setValue(m_popup->slider()->value()); });
    connect(m_fader, &QSlider::valueChanged, m_popup->slider(), &VolumeSlider::setValue);
    connect(m_volume, &QPushButton::clicked, this, &PlaybackWidgetFooter::showVolume);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(sideMargin, usualMargin, sideMargin, usualMargin);
    layout->setSpacing(spacing::tight);
    layout->addWidget(m_volume);
    layout->addWidget(m_speaker);
    layout->addWidget(m_fader);
    layout->addSpacing(spacing::tight);
    layout->addWidget(m_levels, 1);
    layout->addStretch(1);
    layout->addWidget(m_endActionLabel);
    layout->addWidget(m_endAction);
    setColumnStep(ColumnStep::Wide);
}

void PlaybackWidgetFooter::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_volume->setObjectName(base + QStringLiteral("-Volume"));
    m_fader->setObjectName(base + QStringLiteral("-Fader"));
    m_levels->setObjectName(base + QStringLiteral("-Levels"));
    m_popup->setObjectNames(base + QStringLiteral("-VolumePopup"));
    m_endAction->setObjectNames(base + QStringLiteral("-EndAction"));
}

void PlaybackWidgetFooter::setColumnStep(ColumnStep step)
{
    const bool isWide = step == ColumnStep::Wide;
    const int margin = isWide ? usualMargin : narrowMargin;
    layout()->setContentsMargins(sideMargin, margin, sideMargin, margin);
    m_volume->setVisible(!isWide);
    m_speaker->setVisible(isWide);
    m_fader->setVisible(isWide);
    m_volume->setSizes(buttonSizes(step));
    m_endAction->setColumnStep(step);
    if (isWide)
        m_popup->hide();
}

void PlaybackWidgetFooter::setShowsWords(bool shows)
{
    m_endAction->setShowsWords(shows);
}

bool PlaybackWidgetFooter::hasRoomForWords() const
{
    if (!m_fader->isVisibleTo(this))
        return false;
    const int parts = m_speaker->sizeHint().width() + m_fader->sizeHint().width() +
                      m_levels->minimumSizeHint().width() + m_endActionLabel->sizeHint().width() +
                      m_endAction->wordsWidth();
    return parts + 2 * sideMargin + 8 * spacing::tight <= width();
}

void PlaybackWidgetFooter::showVolume()
{
    const QPoint above(m_volume->width() - 8, m_volume->height() - m_popup->height() + 32);
    m_popup->move(m_volume->mapToGlobal(above));
    m_popup->show();
}

} // namespace vantrel
