#include "common/player/playerplaybackview.h"

#include "common/command/execute.h"
#include "common/command/playback/playmediacommand.h"
#include "common/media/address/mediautils.h"
#include "common/media/net/defaultresourcestatusprovider.h"
#include "common/playback/columnstep.h"
#include "common/playback/playbacklogging.h"
#include "common/player/channelwidget.h"
#include "common/player/playerkeys.h"
#include "common/session/link/linkhealth.h"
#include "common/session/link/signalrelay.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/session/settings/storedvalue.h"
#include "common/ui/binding/widgetmapper.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/ztlabel.h"
#include "common/ui/toolkit/ztsplitter.h"
#include "common/views/mediapanelwidget.h"
#include "common/views/playlist/playlisteditor.h"
#include "common/views/playlistwidget.h"
#include "tarn/scene/object.h"
#include "tarn/scene/scene.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMap>
#include <QStackedWidget>
#include <QTimer>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int objectRole = 257; // of the scene's tree model
constexpr int sceneRole = 258;
constexpr int mostChannels = 8; // each takes some 50 ms to build, and a screen holds no more
const QString panelKey = QStringLiteral("Window/PanelWidth");

/// In pixels: the panel gives way to the channels down to its least width.
const QMap<FontSize, int> leastPanelWidths{
    {FontSize::Small, 132}, {FontSize::Medium, 140}, {FontSize::Large, 160}, {FontSize::Huge, 200}};
constexpr int hintWidth = 380;     // of the empty state's text, as narrow as a dialog over it
constexpr int panelWidth = 272;    // at the medium text size, where there is room
constexpr int readableWidth = 150; // the same, below which it cuts most names

/// The panel's width that leaves the channels their captions if that can be; else it takes a quarter of what
/// they do not need.
int panelWidthIn(int room, FontSize size)
{
    const int least = leastPanelWidths.value(size);
    const int preferred = scaled(panelWidth, size);
    const int besideWide = room - channelsWidth(ColumnStep::Wide, size);
    if (besideWide >= scaled(readableWidth, size))
        return std::min(besideWide, preferred);
    return std::clamp(least + (room - channelsWidth(ColumnStep::Narrow, size) - least) / 4, least, preferred);
}

} // namespace

PlayerPlaybackView::PlayerPlaybackView(Session* session, QWidget* parent)
    : QWidget(parent)
    , m_session(session)
    , m_mapper(new WidgetMapper(this))
    , m_splitter(new ZTSplitter(Qt::Horizontal, this))
    , m_stack(new QStackedWidget(this))
{
    auto* panel = new MediaPanelWidget(session, this);
    followFontSize(panel, [panel](FontSize size) { panel->setMinimumWidth(leastPanelWidths.value(size)); });
    panel->setObjectName(QStringLiteral("PlayerTab-mediapanel-widget"));
    m_panel = panel;

    m_stack->addWidget(createEmptyState());
    m_stack->addWidget(createChannelArea());

    m_splitter->addWidget(panel);
    m_splitter->addWidget(m_stack);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    connect(m_splitter, &QSplitter::splitterMoved, this, [this] {
        m_panelWidth = m_splitter->sizes().constFirst();
        storeValue(panelKey, m_panelWidth);
    });
    m_panelWidth = storedValue(panelKey, m_panelWidth).toInt();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);
    followFontSize(this, [this](FontSize) { shareWidth(); });

    m_mapper->setObjectName(QStringLiteral("playbacksMapper"));
    m_mapper->setMost(mostChannels);
    m_mapper->setFactory([session] { return new ChannelWidget(session); });
    connect(m_mapper, &WidgetMapper::widgetAdded, this, &PlayerPlaybackView::onWidgetAdded);
    connect(m_mapper, &WidgetMapper::widgetRemoved, this, &PlayerPlaybackView::onWidgetRemoved);
    connectSession();
    if (Hotkeys* hotkeys = session->hotkeys())
        m_keys = new PlayerKeys(hotkeys, this);
    updateState();
}

void PlayerPlaybackView::shareWidth()
{
    const int room = width() - m_splitter->handleWidth();
    const int least = leastPanelWidths.value(currentFontSize());
    const int panel = m_panelWidth > 0 ? std::clamp(m_panelWidth, least, std::max(least, room / 2))
                                       : panelWidthIn(room, currentFontSize());
    m_splitter->setSizes({panel, room - panel});
}

void PlayerPlaybackView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    shareWidth();
}

QWidget* PlayerPlaybackView::createEmptyState()
{
    auto* page = new QWidget(this);
    auto* icon = new ZTLabel(page);
    icon->setPixmap(IconCache::pixmap(QStringLiteral("unlinked"), colors::getColor(colors::Zt_white_50),
                                      {48, 48}, devicePixelRatioF()));
    m_emptyTitle = new ZTLabel(page);
    m_emptyTitle->setStyleClass(QStringLiteral("title"));
    m_emptyHint = new ZTLabel(page);
    m_emptyHint->setStyleClass(QStringLiteral("dim"));
    m_emptyHint->setAlignment(Qt::AlignCenter);
    m_emptyHint->setWordWrap(true);
    followFontSize(m_emptyHint,
                   [this](FontSize size) { m_emptyHint->setFixedWidth(scaled(hintWidth, size)); });

    auto* layout = new QVBoxLayout(page);
    layout->setSpacing(12);
    layout->addStretch(1);
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    layout->addWidget(m_emptyTitle, 0, Qt::AlignHCenter);
    // In a row of its own, which gives it the height of its lines at this width.
    auto* hintRow = new QHBoxLayout;
    hintRow->addStretch(1);
    hintRow->addWidget(m_emptyHint);
    hintRow->addStretch(1);
    layout->addLayout(hintRow);
    layout->addStretch(5); // above the connect dialog, which opens in the middle
    return page;
}

QWidget* PlayerPlaybackView::createChannelArea()
{
    auto* page = new QWidget(this);
    m_channels = new QWidget(page);
    auto* channelLayout = new QVBoxLayout(m_channels);
    channelLayout->setContentsMargins(0, 0, 0, 0);
    m_mapper->setLayout(channelLayout);

    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_channels, 1);
    return page;
}

void PlayerPlaybackView::connectSession()
{
    connect(m_session, &Session::connected, this, &PlayerPlaybackView::updateState);
    connect(m_session, &Session::disconnected, this, [this] { setStale(true); });
    connect(m_session, &Session::sceneLoaded, this, [this] { setStale(false); });
    connect(m_session->linkHealth(), &LinkHealth::changed, this, &PlayerPlaybackView::onHealthChanged);
    connect(m_session->signalRelay(), &SignalRelay::directPlay, this,
            &PlayerPlaybackView::handleMediaDirectPlay);
}

void PlayerPlaybackView::setModel(const QModelIndex& channels)
{
    m_mapper->setModel(channels);
}

void PlayerPlaybackView::onWidgetAdded(QWidget* widget, const QModelIndex& index)
{
    ++m_channelCount;
    if (auto* channel = qobject_cast<ChannelWidget*>(widget)) {
        channel->setObject(index.data(objectRole).value<Object*>(), index.data(sceneRole).value<Scene*>());
        if (m_keys)
            m_keys->addChannel(channel);
        channel->setBlocked(blockedReason());
        updateUsable();
        PlaylistWidget* playlist = channel->previewPlaylist();
        playlist->editor()->setMediaSource([this] { return m_panel->selectedMedia(); });
        connect(m_panel, &MediaPanelWidget::mediaInsertRequested, playlist, &PlaylistWidget::insertMedia,
                Qt::UniqueConnection);
    }
    updateState();
}

void PlayerPlaybackView::setStale(bool stale)
{
    m_isStale = stale;
    onHealthChanged();
    updateState();
}

/// Why nothing takes a click; empty while everything does.
QString PlayerPlaybackView::blockedReason() const
{
    const QString silence = m_session->linkHealth()->text();
    if (!silence.isEmpty() || !m_isStale)
        return silence;
    return m_session->isConnected() ? tr("The server's state is being read")
                                    : tr("There is no connection to the server");
}

void PlayerPlaybackView::onHealthChanged()
{
    const LinkHealth* health = m_session->linkHealth();
    const QString reason = blockedReason();
    for (ChannelWidget* channel : m_channels->findChildren<ChannelWidget*>(Qt::FindDirectChildrenOnly))
        channel->setBlocked(reason);
    m_panel->setStale(m_isStale || health->state() == LinkHealth::State::Silent ||
                      health->state() == LinkHealth::State::Lost);
    updateUsable();
}

/// While the server does not answer nothing takes a click, and nothing is kept for later either. The
/// playlists can be read on, and go to paper: that is when an operator wants them there.
void PlayerPlaybackView::updateUsable()
{
    const bool isUsable = !m_isStale && m_session->linkHealth()->state() != LinkHealth::State::Silent;
    // Nowhere rather than to the next that is enabled, for which the keys under the hand were not meant.
    QWidget* focused = QApplication::focusWidget();
    const auto isInList = [this](const QWidget* widget) {
        for (; widget && widget != m_channels; widget = widget->parentWidget()) {
            if (qobject_cast<const PlaylistEditor*>(widget))
                return true;
        }
        return false;
    };
    if (!isUsable && focused && m_channels->isAncestorOf(focused) && !isInList(focused))
        focused->clearFocus();
    for (ChannelWidget* channel : m_channels->findChildren<ChannelWidget*>(Qt::FindDirectChildrenOnly))
        channel->setUsable(isUsable);
}

void PlayerPlaybackView::onWidgetRemoved(QWidget* widget)
{
    --m_channelCount;
    if (auto* channel = qobject_cast<ChannelWidget*>(widget)) {
        channel->setObject(nullptr, nullptr);
        if (m_keys)
            m_keys->removeChannel(channel);
    }
    // Later: a server that comes back replaces its channels, and the page would go and come.
    QMetaObject::invokeMethod(this, &PlayerPlaybackView::updateState, Qt::QueuedConnection);
}

void PlayerPlaybackView::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    if (!std::exchange(m_isPrepared, true))
        QTimer::singleShot(0, this, &PlayerPlaybackView::prepareChannel);
}

/// Builds, lays out and draws a channel unseen once the window stands. In the midst of a connection's first
/// patches that would hold the window up.
void PlayerPlaybackView::prepareChannel()
{
    if (m_channelCount > 0) {
        m_mapper->keepSpare(nullptr);
        return;
    }
    auto* channel = new ChannelWidget(m_session, m_channels);
    m_mapper->keepSpare(channel);
    QWidget* page = m_stack->widget(ChannelPage);
    page->resize(m_stack->size());
    channel->show(); // on its hidden page
    page->grab();
    channel->hide();
}

void PlayerPlaybackView::updateState()
{
    const bool isConnected = m_session->isConnected();
    m_emptyTitle->setText(isConnected ? tr("Waiting for the server") : tr("Not connected"));
    m_emptyHint->setText(isConnected ? tr("The server has not told of a channel yet.")
                                     : tr("Choose \"Connect to server...\" in the menu, or click "
                                          "\"Disconnected\" below, to see its channels."));
    m_stack->setCurrentIndex(m_channelCount > 0 ? ChannelPage : EmptyPage);
}

void PlayerPlaybackView::handleMediaDirectPlay(const QModelIndex& index)
{
    const MediaAddress slot = media::MediaUtils::parseCollectionIndex(index);
    if (!slot.isValid()) {
        qCWarning(lcPlayback) << "Could not parse collection and index.";
        return;
    }
    const ResourceStatusProvider* status = m_session->resourceStatusProvider();
    if (status && status->isConstrained(Preview)) {
        qCWarning(lcPlayback) << "Preview is resource constrained. Skipping media direct play request";
        return;
    }
    execute<PlayMediaCommand>(m_session->getQUndoStack(), "PlayMediaCommand", true, 0, slot.collection,
                              slot.slot);
}

} // namespace vantrel
