#include "common/views/media/mediaactions.h"

#include "common/media/edit/implmediacollectionmanager.h"
#include "common/media/edit/mediasloteditfunctional.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/session/link/linkhealth.h"
#include "common/session/link/signalrelay.h"
#include "common/session/session.h"
#include "common/session/settings/storedvalue.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/toolkit/ztdrag.h"
#include "common/views/media/slotgridmodel.h"
#include "common/views/slotdrops.h"

#include <QKeyEvent>
#include <QMimeData>

namespace vantrel {

namespace {

const QString tableKey = QStringLiteral("Window/MediaAsTable");
const QString detailsKey = QStringLiteral("Window/MediaDetails");
const QString collectionKey = QStringLiteral("Window/MediaCollection");

} // namespace

MediaActions::MediaActions(QWidget* view, SlotGridModel* model, MediaLibraryModel* library, Session* session,
                           QObject* parent)
    : QObject(parent)
    , m_view(view)
    , m_model(model)
    , m_library(library)
    , m_session(session)
    , m_manager(std::make_unique<ImplMediaCollectionManager>())
    , m_drops(std::make_unique<SlotDrops>(session, m_manager.get(), view))
    , m_isTable(storedValue(tableKey, false).toBool())
    , m_hasDetails(storedValue(detailsKey, true).toBool())
{
    m_drops->setObstacle([this] {
        return isEditable() ? QString() : tr("There is no library to edit. Drop it again once it is back.");
    });
    m_drops->setCollection(model->collection());
    connect(model, &SlotGridModel::collectionChanged, this, [this] {
        m_drops->setCollection(m_model->collection());
        Q_EMIT libraryChanged(); // what stands in the way is told for what is shown
    });
    connect(m_drops.get(), &SlotDrops::arrivalsChanged, this, [this] {
        ++m_arrivalsRevision;
        Q_EMIT arrivalsChanged();
    });
    if (session)
        follow();
}

MediaActions::~MediaActions() = default;

void MediaActions::follow()
{
    connect(m_session, &Session::connected, this, &MediaActions::readState);
    connect(m_session, &Session::disconnected, this, &MediaActions::readState);
    connect(m_session, &Session::libraryReadingChanged, this, &MediaActions::readState);
    connect(m_session->linkHealth(), &LinkHealth::changed, this, &MediaActions::readState);
    readState();
}

void MediaActions::readState()
{
    const MediaLibraryApi* api = m_session->getMediaLibraryApi();
    m_isConnected = m_session->isConnected();
    const LinkHealth* health = m_session->linkHealth();
    m_silence = health->state() == LinkHealth::State::Silent ? health->text() : QString();
    m_isRead = api && api->reading() == MediaLibraryApi::Reading::Done;
    m_readingError =
        api && api->reading() == MediaLibraryApi::Reading::Failed ? api->readingError() : QString();
    Q_EMIT libraryChanged();
}

QString MediaActions::obstacle() const
{
    if (!m_isConnected)
        return m_model->collection() < 0 ? tr("No server is connected.")
                                         : tr("The server is not connected. This is the library as it was; "
                                              "it cannot be changed now.");
    if (!m_silence.isEmpty())
        return m_silence;
    if (!m_readingError.isEmpty())
        return tr("The library could not be read from the server: %1. It is tried again each second.")
            .arg(m_readingError);
    return m_isRead ? QString() : tr("Loading the library from the server ...");
}

void MediaActions::setIsTable(bool isTable)
{
    if (m_isTable == isTable)
        return;
    m_isTable = isTable;
    storeValue(tableKey, isTable);
    Q_EMIT isTableChanged();
}

void MediaActions::setHasDetails(bool hasDetails)
{
    if (m_hasDetails == hasDetails)
        return;
    m_hasDetails = hasDetails;
    storeValue(detailsKey, hasDetails);
    Q_EMIT hasDetailsChanged();
}

int MediaActions::lastCollection() const
{
    return storedValue(collectionKey, -1).toInt();
}

void MediaActions::setLastCollection(int collection)
{
    if (lastCollection() == collection)
        return;
    storeValue(collectionKey, collection);
    Q_EMIT lastCollectionChanged();
}

void MediaActions::cue(int slot)
{
    const QModelIndex source = m_model->sourceOf(slot);
    if (source.isValid() && m_session)
        m_session->signalRelay()->handleDirectPlay(source.siblingAtColumn(0));
}

QString MediaActions::arriving(int slot) const
{
    const MediaArrivals& arrivals = m_drops->arrivals();
    return arrivals.isEmpty()
               ? QString()
               : arrivals.textOf(m_model->sourceOf(slot).data(MediaLibraryModel::UrlRole).toUrl());
}

double MediaActions::arrivedPart(int slot) const
{
    const MediaArrivals& arrivals = m_drops->arrivals();
    return arrivals.isEmpty()
               ? -1
               : arrivals.progressOf(m_model->sourceOf(slot).data(MediaLibraryModel::UrlRole).toUrl());
}

bool MediaActions::rename(int slot, const QString& name)
{
    return isEditable() && m_library->setData(m_model->sourceOf(slot), name, Qt::EditRole);
}

void MediaActions::clear(const QList<int>& slotNumbers)
{
    if (isEditable() && !slotNumbers.isEmpty())
        MediaSlotEditFunctional::clearSlots(m_model->collection(), slotNumbers);
}

QString MediaActions::actionOf(int key, int modifiers) const
{
    const QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers));
    const QKeySequence pressed = Hotkeys::pressed(event);
    if (pressed.isEmpty())
        return {};
    for (const char* name : {"cue", "rename", "delete", "insert_media"}) {
        if (Hotkeys::current(QLatin1String(name)) == pressed)
            return QLatin1String(name);
    }
    return {};
}

QString MediaActions::keysOf(const QString& action) const
{
    return keyText(Hotkeys::current(action));
}

void MediaActions::startDrag(const QList<int>& slotNumbers)
{
    // Once the view is done with the mouse's move: while a drag runs it gets no other.
    if (!slotNumbers.isEmpty())
        QMetaObject::invokeMethod(
            this, [this, slotNumbers] { runDrag(slotNumbers); }, Qt::QueuedConnection);
}

void MediaActions::runDrag(const QList<int>& slotNumbers)
{
    QModelIndexList indexes;
    for (const int slot : slotNumbers) {
        if (const QModelIndex index = m_model->sourceOf(slot); index.isValid())
            indexes.append(index);
    }
    if (indexes.isEmpty())
        return;
    const QString label = indexes.size() == 1 ? indexes.first().data(MediaLibraryModel::NameRole).toString()
                                              : tr("%n slots", nullptr, static_cast<int>(indexes.size()));
    ZTDrag::startDrag(m_view, m_library->mimeData(indexes), Qt::CopyAction | Qt::MoveAction, label);
}

bool MediaActions::beginDrop(const QVariantMap& mime, const QList<QUrl>& urls)
{
    QMimeData data;
    for (auto format = mime.cbegin(); format != mime.cend(); ++format)
        data.setData(format.key(), format.value().toString().toUtf8());
    if (!urls.isEmpty())
        data.setUrls(urls);
    return m_drops->begin(&data);
}

QVariantMap MediaActions::aim(int slot)
{
    const DropForecast& forecast = m_drops->aim(slot);
    return {{QStringLiteral("isPossible"), forecast.isPossible()},
            {QStringLiteral("isMove"), forecast.isMove},
            {QStringLiteral("first"), forecast.first},
            {QStringLiteral("last"), forecast.last},
            {QStringLiteral("overwrites"), forecast.overwritten > 0},
            {QStringLiteral("text"), forecast.text()}};
}

int MediaActions::roomBehind(int slot)
{
    return m_drops->roomFrom(std::max(slot, 0) + 1);
}

void MediaActions::drop(int slot)
{
    m_drops->drop(slot);
}

void MediaActions::endDrop()
{
    m_drops->end();
}

} // namespace vantrel
