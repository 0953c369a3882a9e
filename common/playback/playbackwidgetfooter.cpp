#include "common/playback/playbackwidgetfooter.h"

#include "common/playback/endactionwidget.h"
#include "common/playback/levelmeter.h"
#include "common/playback/volumecontrolpopup.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>

namespace vantrel {

namespace {

constexpr int spacingOnPreview = 80; // pixels between and around the buttons
constexpr int spacingOnProgram = 48;
constexpr int reservedWidth = 8;

} // namespace

PlaybackWidgetFooter::PlaybackWidgetFooter(PlaybackViewMode viewMode, QWidget* parent)
    : ZTFrame(parent)
    , m_viewMode(viewMode)
    , m_volume(new IconButton(QStringLiteral(":/icons/volume.svg"), {}, this))
    , m_levels(new LevelMeter(viewMode, this))
    , m_endActionLabel(new ZTLabel(tr("Media end action:"), this))
    , m_endAction(new EndActionWidget(this))
    , m_popup(new VolumeControlPopup(this))
{
    m_volume->setToolTip(tr("Playback control: Adjust audio volume"));
    m_volume->setAccessibleName(tr("Volume"));
    m_endActionLabel->setStyleClass(QStringLiteral("dim"));
    connect(m_volume, &QPushButton::clicked, this, &PlaybackWidgetFooter::showVolume);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->setSpacing(spacing::tight);
    layout->addWidget(m_volume);
    layout->addWidget(m_levels, 1);
    layout->addStretch(1);
    layout->addWidget(m_endActionLabel);
    layout->addWidget(m_endAction);
    createReservedButtons();
}

PlaybackWidgetFooter::~PlaybackWidgetFooter() = default;

void PlaybackWidgetFooter::createReservedButtons()
{
    const auto reserve = [this](const QString& icon, const QString& tip) {
        auto button = std::make_unique<IconButton>(icon);
        button->setToolTip(tip);
        button->resize(reservedWidth, reservedWidth);
        m_reserved.push_back(std::move(button));
    };
    reserve(QStringLiteral(":/icons/scaling.svg"), tr("Select scaling method"));
    reserve(QStringLiteral(":/icons/fade.svg"), tr("Open fade controls"));
    if (m_viewMode == Program)
        return;
    reserve(QStringLiteral(":/icons/insert_before.svg"), tr("Insert before selected media in playlist"));
    reserve(QStringLiteral(":/icons/replace_media.svg"), tr("Replace selected media in playlist"));
    reserve(QStringLiteral(":/icons/insert_after.svg"), tr("Insert after selected media in playlist"));
    reserve(QStringLiteral(":/icons/insert_end.svg"), tr("Insert at the end of the playlist"));
}

void PlaybackWidgetFooter::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_volume->setObjectName(base + QStringLiteral("-Volume"));
    m_levels->setObjectName(base + QStringLiteral("-Levels"));
    m_popup->setObjectNames(base + QStringLiteral("-VolumePopup"));
    m_endAction->setObjectNames(base + QStringLiteral("-EndAction"));
}

void PlaybackWidgetFooter::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    updateCaption();
}

void PlaybackWidgetFooter::setColumnStep(ColumnStep step)
{
    m_volume->setSizes(buttonSizes(step));
    m_endAction->setColumnStep(step);
}

void PlaybackWidgetFooter::setCaptionAllowed(bool allowed)
{
    m_captionAllowed = allowed;
    updateCaption();
}

void PlaybackWidgetFooter::updateCaption()
{
    m_endActionLabel->setVisible(m_captionAllowed && hasRoomForCaption());
}

bool PlaybackWidgetFooter::hasRoomForCaption() const
{
    int used = m_volume->width() + m_levels->minimumSizeHint().width() + m_endAction->width();
    for (const auto& button : m_reserved)
        used += button->width();
    used += m_viewMode == Program ? spacingOnProgram : spacingOnPreview;
    return m_endActionLabel->sizeHint().width() + 4 < width() - used;
}

void PlaybackWidgetFooter::showVolume()
{
    const QPoint above(m_volume->width() - 8, m_volume->height() - m_popup->height() + 32);
    m_popup->move(m_volume->mapToGlobal(above));
    m_popup->show();
}

} // namespace vantrel
