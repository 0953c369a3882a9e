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
#include "common/ui/toolkit/ztlabel.h"
#include "common/views/singlemediawidget.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int headHeight = 32;   // of tabs and title, in pixels at the medium text size
constexpr int leastContent = 24; // below which there is nothing to see of it

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
    if (isPreview)
        buildPreview(*session);
    else
        buildProgram();
    QWidget* head = layout->itemAt(0)->widget();
    followFontSize(head, [head](FontSize size) { head->setFixedHeight(scaled(headHeight, size)); });
}

void PlaylistWidget::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    const FontSize size = currentFontSize();
    layout()->itemAt(1)->widget()->setVisible(height() >= scaled(headHeight + leastContent, size));
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
    m_tabs->addPage(createPlaylistPage());
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
    // As long as there are no playlists to edit, the other page has more to say.
    m_navigationBar->setActiveTab(SingleMediaTab);
}

void PlaylistWidget::buildProgram()
{
    auto* head = new QWidget(this);
    auto* title = new ZTLabel(tr("PGM playlist"), head);
    title->setObjectName(QStringLiteral("Program-PlaylistEditor-title"));
    title->setStyleClass(QStringLiteral("section"));
    auto* row = new QHBoxLayout(head);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(title);
    layout()->addWidget(head);
    static_cast<QVBoxLayout*>(layout())->addWidget(createPlaylistPage(), 1);
}

QWidget* PlaylistWidget::createPlaylistPage()
{
    auto* label = new ZTLabel(tr("Playlists are not part of this version yet."), this);
    label->setObjectName(objectName() + QStringLiteral("-empty"));
    label->setStyleClass(QStringLiteral("dim"));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
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
    connect(channel, &QAbstractItemModel::dataChanged, model, follow);
    connect(channel, &QAbstractItemModel::modelReset, model, follow);
    follow();
    auto* page = new SingleMediaWidget(model, session.mediaDataAggregator(), this);
    connect(&session, &Session::connected, page, [model, page, &session] {
        model->setMediaDataAggregator(session.mediaDataAggregator());
        page->setMediaDataAggregator(session.mediaDataAggregator());
    });
    return page;
}

int PlaylistWidget::currentTab() const
{
    return m_tabs ? m_tabs->currentIndex() : -1;
}

} // namespace vantrel
