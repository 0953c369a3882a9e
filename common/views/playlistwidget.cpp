#include "common/views/playlistwidget.h"

#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/playbackmodel.h"
#include "common/media/models/singlemediamodel.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/session/link/signalrelay.h"
#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/navbutton.h"
#include "common/ui/toolkit/navigationbar.h"
#include "common/ui/toolkit/stackedtabwidget.h"
#include "common/views/playlist/playlisteditor.h"
#include "common/views/singlemediawidget.h"

#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int headHeight = 32; // of tabs and title, in pixels at the medium text size

} // namespace

PlaylistWidget::PlaylistWidget(PlaybackViewMode mode, Session* session, QWidget* parent)
    : ZTFrame(parent)
    , m_mode(mode)
{
    const bool isPreview = mode == Preview;
    setObjectName(isPreview ? QStringLiteral("Preview-PlaylistWidget")
                            : QStringLiteral("Program-PlaylistWidget"));
    setDynamicStyle(this, "class", QStringLiteral("panel"));
    setDynamicStyle(this, "mode", isPreview ? QStringLiteral("preview") : QStringLiteral("program"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::normal, 0, spacing::normal, spacing::normal);
    layout->setSpacing(spacing::tight);
    m_editor = new PlaylistEditor(mode, session, this);
    if (isPreview)
        buildPreview(*session);
    else {
        layout->setContentsMargins(spacing::normal, spacing::tight, spacing::normal, spacing::tight);
        layout->addWidget(m_editor, 1);
    }
}

void PlaylistWidget::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    if (!m_tabs)
        return;
    // The pages go before their controls are squeezed.
    const QMargins margins = layout()->contentsMargins();
    const int head = m_navigationBar->height() + layout()->spacing();
    m_tabs->setVisible(height() >= margins.top() + head + m_editor->leastHeight() + margins.bottom());
}

int PlaylistWidget::usefulHeight() const
{
    const QMargins margins = layout()->contentsMargins();
    const int head = m_navigationBar ? m_navigationBar->height() + layout()->spacing() : 0;
    return margins.top() + margins.bottom() + head + m_editor->usefulHeight();
}

QSize PlaylistWidget::minimumSizeHint() const
{
    // Its title or tabs stay in view, however little is left for what they head.
    return {0, scaled(headHeight, currentFontSize()) + spacing::tight};
}

void PlaylistWidget::buildPreview(const Session& session)
{
    m_navigationBar = new NavigationBar(this);
    m_tabs = new StackedTabWidget(this);
    m_tabs->addPage(m_editor);
    m_tabs->addPage(createSingleMediaPage(session));
    const auto addTab = [this](Tab tab, const QString& text, const QString& tip, const char* name) {
        auto* button = new NavButton(text, {}, m_navigationBar);
        button->setObjectName(QLatin1String(name));
        button->setToolTip(tip);
        m_navigationBar->addTab(tab, button);
    };
    addTab(PlaylistEditorTab, tr("Playlist editor"), tr("The playlist on preview"),
           "Preview-PlaylistEditor-Button");
    addTab(SingleMediaTab, tr("Single media"), tr("All about the media on preview"),
           "Preview-SingleMedia-Button");
    m_navigationBar->addSpacer();
    layout()->addWidget(m_navigationBar);
    static_cast<QVBoxLayout*>(layout())->addWidget(m_tabs, 1);
    connect(m_navigationBar, &NavigationBar::tabSelected, m_tabs, &QStackedWidget::setCurrentIndex);
    connect(session.signalRelay(), &SignalRelay::setNavBar, m_navigationBar,
            [this](uint tab) { m_navigationBar->setActiveTab(static_cast<int>(tab)); });
    m_navigationBar->setActiveTab(PlaylistEditorTab);
    followFontSize(m_navigationBar,
                   [this](FontSize size) { m_navigationBar->setFixedHeight(scaled(headHeight, size)); });
    connect(m_editor, &PlaylistEditor::editorPinned, this, &PlaylistWidget::handleEditorPinned);
    connect(m_editor, &PlaylistEditor::entryCued, this, [this] {
        if (!m_isPinned)
            m_navigationBar->setActiveTab(SingleMediaTab);
    });
}

void PlaylistWidget::handleEditorPinned(bool pinned)
{
    m_isPinned = pinned;
}

void PlaylistWidget::insertMedia(const QList<QString>& urls)
{
    if (m_navigationBar)
        m_navigationBar->setActiveTab(PlaylistEditorTab);
    m_editor->insertMedia(urls);
}

void PlaylistWidget::setUsable(bool usable)
{
    if (m_tabs)
        m_tabs->widget(SingleMediaTab)->setEnabled(usable);
}

QWidget* PlaylistWidget::createSingleMediaPage(const Session& session)
{
    auto* model = new SingleMediaModel(session.mediaDataAggregator(), session.playlistProvider(),
                                       session.mediaLibraryProvider(), this);
    const PlaybackModel* channel = session.previewPlaybackModel();
    const auto follow = [model, channel] {
        const QString media = channel->index(0, PlaybackModel::MediaUrlColumn).data().toString();
        if (media != model->mediaAddress())
            model->setMediaAddress(media);
    };
    connect(channel, &QAbstractItemModel::dataChanged, model,
            [follow](const QModelIndex& topLeft, const QModelIndex& bottomRight) {
                if (PlaybackModel::isColumnIn(PlaybackModel::MediaUrlColumn, topLeft, bottomRight))
                    follow();
            });
    connect(channel, &QAbstractItemModel::modelReset, model, follow);
    follow();
    return new SingleMediaWidget(model, session.mediaDataAggregator(), this);
}

int PlaylistWidget::currentTab() const
{
    return m_tabs ? m_tabs->currentIndex() : -1;
}

} // namespace vantrel
