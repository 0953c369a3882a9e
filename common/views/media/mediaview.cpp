#include "common/views/media/mediaview.h"

#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/models/collectionselectormodel.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/models/sortedcollectionselectormodel.h"
#include "common/media/models/sortedlibrarymodel.h"
#include "common/qml/quickview.h"
#include "common/session/session.h"
#include "common/ui/style/colors.h"
#include "common/views/media/collectionorder.h"
#include "common/views/media/collectionpanes.h"
#include "common/views/media/filechoice.h"
#include "common/views/media/mediaactions.h"
#include "common/views/media/playlistadditions.h"
#include "common/views/media/slotdetails.h"
#include "common/views/media/slotface.h"
#include "common/views/slotdrops.h"

#include <QLoggingCategory>
#include <QQmlContext>
#include <QQuickItem>
#include <QVBoxLayout>
#include <QtQml>

// Its name is looked for outside of all namespaces.
static void initResources()
{
    Q_INIT_RESOURCE(mediaview);
}

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.qml")

void registerTypes()
{
    const auto why = QStringLiteral("Uncreatable");
    qmlRegisterUncreatableType<CollectionSelectorModel>("Tessen.Models", 1, 0, "CollectionModel", why);
    qmlRegisterUncreatableType<MediaLibraryModel>("Tessen.Models", 1, 0, "MediaLibraryModel", why);
    qmlRegisterType<SlotFace>("Tessen.Models", 1, 0, "SlotFace");
    qmlRegisterUncreatableType<SlotGridModel>("Tessen.Models", 1, 0, "SlotGridModel", why);
}

} // namespace

MediaView::MediaView(const Sources& sources, QWidget* parent)
    : QWidget(parent)
    , m_sources(sources)
{
    setObjectName(QStringLiteral("MediaTab"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

MediaView::~MediaView()
{
    delete m_view; // before what its objects are
}

void MediaView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!m_view)
        load();
}

void MediaView::load()
{
    static const bool once = (registerTypes(), true);
    Q_UNUSED(once);
    initResources();
    const QUrl file(QStringLiteral("qrc:/MediaView/qml/MediaView.qml"));
    qCInfo(log) << "Creating view for QML file:" << file;
    m_view = new QuickView(this);
    m_view->setObjectName(QStringLiteral("MediaTab-view"));
    m_view->setAccessibleName(tr("Media"));
    m_view->setClearColor(colors::getColor(colors::Slate_grey_900));
    setContext();
    m_view->setSource(file);
    layout()->addWidget(m_view);
    setFocusProxy(m_view);
    if (m_wanted >= 0)
        selectCollection(m_wanted);
}

void MediaView::setContext()
{
    const auto isUsed = [playlists = m_sources.playlists](const MediaAddress& slot) {
        return playlists && !playlists->slotEntries(slot).isEmpty();
    };
    m_collections = new CollectionSelectorModel(m_sources.provider, this);
    auto* actions = new MediaActions(m_view, m_sources.library, m_sources.session, m_view);
    m_panes = new CollectionPanes(m_sources.library, actions->drops()->numbers(), isUsed, m_view);
    connect(m_panes, &CollectionPanes::currentRenumbered, m_collections,
            &CollectionSelectorModel::selectComing);
    followPlaylists();
    QQmlContext* context = m_view->rootContext();
    context->setContextProperty(QStringLiteral("collectionModel"),
                                new SortedCollectionSelectorModel(m_collections, this));
    context->setContextProperty(QStringLiteral("collectionPanes"), m_panes);
    connect(actions, &MediaActions::connectRequested, this, &MediaView::connectRequested);
    context->setContextProperty(QStringLiteral("mediaActions"), actions);
    // Views that are put in the place of ours find the library and the ways into it by these names.
    context->setContextProperty(QStringLiteral("sortedMediaLibraryModel"),
                                new SortedLibraryModel(m_sources.library, this));
    context->setContextProperty(QStringLiteral("imageSequences"), actions->drops()->creator());
    context->setContextProperty(QStringLiteral("mediaSlotDropHandler"), actions->drops()->handler());
    Session* session = m_sources.session;
    context->setContextProperty(
        QStringLiteral("fileChoice"),
        new FileChoice(m_sources.library, session ? session->fileSystemProvider() : nullptr, m_view));
    context->setContextProperty(QStringLiteral("playlistAdditions"), new PlaylistAdditions(session, m_view));
    context->setContextProperty(QStringLiteral("collectionOrder"), new CollectionOrder(session, m_view));
    const SlotDetails::Sources known{.library = m_sources.library,
                                     .provider = m_sources.provider,
                                     .playlists = m_sources.playlists,
                                     .aggregator = session ? session->mediaDataAggregator() : nullptr};
    context->setContextProperty(QStringLiteral("slotDetails"), new SlotDetails(known, m_view));
}

void MediaView::followPlaylists()
{
    const AbstractPlaylistProvider* playlists = m_sources.playlists;
    if (!playlists)
        return;
    connect(playlists, &AbstractPlaylistProvider::reset, m_panes, &CollectionPanes::refreshUse);
    connect(playlists, &AbstractPlaylistProvider::entryAdded, m_panes, &CollectionPanes::refreshUse);
    connect(playlists, &AbstractPlaylistProvider::entryChanged, m_panes, &CollectionPanes::refreshUse);
    connect(playlists, &AbstractPlaylistProvider::entryRemoved, m_panes, &CollectionPanes::refreshUse);
    connect(playlists, &AbstractPlaylistProvider::playlistAdded, m_panes, &CollectionPanes::refreshUse);
    connect(playlists, &AbstractPlaylistProvider::playlistRemoved, m_panes, &CollectionPanes::refreshUse);
}

void MediaView::selectCollection(int collectionNumber)
{
    m_wanted = collectionNumber;
    if (!m_view || !m_view->rootObject())
        return;
    m_wanted = -1;
    QMetaObject::invokeMethod(m_view->rootObject(), "selectCollection", Q_ARG(int, collectionNumber));
}

} // namespace vantrel
