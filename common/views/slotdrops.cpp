#include "common/views/slotdrops.h"

#include "common/command/refusal.h"
#include "common/import/mediadrop.h"
#include "common/media/address/showntext.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/mimedata.h"
#include "common/qml/dialogfactory.h"
#include "common/qml/dropdialog.h"
#include "common/qml/qmlmanager.h"
#include "common/session/session.h"
#include "common/ui/toolkit/confirmationdialog.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <chrono>

namespace vantrel {

using namespace std::chrono_literals;

SlotDrops::SlotDrops(Session* session, MediaCollectionManager* manager, QWidget* window)
    : QObject(window)
    , m_manager(manager)
    , m_window(window)
    , m_creator(session, manager)
    , m_handler(&m_creator, session ? session->fileSystemProvider() : nullptr)
    , m_arrivals(session ? session->mediaArrivals() : nullptr)
{
    if (!m_arrivals)
        m_arrivals = new MediaArrivals(nullptr, nullptr, this);
    connect(m_arrivals, &MediaArrivals::changed, this, &SlotDrops::arrivalsChanged);
    connect(m_arrivals, &MediaArrivals::settled, this, &SlotDrops::settle);
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
    m_mime = SlotPayload::mapOf(data);
    const QString type = m_mime.value(mimeformat::type).toString();
    if (m_collection < 0)
        return false;
    if (type == mimeformat::slotType || type == mimeformat::mediaType) {
        m_payload = SlotPayload::read(m_mime);
        return true;
    }
    m_mime.clear();
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
    const bool isCopy = QGuiApplication::queryKeyboardModifiers() & Qt::ControlModifier;
    if (isCopy == m_payload.isCopy())
        return;
    m_payload.setIsCopy(isCopy);
    m_mime.insert(SlotPayload::copyKey, isCopy);
    m_aimed = -1;
    m_room = {-1, -1};
}

const DropForecast& SlotDrops::aim(int slot)
{
    readKeys();
    if (slot == m_aimed)
        return m_forecast;
    m_aimed = slot;
    m_forecast = DropForecast::of(m_payload, *m_manager, m_collection, slot);
    if (const QString why = obstacle(); !why.isEmpty())
        m_forecast.fault = why;
    return m_forecast;
}

void SlotDrops::end()
{
    m_mime.clear();
    m_payload = {};
    m_forecast = {};
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
    if (!MediaArrivals::isLocal(m_payload.entries())) {
        m_handler.dropMimeData(m_mime, m_collection, slot);
        return;
    }
    const auto next = [this, collection = m_collection, slot, toldLast = m_toldLast](
                          const MediaArrivals::Plan& plan) { bring(plan, collection, slot, toldLast); };
    m_arrivals->plan(m_payload.entries(), next);
}

/// The slots stand at once, under the names that the files will have; the server calls them playable when it
/// has them.
void SlotDrops::bring(const MediaArrivals::Plan& plan, int collection, int slot, int toldLast)
{
    if (!plan.fault.isEmpty())
        return refuse(plan.fault);
    if (plan.files.isEmpty()) {
        if (!plan.faults.isEmpty())
            refuse(plan.faults.join(u'\n'));
        return bringDirectories(plan.directories, collection, slot);
    }
    m_plan = plan;
    m_toldLast = toldLast;
    m_handler.dropMimeData(SlotPayload::mimeOf(plan.files), collection, slot);
    m_plan = {};
}

/// What a folder holds is known when all of it is there.
void SlotDrops::bringDirectories(const QStringList& directories, int collection, int slot)
{
    for (const QString& directory : directories) {
        m_arrivals->bringDirectory(directory, [this, collection, slot](const QString& path) {
            MediaEntry entry;
            entry.path = path;
            entry.fileSystem = QStringLiteral("server");
            entry.isDirectory = true;
            m_toldLast = -1;
            m_handler.dropMimeData(SlotPayload::mimeOf({entry}), collection, slot);
        });
    }
}

void SlotDrops::take(MediaDrop* drop)
{
    const int told = m_toldLast;
    if (!m_plan.files.isEmpty()) {
        QList<GuiMediaSlot> medias = drop->medias();
        for (GuiMediaSlot& media : medias)
            media.setIsPlayable(false);
        drop->setMedias(medias);
        for (const QString& fault : std::as_const(m_plan.faults))
            drop->addFault(fault);
        connect(drop, &MediaDrop::mediaSlotSaved, this,
                [this](const QString& media, int collection, int slot) {
                    m_awaiting.insert(QUrl(media).toLocalFile(), MediaAddress(collection, slot));
                });
        connect(drop, &MediaDrop::saved, this, [this, drop, plan = m_plan, next = drop->startSlot()] {
            for (const QString& path : plan.uploads)
                m_arrivals->bringFile(path);
            bringDirectories(plan.directories, drop->collection(), std::max(next, drop->lastSlot() + 1));
        });
    }
    const auto whenReady = [this, drop, told] {
        if (drop->isReady())
            finish(drop, told);
    };
    connect(drop, &MediaDrop::isReadyChanged, this, whenReady);
    if (drop->isReady())
        QMetaObject::invokeMethod(drop, whenReady, Qt::QueuedConnection);
}

void SlotDrops::settle(const QUrl& media, bool isSupplanted)
{
    const MediaAddress address = m_awaiting.take(media.toLocalFile());
    GuiMediaSlot slot;
    if (!isSupplanted || !m_manager->findMediaSlot(address.collection, address.slot, slot) ||
        slot.contentUrl().toLocalFile() != media.toLocalFile())
        return;
    m_manager->clearSlot(address.collection, address.slot);
    refuse(tr("\"%1\" has not arrived, and the server holds another file of its name by now. Slot %2 of "
              "collection %3 was cleared, so that nobody plays that one. Give yours another name and drop it "
              "again.")
               .arg(shownText(media.fileName()))
               .arg(address.slot)
               .arg(address.collection));
}

/// Folders may have held more than a forecast could tell.
void SlotDrops::finish(MediaDrop* drop, int toldLast)
{
    disconnect(drop, &MediaDrop::isReadyChanged, this, nullptr);
    if (!drop->imageResults().isEmpty())
        return review(drop);
    QStringList names;
    const int first = std::max(drop->startSlot(), toldLast + 1);
    const int count = drop->lastSlot() < 0
                          ? 0
                          : overwrittenSlots(*m_manager, drop->collection(), first, drop->lastSlot(),
                                             drop->collectionSlots(), names);
    if (count == 0)
        return save(drop);
    const int more = count - static_cast<int>(names.size());
    auto* dialog = new ConfirmationDialog(
        tr("Overwrite %n slots?", nullptr, count),
        tr("What was dropped takes the slots %1 to %2 of collection %3. What they hold goes: %4. It can be "
           "undone.")
            .arg(drop->startSlot())
            .arg(drop->lastSlot())
            .arg(drop->collection())
            .arg(names.join(QStringLiteral(", ")) + (more > 0 ? tr(" and %1 more").arg(more) : QString())),
        tr("OVERWRITE"), m_window);
    dialog->setObjectNames(QStringLiteral("MediaPanel-overwrite-slots"));
    dialog->setAcceptClass(QStringLiteral("red"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const QPointer<MediaDrop> kept(drop);
    connect(dialog, &ZTDialog::confirmed, this, [this, kept] {
        if (kept)
            save(kept);
    });
    connect(dialog, &QDialog::rejected, this, [kept] {
        if (kept)
            kept->cancel();
    });
    dialog->open();
}

/// Of pictures nobody knows how they are to run but the operator, who looks at them and at what goes for
/// them.
void SlotDrops::review(MediaDrop* drop)
{
    QMLManager::instance()->initialize();
    DropDialog* const dialog =
        QMLManager::instance()->dialogs()->openDropDialog(drop, !m_attention.hasExpired());
    const auto tellWhere = [this, drop, dialog] { dialog->setForecast(DropForecast::of(*drop, *m_manager)); };
    tellWhere();
    connect(drop, &MediaDrop::lastSlotChanged, dialog, tellWhere);
    connect(dialog, &ZTDialog::confirmed, this, [this, drop = QPointer(drop), dialog, tellWhere] {
        if (!drop)
            return;
        // What others have put there since is shown before it goes.
        if (dialog->forecast() == DropForecast::of(*drop, *m_manager))
            save(drop);
        else
            tellWhere();
    });
    connect(dialog, &QDialog::rejected, this, [drop = QPointer(drop)] {
        if (drop)
            drop->cancel();
    });
}

void SlotDrops::save(MediaDrop* drop)
{
    const QPointer<MediaDrop> kept(drop);
    bool isSaved = false;
    const auto connection = connect(drop, &MediaDrop::saved, this, [&isSaved] { isSaved = true; });
    if (const QString why = obstacle(); !why.isEmpty())
        drop->addFault(why);
    else if (drop->lastSlot() >= 0)
        drop->save();
    else if (drop->faults().isEmpty())
        drop->addFault(tr("There is nothing in it that a slot could hold."));
    tell(*drop); // it is deleted later
    disconnect(connection);
    if (!isSaved)
        drop->cancel();
}

void SlotDrops::tell(const MediaDrop& drop) const
{
    constexpr qsizetype mostLines = 5;
    QStringList faults = drop.faults();
    if (faults.isEmpty())
        return;
    if (const qsizetype more = faults.size() - mostLines; more > 0) {
        faults.resize(mostLines);
        faults.append(tr("And %1 more.").arg(more));
    }
    refuse(faults.join(u'\n'));
}

void SlotDrops::refuse(const QString& why) const
{
    tellNotDone(tr("Drop on slots"), why);
}

} // namespace vantrel
