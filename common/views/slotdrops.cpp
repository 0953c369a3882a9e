#include "common/views/slotdrops.h"

#include "common/command/refusal.h"
#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/import/mediadrop.h"
#include "common/media/address/showntext.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/mimedata.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/session/session.h"
#include "common/views/dropreview.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QPointer>
#include <QSet>
#include <QWidget>

#include <algorithm>
#include <chrono>

namespace vantrel {

using namespace std::chrono_literals;

namespace {

/// Of pictures nobody knows how they are to run but the operator; and of what the server tells in a moment
/// there is nothing to be looked at.
bool isToBeReviewed(const MediaDrop& drop)
{
    constexpr int fewFiles = 24;
    return !drop.imageResults().isEmpty() || drop.askedCount() > fewFiles;
}

} // namespace

SlotDrops::SlotDrops(Session* session, MediaCollectionManager* manager, QWidget* window)
    : QObject(window)
    , m_session(session)
    , m_manager(manager)
    , m_library(session ? session->mediaLibraryProvider() : nullptr)
    , m_fileSystems(session ? session->fileSystemProvider() : nullptr)
    , m_numbers(session)
    , m_creator(session, manager)
    , m_handler(&m_creator, m_fileSystems)
    , m_arrivals(session ? session->mediaArrivals() : nullptr)
{
    if (!m_arrivals)
        m_arrivals = new MediaArrivals(nullptr, nullptr, this);
    connect(m_arrivals, &MediaArrivals::changed, this, &SlotDrops::arrivalsChanged);
    connect(m_arrivals, &MediaArrivals::settled, this, &SlotDrops::settle);
    if (session)
        connect(session, &Session::libraryObstacleChanged, this, &SlotDrops::holdDrops);
    connect(&m_numbers, &CollectionNumbers::changed, this, &SlotDrops::renumberDrops);
    connect(&m_handler, &MediaSlotDropHandler::dropRefused, this, &SlotDrops::refuse);
    connect(&m_handler, &MediaSlotDropHandler::mediaDropCreated, this, &SlotDrops::take);
}

SlotDrops::~SlotDrops() = default;

bool SlotDrops::isFree(int slot) const
{
    return slot <= m_manager->lastSlotInCollection(m_collection) &&
           !m_manager->holdsMedia(m_collection, slot);
}

bool SlotDrops::begin(const QMimeData* data)
{
    end();
    if (m_collection < 0)
        return false;
    const QByteArray type = data->data(mimeformat::type);
    if (isMediaPayload(data) && (type == mimeformat::slotType || type == mimeformat::mediaType)) {
        m_payload = SlotPayload::of(data);
        return true;
    }
    m_payload = SlotPayload::ofFiles(MediaArrivals::entriesOf(data->urls()));
    return m_payload.isSound();
}

int SlotDrops::roomFrom(int slot)
{
    readKeys();
    if (m_room.first == slot)
        return m_room.second;
    m_room = {slot, vantrel::roomFrom(m_payload, *m_manager, m_collection, slot)};
    return m_room.second;
}

void SlotDrops::readKeys()
{
    if (m_keysCount) {
        const Qt::KeyboardModifiers held = QGuiApplication::queryKeyboardModifiers();
        want(held & Qt::ControlModifier, held & Qt::ShiftModifier);
    }
}

void SlotDrops::want(bool isCopy, bool isMove)
{
    if (isCopy == m_payload.isCopy() && isMove == m_payload.isMove())
        return;
    m_payload.setIsCopy(isCopy);
    m_payload.setIsMove(isMove);
    m_aimed = -1;
    m_room = {-1, -1};
}

bool SlotDrops::paste(const QMimeData* data, bool isMove, int slot, const std::function<void()>& taken)
{
    if (!begin(data))
        return false;
    m_keysCount = false;
    want(!isMove, isMove);
    m_stored = [session = m_session, taken] {
        const MediaLibraryApi* const api = session ? session->getMediaLibraryApi() : nullptr;
        if (api)
            api->edits()->followLast([taken](const DiffApiError& answer) {
                if (answer.success)
                    taken();
            });
    };
    drop(roomFrom(slot));
    end();
    return true;
}

const DropForecast& SlotDrops::aim(int slot)
{
    readKeys();
    if (slot == m_aimed)
        return m_forecast;
    m_aimed = slot;
    m_forecast = DropForecast::of(m_payload, *m_manager, m_collection, slot);
    if (const QString why = obstacle(); !why.isEmpty())
        m_forecast.fault = tr("%1 Drop it again when the library can be edited.").arg(why);
    else if (MediaArrivals::isMixed(m_payload.entries()))
        m_forecast.fault = tr("Files of this computer and of the server are dropped one after the other.");
    return m_forecast;
}

void SlotDrops::end()
{
    m_payload = {};
    m_forecast = {};
    m_stored = {};
    m_keysCount = true;
    m_aimed = -1;
    m_room = {-1, -1};
}

void SlotDrops::drop(int slot)
{
    m_aimed = -1; // the library may have changed since
    const DropForecast told = m_forecast;
    const DropForecast forecast = aim(slot);
    if (!forecast.isPossible())
        return refuse(forecast.fault);
    m_attention.setRemainingTime(1s);
    // What it would overwrite was told for the slots that it was known to take.
    m_toldLast =
        told.first == forecast.first && told.overwritten == forecast.overwritten ? forecast.last : -1;
    if (m_payload.movesInto(m_collection))
        return moveOver(forecast);
    if (!MediaArrivals::isLocal(m_payload.entries())) {
        m_handler.drop(m_payload, m_collection, slot);
        return;
    }
    const auto next = [this, collection = m_numbers.follow(m_collection), slot, toldLast = m_toldLast](
                          const MediaArrivals::Plan& plan) { bring(plan, collection, slot, toldLast); };
    m_arrivals->plan(m_payload.entries(), tr("Looking at what was dropped on slot %1").arg(slot), next);
}

/// All is known beforehand: there is nothing to be read.
void SlotDrops::moveOver(const DropForecast& forecast)
{
    if (forecast.overwritten > 0 && m_toldLast != forecast.last)
        return refuse(
            tr("It would overwrite slots that nobody was told of. Look where it goes, and drop it again."));
    if (m_manager->moveSlotsFrom(m_payload.addresses(), m_collection, forecast.first) && m_stored)
        m_stored();
}

/// The slots stand at once, under the names that the files will have; the server calls them playable when it
/// has them.
void SlotDrops::bring(const MediaArrivals::Plan& plan, const CollectionNumbers::Number& collection, int slot,
                      int toldLast)
{
    if (!plan.fault.isEmpty())
        return refuse(plan.fault);
    if (plan.server != server())
        return refuse(tr("The server that it was dropped for is not the one by now. Drop it again."));
    if (plan.files.isEmpty()) {
        tell(plan.faults);
        return bringDirectories(plan.directories, collection, slot);
    }
    m_plan = plan;
    m_toldLast = toldLast;
    m_handler.drop(SlotPayload::ofFiles(plan.files), *collection, slot);
    m_plan = {};
}

/// What a folder holds is known when all of it is there, and where the next one begins when that is known.
void SlotDrops::bringDirectories(const QStringList& directories, const CollectionNumbers::Number& collection,
                                 int slot)
{
    const auto folders = std::make_shared<Folders>(
        Folders{server(), collection, slot, QStringList(directories.size()), directories.size()});
    for (qsizetype i = 0; i < directories.size(); ++i) {
        m_arrivals->bringDirectory(directories[i],
                                   [this, folders, i](const QString& path, const QString& fault) {
                                       if (path.isEmpty())
                                           refuse(fault);
                                       folders->paths[i] = path;
                                       if (--folders->awaited == 0)
                                           dropFolders(*folders);
                                   });
    }
}

void SlotDrops::dropFolders(const Folders& folders)
{
    QList<MediaEntry> entries;
    for (const QString& path : folders.paths) {
        if (path.isEmpty())
            continue;
        MediaEntry entry;
        entry.path = path;
        entry.fileSystem = QStringLiteral("server");
        entry.name = getNameInPath(path);
        entry.isDirectory = true;
        entries.append(entry);
    }
    if (entries.isEmpty())
        return;
    if (!server())
        return refuse(tr("The folders are on the server, to which there is no connection. Drop them from its "
                         "side once it is back."));
    if (folders.server != server())
        return refuse(tr("The application has turned to another server. Drop it again."));
    m_toldLast = -1;
    m_handler.drop(SlotPayload::ofFiles(entries), *folders.collection, folders.slot);
}

void SlotDrops::take(MediaDrop* drop)
{
    const int told = m_toldLast;
    m_made.insert(drop, {drop, server(), m_plan, m_numbers.follow(drop->collection())});
    drop->setIsHeld(!obstacle().isEmpty());
    connect(drop, &QObject::destroyed, this,
            [this, drop = static_cast<QObject*>(drop)] { m_made.remove(drop); });
    if (m_stored)
        connect(drop, &MediaDrop::saved, this, m_stored);
    if (!m_plan.files.isEmpty()) {
        QList<GuiMediaSlot> medias = drop->medias();
        for (GuiMediaSlot& media : medias)
            media.setIsPlayable(false);
        drop->setMedias(medias);
        for (const QString& fault : std::as_const(m_plan.faults))
            drop->addFault(fault);
        follow(drop);
    }
    const auto whenReady = [this, drop, told] {
        if (drop->isReady())
            finish(drop, told);
    };
    connect(drop, &MediaDrop::isReadyChanged, this, whenReady);
    // All that was found can be looked at while the server tells of the files that are no pictures.
    connect(drop, &MediaDrop::lastSlotChanged, this, [this, drop, told] {
        if (isToBeReviewed(*drop) && drop->askedCount() > 0)
            finish(drop, told);
    });
    if (drop->isReady()) {
        QMetaObject::invokeMethod(drop, whenReady, Qt::QueuedConnection);
        return;
    }
    m_arrivals->pending().add(
        drop, [slot = drop->startSlot()] { return tr("Reading what was dropped on slot %1").arg(slot); },
        [this, drop] { giveUp(drop); });
}

/// A server that says nothing holds up what is asked of it, and answers later.
void SlotDrops::holdDrops()
{
    const bool isHeld = !obstacle().isEmpty();
    for (const Made& made : std::as_const(m_made))
        made.drop->setIsHeld(isHeld);
    Q_EMIT obstacleChanged();
}

void SlotDrops::renumberDrops()
{
    for (const Made& made : std::as_const(m_made))
        made.drop->setCollection(*made.collection);
}

void SlotDrops::giveUp(MediaDrop* drop)
{
    m_arrivals->pending().remove(drop);
    m_made.remove(drop);
    drop->disconnect(this);
    refuse(tr("What was dropped on slot %1 was given up before it was read. No slot was made of it.")
               .arg(drop->startSlot()));
    m_handler.giveUp(drop);
}

/// Its files are sent once their slots stand.
void SlotDrops::follow(MediaDrop* drop)
{
    const auto await = [this, number = m_made.value(drop).collection](const QString& path, int, int slot,
                                                                      const QUrl& media) {
        m_awaiting.insert(path, {number, slot, media});
    };
    connect(drop, &MediaDrop::mediaSlotSaved, this, [await](const QString& media, int collection, int slot) {
        await(QUrl(media).toLocalFile(), collection, slot, QUrl(media));
    });
    connect(drop, &MediaDrop::stillImageSaved, this,
            [await](const images::StillImage& still, int collection, int slot) {
                await(still.filePath, collection, slot, QUrl::fromLocalFile(still.filePath));
            });
    connect(drop, &MediaDrop::imageSequencesSaved, this,
            [await, drop](const QList<ImageSequenceCandidate>&, int collection, int slot) {
                const QList<images::ImagesResult> results = drop->imageResults();
                for (const images::ImagesResult& result : results) {
                    if (!result.isSequence())
                        continue;
                    for (const images::StillImage& picture : result.stillImages())
                        await(picture.filePath, collection, slot, result.getImageSequence().id);
                    ++slot;
                }
            });
    connect(drop, &MediaDrop::saved, this, [this, drop] { send(*drop); });
    if (!m_plan.directories.isEmpty())
        connect(drop, &MediaDrop::canceled, this, [this] {
            refuse(tr("The folders that came with it were not sent either. Drop them again."));
        });
}

void SlotDrops::send(const MediaDrop& drop)
{
    const MediaArrivals::Plan plan = m_made.value(&drop).plan;
    QList<MediaArrivals::Upload> uploads;
    for (qsizetype i = 0; i < plan.uploads.size(); ++i) {
        const auto awaiting = m_awaiting.constFind(plan.files[i].path);
        if (awaiting != m_awaiting.cend()) // else the operator has left it out
            uploads.append({plan.uploads[i], awaiting->media});
    }
    const auto bringRest = [this, directories = plan.directories, meant = plan.server,
                            number = m_numbers.follow(drop.collection()),
                            slot = drop.startSlot() + drop.storedSlotCount()](const QStringList& faults) {
        tell(faults);
        if (!directories.isEmpty() && meant != server())
            return refuse(server() ? tr("The folders that came with it were not sent: the application has "
                                        "turned to another server. Drop them again.")
                                   : tr("The folders that came with it were not sent: the connection to the "
                                        "server was lost. Drop them again."));
        bringDirectories(directories, number, slot);
    };
    m_arrivals->bringFiles(uploads, this, bringRest);
}

/// Minutes may lie between the drop and its approval.
void SlotDrops::leaveOutWhatIsGone(MediaDrop* drop)
{
    MediaArrivals::Plan& plan = m_made[drop].plan;
    QSet<QString> gone;
    for (qsizetype i = plan.uploads.size() - 1; i >= 0; --i) {
        if (m_arrivals->isFile(plan.uploads[i]))
            continue;
        gone.insert(plan.files[i].path);
        drop->addFault(
            tr("\"%1\" is left out: it is not there any more.").arg(shownText(plan.files[i].name)));
        plan.uploads.removeAt(i);
        plan.files.removeAt(i);
    }
    if (gone.isEmpty())
        return;
    QList<GuiMediaSlot> medias = drop->medias();
    medias.removeIf(
        [&gone](const GuiMediaSlot& media) { return gone.contains(media.contentUrl().toLocalFile()); });
    drop->setMedias(medias);
    QList<images::ImagesResult> results = drop->imageResults();
    for (images::ImagesResult& result : results) {
        QList<images::StillImage> stills = result.stillImages();
        stills.removeIf([&gone](const images::StillImage& still) { return gone.contains(still.filePath); });
        result.setStillImages(stills);
    }
    results.removeIf([](const images::ImagesResult& result) { return result.stillImages().isEmpty(); });
    drop->setImageResults(results);
}

FileSystem* SlotDrops::server() const
{
    return m_fileSystems ? m_fileSystems->getFileSystem(QStringLiteral("server")) : nullptr;
}

void SlotDrops::settle(const QUrl& media, bool isSupplanted)
{
    const auto [collection, number, content] = m_awaiting.take(media.toLocalFile());
    GuiMediaSlot slot;
    if (!isSupplanted || !collection || !m_manager->findMediaSlot(*collection, number, slot) ||
        slot.contentUrl() != content)
        return;
    m_manager->clearSlot(*collection, number);
    refuse(tr("\"%1\" has not arrived, and the server holds another file of its name by now. Slot %2 of "
              "collection %3 was cleared, so that nobody plays that one. Give yours another name and drop it "
              "again.")
               .arg(shownText(media.fileName()))
               .arg(number)
               .arg(*collection));
}

/// What goes and was not told before the button was let go is asked, and so is what nobody knows but the
/// operator. What cannot be stored now waits in the same dialog.
void SlotDrops::finish(MediaDrop* drop, int toldLast)
{
    disconnect(drop, &MediaDrop::isReadyChanged, this, nullptr);
    disconnect(drop, &MediaDrop::lastSlotChanged, this, nullptr);
    m_arrivals->pending().remove(drop);
    QStringList names;
    const int first = std::max(drop->startSlot(), toldLast + 1);
    if (isToBeReviewed(*drop) || (drop->lastSlot() >= 0 && !hindranceOf(*drop).isEmpty()) ||
        overwrittenSlots(*m_manager, drop->collection(), first, drop->lastSlot(), drop->collectionSlots(),
                         names) > 0)
        review(drop);
    else if (!save(drop))
        letGo(drop);
}

void SlotDrops::review(MediaDrop* drop)
{
    const auto forecast = [self = QPointer(this)](const MediaDrop& of) {
        DropForecast now;
        if (!self)
            return now; // the view has gone, and the drop goes with it
        now = DropForecast::of(of, *self->m_manager);
        if (const QString why = self->hindranceOf(of); !why.isEmpty())
            now.fault = why;
        return now;
    };
    auto* const review = new DropReview(drop, forecast, !m_attention.hasExpired());
    if (m_library)
        review->follow(m_library);
    if (m_session)
        connect(m_session, &Session::libraryObstacleChanged, review, &DropReview::noteChange);
    connect(review, &DropReview::approved, this, [this, drop = QPointer(drop), review] {
        if (!drop || save(drop))
            return;
        if (drop->lastSlot() < 0)
            letGo(drop);
        else
            review->tell();
    });
    connect(review, &DropReview::rejected, this, [this, drop = QPointer(drop)] {
        if (drop && drop->isReady()) {
            drop->cancel();
        } else if (drop) {
            drop->disconnect(this);
            m_handler.giveUp(drop);
        }
    });
}

QString SlotDrops::obstacle() const
{
    if (m_session)
        return m_session->libraryObstacle();
    return m_obstacle ? m_obstacle() : QString();
}

/// Why a drop cannot be stored now. What the operator has made of it is not given up for that.
QString SlotDrops::hindranceOf(const MediaDrop& drop) const
{
    if (const QString why = obstacle(); !why.isEmpty())
        return tr("%1 What stands here is kept until it can be added.").arg(why);
    if (m_made.value(&drop).server != server())
        return tr(
            "The application has turned to another server. This can be added once it is back at the one "
            "that it was dropped for.");
    return {};
}

/// False, and it stands as it did, where it was not: it is empty, has no room, or nobody took it.
bool SlotDrops::save(MediaDrop* drop)
{
    bool isSaved = false;
    const auto connection = connect(drop, &MediaDrop::saved, this, [&isSaved] { isSaved = true; });
    leaveOutWhatIsGone(drop);
    if (drop->lastSlot() >= 0)
        drop->save();
    else if (drop->faults().isEmpty())
        drop->addFault(tr("There is nothing in it that a slot could hold."));
    disconnect(connection);
    if (isSaved)
        tell(drop->faults()); // it is deleted later
    return isSaved;
}

/// With what there is to be said of it.
void SlotDrops::letGo(MediaDrop* drop)
{
    tell(drop->faults());
    drop->cancel();
}

/// Of many the first.
void SlotDrops::tell(const QStringList& faults) const
{
    constexpr qsizetype mostLines = 5;
    if (faults.isEmpty())
        return;
    QString text = faults.first(std::min(mostLines, faults.size())).join(u'\n');
    if (const qsizetype more = faults.size() - mostLines; more > 0)
        text += u'\n' + tr("And %1 more.").arg(more);
    refuse(text);
}

void SlotDrops::refuse(const QString& why) const
{
    tellNotDone(tr("Drop on slots"), why);
}

} // namespace vantrel
