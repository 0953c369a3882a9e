#include "common/import/mediaslotdrophandler.h"

#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/import/mediaslotdrophandler_p.h"
#include "common/media/address/medialogging.h"
#include "common/media/address/showntext.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/mimedata.h"

#include <QMimeData>

namespace vantrel {

MediaSlotDropHandler::MediaSlotDropHandler(ImageSequenceCreator* creator, FileSystemProvider* fileSystems,
                                           QObject* parent)
    : QObject(parent)
    , d(std::make_unique<MediaSlotDropHandlerPrivate>(this, creator, fileSystems))
{
}

MediaSlotDropHandler::~MediaSlotDropHandler() = default;

bool MediaSlotDropHandler::dropMimeData(const QMimeData* mimeData, int collection, int slot)
{
    qCInfo(lcMedia) << "Dropped MIME data to collection" << collection << "and slot" << slot;
    if (isMediaPayload(mimeData))
        return drop(SlotPayload::of(mimeData), collection, slot);
    qCWarning(lcMedia) << "Dropped MIME data didn't have correct values - Formats:"
                       << (mimeData ? mimeData->formats() : QStringList());
    return d->refuse(tr("This cannot be put into a slot. Slots and files can."));
}

bool MediaSlotDropHandler::dropMimeData(QMap<QString, QVariant> mime, int collection, int slot)
{
    // Of a payload of thousands of files the log keeps no copy.
    qCInfo(lcMedia) << "Dropped MIME value map to collection" << collection << "and slot" << slot
                    << "- MIME:" << mime.value(mimeformat::type).toString().left(100)
                    << mime.value(mimeformat::json).toString().left(500);
    return d->handleMimeData(mime, collection, slot);
}

bool MediaSlotDropHandler::drop(const SlotPayload& payload, int collection, int slot)
{
    switch (payload.kind()) {
    case SlotPayload::Kind::Slots:
        return d->parseSlot(payload, collection, slot);
    case SlotPayload::Kind::Media:
        return d->parseMedia(payload, collection, slot);
    case SlotPayload::Kind::Nothing:
        break;
    }
    return d->refuse(payload.fault());
}

bool MediaSlotDropHandler::dropDrag(QVariant drag, int collection, int slot)
{
    qCInfo(lcMedia) << "Dropped drag object to collection" << collection << "and slot" << slot;
    const QObject* source = drag.value<QObject*>();
    const QVariant mime = source ? source->property("mimeData") : QVariant();
    return d->handleMimeData(mime.toMap(), collection, slot);
}

void MediaSlotDropHandler::giveUp(const MediaDrop* drop)
{
    d->letGo(drop);
}

MediaSlotDropHandlerPrivate::MediaSlotDropHandlerPrivate(MediaSlotDropHandler* owner,
                                                         ImageSequenceCreator* creator,
                                                         FileSystemProvider* fileSystems)
    : m_owner(owner)
    , m_creator(creator)
    , m_fileSystems(fileSystems)
{
}

bool MediaSlotDropHandlerPrivate::refuse(const QString& why)
{
    Q_EMIT m_owner->dropRefused(why);
    return false;
}

bool MediaSlotDropHandlerPrivate::handleMimeData(const QMap<QString, QVariant>& mime, int collection,
                                                 int slot)
{
    qCDebug(lcMedia) << "Handling MIME data" << mime.keys() << "to collection" << collection << "and slot"
                     << slot;
    return m_owner->drop(SlotPayload::read(mime), collection, slot);
}

/// Slots of the collection move within it, those of another are copied as the library has them.
bool MediaSlotDropHandlerPrivate::parseSlot(const SlotPayload& payload, int collection, int slot)
{
    const QSharedPointer<MediaDrop> drop = createDrop(collection, slot);
    if (payload.movesWithin(collection)) {
        QList<int> numbers;
        for (const MediaAddress& address : payload.addresses())
            numbers.append(address.slot);
        drop->setCollectionSlots(numbers);
        return announce(drop);
    }
    const MediaCollectionManager* const manager = m_creator->mediaCollectionManager();
    QList<GuiMediaSlot> copies;
    for (const MediaAddress& address : payload.addresses()) {
        const int from = address.collection < 0 ? collection : address.collection;
        GuiMediaSlot copy;
        if (!manager || !manager->findMediaSlot(from, address.slot, copy))
            return refuse(MediaSlotDropHandler::tr("Slot %1-%2 is not in the library any more.")
                              .arg(from)
                              .arg(address.slot));
        copies.append(copy);
    }
    drop->setMedias(copies);
    return announce(drop);
}

bool MediaSlotDropHandlerPrivate::parseMedia(const SlotPayload& payload, int collection, int slot)
{
    const QSharedPointer<MediaDrop> drop = createDrop(collection, slot);
    QList<GuiMediaSlot> medias; // all at once: who follows the drop would look at all of them for each
    if (!payload.fault().isEmpty())
        drop->addFault(payload.fault());
    qsizetype handled = 0;
    for (const MediaEntry& entry : payload.entries()) {
        FileSystem* const fileSystem = getFileSystem(entry.fileSystem);
        if (fileSystem) {
            storeMediaToDrop(entry, fileSystem, *drop, medias, handled++ < mostLogged);
            continue;
        }
        qCWarning(lcMedia) << "Unable to get file system for " << entry.fileSystem.left(100);
        drop->addFault(MediaSlotDropHandler::tr("\"%1\" is left out: there is no connection to where it is.")
                           .arg(shownText(entry.name)));
    }
    if (!medias.isEmpty())
        drop->setMedias(medias);
    return announce(drop);
}

FileSystem* MediaSlotDropHandlerPrivate::getFileSystem(const QString& name) const
{
    return m_fileSystems ? m_fileSystems->getFileSystem(name) : nullptr;
}

void MediaSlotDropHandlerPrivate::storeMediaToDrop(const MediaEntry& entry, FileSystem* fileSystem,
                                                   MediaDrop& drop, QList<GuiMediaSlot>& medias,
                                                   bool isLogged) const
{
    // Whoever dragged it may have seen it some time ago.
    const FileSystem::ItemType type = entry.isDirectory ? FileSystem::Directory : FileSystem::File;
    const FileSystem::ItemType present = fileSystem->getType(entry.path);
    if (present != FileSystem::Unknown && present != type) {
        qCWarning(lcMedia) << "Mismatching type of dropped path" << entry.path;
        drop.addFault(MediaSlotDropHandler::tr("\"%1\" is left out: it is another one by now.")
                          .arg(shownText(entry.name)));
        return;
    }
    if (entry.isDirectory || !isMediaFile(entry.path) || !entry.isKnown) {
        if (isLogged)
            qCDebug(lcMedia) << "MediaDrop not a regular video file. Handling path" << entry.path
                             << "as potential image(s)/folder. Collection" << drop.collection() << "and slot"
                             << drop.startSlot();
        drop.requestAsynchronously({entry.path, type}, fileSystem);
        return;
    }
    if (isLogged)
        qCDebug(lcMedia).nospace() << "Handling path " << entry.path << " (" << entry.name
                                   << ") as a single media file add to a collection " << drop.collection()
                                   << " and slot " << drop.startSlot() << " - duration "
                                   << entry.durationSeconds << " - playable "
                                   << (entry.isPlayable ? "true" : "false");
    if (!entry.isPlayable) {
        if (isLogged)
            qCInfo(lcMedia) << "Above entry is non-playable file, ignoring it";
        drop.addFault(MediaSlotDropHandler::tr("\"%1\" is left out: the server cannot play it.")
                          .arg(shownText(entry.name)));
        return;
    }
    GuiMediaSlot media;
    media.setContentUrl(QUrl::fromLocalFile(entry.path));
    media.setName(entry.name.isEmpty() ? getNameInPath(entry.path) : entry.name);
    media.setDuration(entry.durationSeconds);
    media.setIsPlayable(true);
    medias.append(media);
}

QSharedPointer<MediaDrop> MediaSlotDropHandlerPrivate::createDrop(int collection, int slot)
{
    // It goes from one of its own signals.
    QSharedPointer<MediaDrop> drop(new MediaDrop(&m_reader, m_creator, collection, slot),
                                   &QObject::deleteLater);
    connect(drop.get(), &MediaDrop::saved, this, &MediaSlotDropHandlerPrivate::handleFinishedMediaDrop);
    connect(drop.get(), &MediaDrop::canceled, this, &MediaSlotDropHandlerPrivate::handleFinishedMediaDrop);
    return drop;
}

bool MediaSlotDropHandlerPrivate::announce(const QSharedPointer<MediaDrop>& drop)
{
    m_drops.append(drop);
    Q_EMIT m_owner->mediaDropCreated(drop.get());
    return true;
}

void MediaSlotDropHandlerPrivate::handleFinishedMediaDrop()
{
    qCDebug(lcMedia) << "Drop has finished - Removing it";
    letGo(sender());
}

void MediaSlotDropHandlerPrivate::letGo(const QObject* drop)
{
    m_drops.removeIf([drop](const QSharedPointer<MediaDrop>& kept) { return kept.get() == drop; });
}

} // namespace vantrel
