#include "common/player/channelwidget.h"

#include "common/playback/playbackpreview.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/playbackwidgetfooter.h"
#include "common/playback/takecontrols.h"
#include "common/session/session.h"
#include "common/session/settings/storedvalue.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/ztsplitter.h"
#include "common/views/playlistwidget.h"
#include "tarn/scene/object.h"

#include <QHBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int adjustDelayMs = 100; // until the layout has settled
constexpr int leastHeight = 128;   // pixels a column needs to be divided at all
constexpr double playbackShare = 0.75;
constexpr int leastPicture = 150; // pixels high, before the playlist below gets more than it needs

} // namespace

ChannelWidget::ChannelWidget(Session* session, QWidget* parent)
    : QWidget(parent)
    , m_previewSplitter(new ZTSplitter(Qt::Vertical, this))
    , m_preview(new PlaybackWidget(Preview, session, m_previewSplitter))
    , m_previewPlaylist(new PlaylistWidget(Preview, session, m_previewSplitter))
    , m_takeControls(new TakeControls(session->getQUndoStack(), this))
    , m_programSplitter(new ZTSplitter(Qt::Vertical, this))
    , m_program(new PlaybackWidget(Program, session, m_programSplitter))
    , m_programPlaylist(new PlaylistWidget(Program, session, m_programSplitter))
{
    setWindowTitle(tr("Channel Playback"));
    m_previewSplitter->addWidget(m_preview);
    m_previewSplitter->addWidget(m_previewPlaylist);
    m_programSplitter->addWidget(m_program);
    m_programSplitter->addWidget(m_programPlaylist);
    for (ZTSplitter* splitter : {m_previewSplitter, m_programSplitter}) {
        splitter->setChildrenCollapsible(false);
        splitter->setStretchFactor(0, 3);
        splitter->setStretchFactor(1, 1);
    }

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::tight);
    layout->addWidget(m_previewSplitter, 1);
    layout->addWidget(m_takeControls);
    layout->addWidget(m_programSplitter, 1);

    connect(m_preview, &PlaybackWidget::unplayableChanged, this, [this] {
        m_takeControls->setCueFault(m_preview->unplayableReason().isEmpty() ? QString()
                                                                            : tr("Preview cannot be taken"));
    });
    followPictures();
    followFontSize(this, [this](FontSize size) {
        setTextSize(size);
        m_adjust.start();
    });
}

void ChannelWidget::followPictures()
{
    m_adjust.setSingleShot(true);
    m_adjust.setInterval(adjustDelayMs);
    connect(&m_adjust, &QTimer::timeout, this, [this] {
        updateStep(); // some heights are those of texts, which are known by now
        updateWords();
        if (!divideAsKept())
            adjustSplitters();
    });
    for (const PlaybackWidget* column : {m_preview, m_program})
        connect(column->preview(), &PlaybackPreview::shapeChanged, &m_adjust, qOverload<>(&QTimer::start));
    for (ZTSplitter* splitter : {m_previewSplitter, m_programSplitter})
        connect(splitter, &QSplitter::splitterMoved, this, [this, splitter] {
            if (!m_isAdjusting && splitter->height() > 0)
                storeValue(shareKey(splitter), double(splitter->sizes().constFirst()) / splitter->height());
        });
    m_adjust.start();
}

void ChannelWidget::setObject(Object* object, Scene* scene)
{
    m_program->setObject(object ? object->findChildByName("program", false) : nullptr, scene);
    m_preview->setObject(object ? object->findChildByName("preview", false) : nullptr, scene);
    m_takeControls->setObject(object, scene);
    if (object) // it may have waited hidden for its channel
        m_adjust.start();
}

void ChannelWidget::setUsable(bool usable)
{
    m_preview->setEnabled(usable);
    m_program->setEnabled(usable);
    m_takeControls->setEnabled(usable);
    m_previewPlaylist->setUsable(usable);
}

void ChannelWidget::setBlocked(const QString& reason)
{
    m_preview->setBlocked(reason);
    m_program->setBlocked(reason);
    m_takeControls->setBlocked(reason);
}

QString ChannelWidget::shareKey(const QSplitter* splitter) const
{
    return splitter == m_previewSplitter ? QStringLiteral("Window/PreviewShare")
                                         : QStringLiteral("Window/ProgramShare");
}

/// Divides the columns as the operator has done by hand; false when they never did.
bool ChannelWidget::divideAsKept()
{
    bool isKept = false;
    m_isAdjusting = true;
    for (ZTSplitter* splitter : {m_previewSplitter, m_programSplitter}) {
        const double share = storedValue(shareKey(splitter)).toDouble();
        if (!(share > 0.0 && share < 1.0))
            continue;
        isKept = true;
        splitter->moveHandle(1, splitter->getClosestPixelPosition(1, share));
    }
    m_isAdjusting = false;
    return isKept;
}

void ChannelWidget::adjustSplitters()
{
    if (m_previewSplitter->height() < leastHeight || m_programSplitter->height() < leastHeight)
        return;
    int position = std::min(m_previewSplitter->getClosestPixelPosition(1, playbackShare),
                            m_programSplitter->getClosestPixelPosition(1, playbackShare));
    // The playlists below are to show some entries. No more than the pictures fill, and no less than they
    // need to be made out.
    const int below = std::max(m_previewPlaylist->usefulHeight(), m_programPlaylist->usefulHeight());
    position = std::min(position, m_previewSplitter->height() - m_previewSplitter->handleWidth() - below);
    const auto highest = [this](auto height) { return std::max(height(m_preview), height(m_program)); };
    position = std::min(position, highest([](const PlaybackWidget* column) {
                            return column->heightForPicture(column->pictureHeight());
                        }));
    position = std::max(position, highest([](const PlaybackWidget* column) {
                            return column->heightForPicture(leastPicture);
                        }));
    m_isAdjusting = true;
    m_previewSplitter->moveHandle(1, position);
    m_programSplitter->moveHandle(1, position);
    m_isAdjusting = false;
}

void ChannelWidget::setTextSize(FontSize size)
{
    m_size = size;
    updateStep();
    updateGeometry();
}

void ChannelWidget::updateStep()
{
    m_step = m_isSized && width() < channelsWidth(ColumnStep::Wide, m_size) ? ColumnStep::Narrow
                                                                            : ColumnStep::Wide;
    for (QSplitter* splitter : {m_previewSplitter, m_programSplitter})
        splitter->setMinimumWidth(columnWidth(m_step, m_size));
    m_preview->setColumnStep(m_step);
    m_program->setColumnStep(m_step);
    m_takeControls->setColumnStep(m_step);
    layout()->activate();
}

void ChannelWidget::updateWords()
{
    PlaybackWidgetFooter* const footers[] = {m_preview->footer(), m_program->footer()};
    const bool fit = std::ranges::all_of(footers, &PlaybackWidgetFooter::hasRoomForWords);
    for (PlaybackWidgetFooter* footer : footers)
        footer->setShowsWords(fit);
}

QSize ChannelWidget::minimumSizeHint() const
{
    return {channelsWidth(ColumnStep::Narrow, m_size), QWidget::minimumSizeHint().height()};
}

void ChannelWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_isSized = true;
    updateStep();
    m_adjust.start();
}

} // namespace vantrel
