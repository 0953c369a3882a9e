#include "common/views/slotdrops.h"

#include "common/command/refusal.h"
#include "common/import/mediadrop.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/items/mimedata.h"
#include "common/ui/toolkit/confirmationdialog.h"

#include <QMimeData>
#include <QPointer>
#include <QWidget>

#include <algorithm>

namespace vantrel {

SlotDrops::SlotDrops(Session* session, MediaCollectionManager* manager, FileSystemProvider* fileSystems,
                     QWidget* window)
    : QObject(window)
    , m_manager(manager)
    , m_window(window)
    , m_creator(session, manager)
    , m_handler(&m_creator, fileSystems)
{
    connect(&m_handler, &MediaSlotDropHandler::dropRefused, this, &SlotDrops::refuse);
    connect(&m_handler, &MediaSlotDropHandler::mediaDropCreated, this, &SlotDrops::take);
}

SlotDrops::~SlotDrops() = default;

bool SlotDrops::begin(const QMimeData* data)
{
    end();
    m_mime = SlotPayload::mapOf(data);
    const QString type = m_mime.value(mimeformat::type).toString();
    if (m_collection < 0 || (type != mimeformat::slotType && type != mimeformat::mediaType)) {
        m_mime.clear();
        return false;
    }
    m_payload = SlotPayload::read(m_mime);
    return true;
}

const DropForecast& SlotDrops::aim(int slot)
{
    if (slot == m_aimed)
        return m_forecast;
    m_aimed = slot;
    m_forecast = DropForecast::of(m_payload, *m_manager, m_collection, slot);
    const auto isLocal = [](const MediaEntry& entry) { return entry.fileSystem == QStringLiteral("local"); };
    if (const QString obstacle = m_obstacle ? m_obstacle() : QString(); !obstacle.isEmpty())
        m_forecast.fault = obstacle;
    else if (std::ranges::any_of(m_payload.entries(), isLocal))
        m_forecast.fault = tr("The server plays its own files only. Copy these to it in FILES first.");
    return m_forecast;
}

void SlotDrops::end()
{
    m_mime.clear();
    m_payload = {};
    m_forecast = {};
    m_aimed = -1;
}

void SlotDrops::drop(int slot)
{
    m_aimed = -1; // the library may have changed since
    const DropForecast told = m_forecast;
    const DropForecast forecast = aim(slot);
    if (!forecast.isPossible())
        return refuse(forecast.fault);
    // What it would overwrite was told for the slots that it was known to take.
    m_toldLast =
        told.first == forecast.first && told.overwritten == forecast.overwritten ? forecast.last : -1;
    m_handler.dropMimeData(m_mime, m_collection, slot);
}

void SlotDrops::take(MediaDrop* drop)
{
    const int told = m_toldLast;
    const auto whenReady = [this, drop, told] {
        if (drop->isReady())
            finish(drop, told);
    };
    connect(drop, &MediaDrop::isReadyChanged, this, whenReady);
    if (drop->isReady())
        QMetaObject::invokeMethod(drop, whenReady, Qt::QueuedConnection);
}

/// Folders may have held more than a forecast could tell.
void SlotDrops::finish(MediaDrop* drop, int toldLast)
{
    disconnect(drop, &MediaDrop::isReadyChanged, this, nullptr);
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

void SlotDrops::save(MediaDrop* drop)
{
    const QPointer<MediaDrop> kept(drop);
    bool isSaved = false;
    const auto connection = connect(drop, &MediaDrop::saved, this, [&isSaved] { isSaved = true; });
    if (const QString obstacle = m_obstacle ? m_obstacle() : QString(); !obstacle.isEmpty())
        drop->addFault(obstacle);
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
