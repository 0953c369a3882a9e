#include "common/playback/channelwidget.h"

#include "common/playback/playbackwidget.h"
#include "common/playback/takecontrols.h"
#include "common/ui/fontsizefollower.h"
#include "common/ui/ztsplitter.h"
#include "common/views/playlistwidget.h"
#include "tarn/scene/object.h"

#include <QHBoxLayout>
#include <QMap>
#include <QTimer>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int adjustDelayMs = 100; // until the layout has settled
constexpr int leastHeight = 128;   // pixels a column needs to be divided at all
constexpr double playbackShare = 0.75;

const QMap<FontSize, int> columnWidths{
    {FontSize::Small, 400}, {FontSize::Medium, 480}, {FontSize::Large, 630}, {FontSize::Huge, 790}};

} // namespace

ChannelWidget::ChannelWidget(QWidget* parent)
    : QWidget(parent)
    , m_previewSplitter(new ZTSplitter(Qt::Vertical, this))
    , m_programSplitter(new ZTSplitter(Qt::Vertical, this))
    , m_preview(new PlaybackWidget(Preview, this))
    , m_program(new PlaybackWidget(Program, this))
    , m_takeControls(new TakeControls(this))
{
    setWindowTitle(tr("Channel Playback"));
    m_previewSplitter->addWidget(m_preview);
    m_previewSplitter->addWidget(new PlaylistWidget(Preview, m_previewSplitter));
    m_programSplitter->addWidget(m_program);
    m_programSplitter->addWidget(new PlaylistWidget(Program, m_programSplitter));
    for (ZTSplitter* splitter : {m_previewSplitter, m_programSplitter}) {
        splitter->setChildrenCollapsible(false);
        splitter->setStretchFactor(0, 3);
        splitter->setStretchFactor(1, 1);
    }

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(m_previewSplitter, 1);
    layout->addWidget(m_takeControls);
    layout->addWidget(m_programSplitter, 1);

    followFontSize(this, [this](FontSize size) { setTextSize(size); });
    QTimer::singleShot(adjustDelayMs, this, &ChannelWidget::adjustSplitters);
}

void ChannelWidget::setObject(Object* object, Scene* scene)
{
    m_program->setObject(object ? object->findChildByName("program", false) : nullptr, scene);
    m_preview->setObject(object ? object->findChildByName("preview", false) : nullptr, scene);
    m_takeControls->setObject(object, scene);
}

void ChannelWidget::adjustSplitters()
{
    if (m_previewSplitter->height() < leastHeight || m_programSplitter->height() < leastHeight)
        return;
    const int position = std::min(m_previewSplitter->getClosestPixelPosition(1, playbackShare),
                                  m_programSplitter->getClosestPixelPosition(1, playbackShare));
    m_previewSplitter->moveHandle(1, position);
    m_programSplitter->moveHandle(1, position);
}

void ChannelWidget::setTextSize(FontSize size)
{
    const int width = columnWidths.value(size);
    m_previewSplitter->setMinimumWidth(width);
    m_programSplitter->setMinimumWidth(width);
}

} // namespace vantrel
