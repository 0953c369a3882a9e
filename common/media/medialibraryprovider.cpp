#include "common/media/medialibraryprovider.h"

#include "common/command/slot/setinpointcommand.h"
#include "common/command/slot/setoutpointcommand.h"
#include "common/media/guimediacollection.h"
#include "common/media/guimediaslot.h"
#include "common/media/medialogging.h"
#include "common/media/mediautils.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

MediaLibraryProvider::MediaLibraryProvider(Ref<MediaLibrary> library, QObject* parent)
    : AbstractMediaLibraryProvider(parent)
    , m_library(std::move(library))
{
}

MediaLibraryProvider::~MediaLibraryProvider() = default;

QList<std::shared_ptr<const GuiMediaCollection>> MediaLibraryProvider::collections() const
{
    return m_collections.values();
}

std::shared_ptr<const GuiMediaCollection> MediaLibraryProvider::collection(int index) const
{
    return index < 0 ? nullptr : m_collections.value(static_cast<uint>(index));
}

QList<std::shared_ptr<const GuiMediaSlot>> MediaLibraryProvider::slots_(int collection) const
{
    return collection < 0 ? QList<std::shared_ptr<const GuiMediaSlot>>()
                          : m_collectionSlots.value(static_cast<uint>(collection)).values();
}

std::shared_ptr<const GuiMediaSlot> MediaLibraryProvider::slot(MediaAddress address) const
{
    return m_slots.value(address);
}

void MediaLibraryProvider::setInpoint(const MediaAddress& address, double inpoint)
{
    auto command = std::make_unique<SetInpointCommand>();
    if (command->init(m_library.get(), media::MediaUtils::toSlotAddress(address), inpoint))
        Q_EMIT libraryCommandExec(command.release());
}

void MediaLibraryProvider::setOutpoint(const MediaAddress& address, std::optional<double> outpoint)
{
    auto command = std::make_unique<SetOutpointCommand>();
    if (command->init(m_library.get(), media::MediaUtils::toSlotAddress(address), outpoint))
        Q_EMIT libraryCommandExec(command.release());
}

MediaLibrary* MediaLibraryProvider::mediaLibrary()
{
    return m_library.get();
}

void MediaLibraryProvider::onReset()
{
    // The sets of m_collectionSlots stay: who asks for the slots of a collection after a reload gets the
    // earlier items beside the new ones, and tells them apart by their pointers.
    m_collections.clear();
    m_slots.clear();
    populateCollections();
    populateSlots();
    Q_EMIT reset();
}

void MediaLibraryProvider::onCollectionChanged(uint index)
{
    populateSingleCollection(index, true);
    Q_EMIT collectionChanged(index);
}

void MediaLibraryProvider::onCollectionRemoved(uint index)
{
    if (m_collections.remove(index) == 0) {
        qCWarning(lcMedia) << "Received collection" << index << "remove event, but collection doesn't exist.";
        return;
    }
    qCDebug(lcMedia) << "Removed collection" << index;
    // slot() answers for its slots until they are written anew: models hear of the removal and stop asking.
    m_collectionSlots.remove(index);
    Q_EMIT collectionRemoved(index);
}

void MediaLibraryProvider::onCollectionAdded(uint index)
{
    populateSingleCollection(index, false);
    populateSlotsOf(index);
    Q_EMIT collectionAdded(index);
}

void MediaLibraryProvider::onSlotAdded(const MediaAddress& address)
{
    if (!populateSingleSlot(address)) {
        qCWarning(lcMedia, "Couldn't add slot: %s", address.toString().c_str());
        Q_EMIT slotRemoved(address);
        return;
    }
    Q_EMIT slotAdded(address);
}

void MediaLibraryProvider::onSlotChanged(const MediaAddress& address)
{
    if (!populateSingleSlot(address)) {
        qCWarning(lcMedia, "Couldn't change slot: %s", address.toString().c_str());
        Q_EMIT slotRemoved(address);
        return;
    }
    Q_EMIT slotChanged(address);
}

void MediaLibraryProvider::onSlotRemoved(const MediaAddress& address)
{
    clearSingleSlot(address);
    Q_EMIT slotRemoved(address);
}

void MediaLibraryProvider::populateCollections()
{
    for (const auto& [index, collection] : m_library->getCollections()) {
        const auto key = static_cast<uint>(index);
        m_collections.insert(
            key, std::make_shared<GuiMediaCollection>(key, QString::fromStdString(collection.getName())));
    }
}

void MediaLibraryProvider::populateSingleCollection(uint index, bool replace)
{
    if (replace)
        m_collections.remove(index);
    const MediaCollection* collection = std::as_const(*m_library).getCollection(static_cast<int>(index));
    if (!collection)
        return;
    m_collections.insert(
        index, std::make_shared<GuiMediaCollection>(index, QString::fromStdString(collection->getName())));
}

void MediaLibraryProvider::populateSlots()
{
    const auto collections = m_library->getCollections(); // a copy: the walk must not see an edit
    for (const auto& [index, collection] : collections)
        populateSlotsOf(static_cast<uint>(index));
}

void MediaLibraryProvider::populateSlotsOf(uint collection)
{
    const MediaCollection* record = std::as_const(*m_library).getCollection(static_cast<int>(collection));
    if (!record)
        return;
    const auto slotMap = record->getSlots();
    for (const auto& [index, slot] : slotMap)
        populateSingleSlot(MediaAddress(static_cast<int>(collection), index));
}

bool MediaLibraryProvider::populateSingleSlot(const MediaAddress& address)
{
    clearSingleSlot(address);
    const MediaSlot* record = std::as_const(*m_library).getSlot(address.collection, address.slot);
    if (!record) {
        qCWarning(lcMedia, "Missing slot from collection: %s", address.toString().c_str());
        return false;
    }
    const auto item = std::make_shared<const GuiMediaSlot>(address, *record);
    m_slots.insert(address, item);
    m_collectionSlots[static_cast<uint>(address.collection)].insert(item);
    return true;
}

void MediaLibraryProvider::clearSingleSlot(const MediaAddress& address)
{
    const auto found = m_slots.constFind(address);
    if (found == m_slots.constEnd())
        return;
    const std::shared_ptr<const GuiMediaSlot> item = *found;
    const auto items = m_collectionSlots.find(static_cast<uint>(address.collection));
    if (items != m_collectionSlots.end())
        items->remove(item);
    m_slots.remove(address);
}

} // namespace vantrel
