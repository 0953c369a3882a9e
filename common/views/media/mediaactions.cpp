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
#include "common/views/slotclipboard.h"
#include "common/views/slotdrops.h"
#include "common/views/slotmove.h"
#include "common/views/slotplace.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>

namespace vantrel {

namespace {

const QString tableKey = QStringLiteral("Window/MediaAsTable");
const QString detailsKey = QStringLiteral("Window/MediaDetails");

} // namespace

MediaActions::MediaActions(QWidget* view, MediaLibraryModel* library, Session* session, QObject* parent)
    : QObject(parent)
    , m_view(view)
    , m_library(library)
    , m_session(session)
    , m_manager(std::make_unique<ImplMediaCollectionManager>())
    , m_drops(std::make_unique<SlotDrops>(session, m_manager.get(), view))
    , m_isTable(storedValue(tableKey, false).toBool())
    , m_hasDetails(storedValue(detailsKey, true).toBool())
{
    connect(m_drops.get(), &SlotDrops::arrivalsChanged, this, [this] {
        ++m_arrivalsRevision;
        Q_EMIT arrivalsChanged();
    });
    view->installEventFilter(this);
    if (session)
        follow();
}

MediaActions::~MediaActions() = default;

void MediaActions::follow()
{
    connect(m_session, &Session::connected, this, &MediaActions::readState);
    connect(m_session, &Session::disconnected, this, &MediaActions::readState);
    connect(m_session, &Session::libraryObstacleChanged, this, &MediaActions::readState);
    connect(m_session->linkHealth(), &LinkHealth::changed, this, &MediaActions::readState);
    readState();
}

void MediaActions::readState()
{
    const MediaLibraryApi* api = m_session->getMediaLibraryApi();
    m_isConnected = m_session->isConnected();
    const LinkHealth* health = m_session->linkHealth();
    m_silence = health->state() == LinkHealth::State::Silent ? health->text() : QString();
    m_isEditable = m_session->libraryObstacle().isEmpty();
    m_unread = api ? api->unread().whole : QString();
    Q_EMIT libraryChanged();
}

QString MediaActions::obstacle() const
{
    if (!m_isConnected)
        return m_library->rowCount() == 0 ? tr("No server is connected.")
                                          : tr("The server is not connected. This is the library as it was; "
                                               "it cannot be changed now.");
    if (!m_silence.isEmpty())
        return m_silence;
    return m_unread;
}

QString MediaActions::placeHint() const
{
    return SlotPlace::hint();
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

QModelIndex MediaActions::slotAt(int collection, int slot) const
{
    return m_library->index(slot, MediaLibraryModel::NameColumn, m_library->collectionIndex(collection));
}

/// The view owns it, as long as somebody there holds it.
FollowedCollection* MediaActions::follow(int collection)
{
    auto* const followed = new FollowedCollection(m_drops->numbers().follow(collection));
    connect(&m_drops->numbers(), &CollectionNumbers::changed, followed, &FollowedCollection::numberChanged);
    return followed;
}

void MediaActions::cue(int collection, int slot)
{
    const QModelIndex source = slotAt(collection, slot);
    if (source.isValid() && m_session)
        m_session->signalRelay()->handleDirectPlay(source.siblingAtColumn(0));
}

QString MediaActions::pendingDrop() const
{
    return m_drops->pendingText();
}

void MediaActions::givePendingDropUp()
{
    m_drops->givePendingUp();
}

QString MediaActions::arriving(int collection, int slot) const
{
    const MediaArrivals& arrivals = m_drops->arrivals();
    return arrivals.isEmpty()
               ? QString()
               : arrivals.textOf(slotAt(collection, slot).data(MediaLibraryModel::UrlRole).toUrl());
}

double MediaActions::arrivedPart(int collection, int slot) const
{
    const MediaArrivals& arrivals = m_drops->arrivals();
    return arrivals.isEmpty()
               ? -1
               : arrivals.progressOf(slotAt(collection, slot).data(MediaLibraryModel::UrlRole).toUrl());
}

bool MediaActions::rename(int collection, int slot, const QString& name)
{
    return isEditable() && m_library->setData(slotAt(collection, slot), name, Qt::EditRole);
}

void MediaActions::clear(int collection, const QList<int>& slotNumbers)
{
    if (isEditable() && !slotNumbers.isEmpty())
        MediaSlotEditFunctional::clearSlots(collection, slotNumbers);
}

QString MediaActions::actionOf(int key, int modifiers) const
{
    const QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers));
    const QKeySequence pressed = Hotkeys::pressed(event);
    if (pressed.isEmpty())
        return {};
    for (const char* name : {"cue", "rename", "delete", "insert_media", "copy", "cut", "paste", "move_slots",
                             "move_entries_up", "move_entries_down"}) {
        if (Hotkeys::current(QLatin1String(name)) == pressed)
            return QLatin1String(name);
    }
    return {};
}

QString MediaActions::keysOf(const QString& action) const
{
    return keyText(Hotkeys::current(action));
}

void MediaActions::startDrag(int collection, const QList<int>& slotNumbers)
{
    // Once the view is done with the mouse's move: while a drag runs it gets no other.
    if (!slotNumbers.isEmpty())
        QMetaObject::invokeMethod(
            this, [this, collection, slotNumbers] { runDrag(collection, slotNumbers); },
            Qt::QueuedConnection);
}

void MediaActions::runDrag(int collection, const QList<int>& slotNumbers)
{
    QMimeData* const data = dataOf(collection, slotNumbers);
    if (!data)
        return;
    const QString label =
        slotNumbers.size() == 1
            ? slotAt(collection, slotNumbers.first()).data(MediaLibraryModel::NameRole).toString()
            : tr("%n slots", nullptr, static_cast<int>(slotNumbers.size()));
    ZTDrag::startDrag(m_view, data, Qt::CopyAction | Qt::MoveAction, label);
}

QMimeData* MediaActions::dataOf(int collection, const QList<int>& slotNumbers) const
{
    QList<MediaAddress> addresses;
    addresses.reserve(slotNumbers.size());
    for (const int slot : slotNumbers)
        addresses.append(MediaAddress(collection, slot));
    return m_library->mimeDataOf(addresses);
}

QString MediaActions::copy(int collection, const QList<int>& slotNumbers, bool isCut)
{
    return copySlots(*m_library, collection, slotNumbers, isCut);
}

void MediaActions::paste(int collection, int slot)
{
    m_drops->setCollection(collection);
    pasteSlots(m_drops.get(), std::max(slot, 0) + 1);
}

void MediaActions::askMove(int collection, const QList<int>& slotNumbers)
{
    m_drops->setCollection(collection);
    askWhereToMove(m_drops.get(), m_library, collection, slotNumbers, m_view);
}

/// A declarative drop area gives what is dragged as texts only, which thousands of slots would have to be
/// written as.
bool MediaActions::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove)
        m_dragged = static_cast<QDropEvent*>(event)->mimeData();
    return QObject::eventFilter(watched, event);
}

bool MediaActions::beginDrop(int collection)
{
    m_drops->setCollection(collection);
    return m_dragged && m_drops->begin(m_dragged);
}

QVariantMap MediaActions::aim(int slot)
{
    const DropForecast& forecast = m_drops->aim(slot);
    return {
        {QStringLiteral("isPossible"), forecast.isPossible()},
        {QStringLiteral("canCopy"), forecast.goes == DropForecast::Goes::Along},
        {QStringLiteral("canMove"), forecast.goes == DropForecast::Goes::Copied && !forecast.isCopyWanted},
        {QStringLiteral("first"), forecast.first},
        {QStringLiteral("last"), forecast.last},
        {QStringLiteral("isExact"), forecast.isExact},
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
