#include "common/media/library/medialibraryprovider.h"

#include "common/media/address/medialogging.h"
#include "common/media/address/mediautils.h"
#include "common/media/items/guimediacollection.h"
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
    return collection < 0 ? QList<SlotTable::Item>() : m_slots.items(static_cast<uint>(collection));
}

std::shared_ptr<const GuiMediaSlot> MediaLibraryProvider::slot(MediaAddress address) const
{
    return m_slots.item(address);
}

bool MediaLibraryProvider::hasSlot(MediaAddress address) const
{
    return m_slots.contains(address);
}

void MediaLibraryProvider::setTrimCommands(TrimCommand inpoint, TrimCommand outpoint)
{
    m_inpointCommand = std::move(inpoint);
    m_outpointCommand = std::move(outpoint);
}

void MediaLibraryProvider::setInpoint(const MediaAddress& address, double inpoint)
{
    execute(m_inpointCommand, address, inpoint);
}

void MediaLibraryProvider::setOutpoint(const MediaAddress& address, std::optional<double> outpoint)
{
    execute(m_outpointCommand, address, outpoint);
}

void MediaLibraryProvider::execute(const TrimCommand& make, const MediaAddress& address,
                                   std::optional<double> seconds)
{
    AbstractSessionCommand* command = make ? make(m_library.get(), address, seconds) : nullptr;
    if (command)
        Q_EMIT libraryCommandExec(command);
    else
        tellSettled();
}

void MediaLibraryProvider::tellSettled()
{
    QMetaObject::invokeMethod(this, &MediaLibraryProvider::editsSettled, Qt::QueuedConnection);
}

MediaLibrary* MediaLibraryProvider::mediaLibrary()
{
    return m_library.get();
}

void MediaLibraryProvider::onReset()
{
    m_collections.clear();
    m_slots.reset();
    populateCollections();
    const auto collections = m_library->getCollections(); // a copy: the walk must not see an edit
    for (const auto& [index, collection] : collections)
        populateSlotsOf(static_cast<uint>(index));
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
    m_slots.removeCollection(index);
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
    m_slots.remove(address);
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

void MediaLibraryProvider::populateSlotsOf(uint collection)
{
    const MediaCollection* record = std::as_const(*m_library).getCollection(static_cast<int>(collection));
    if (record)
        m_slots.putAll(collection, record->getSlots().records());
}

bool MediaLibraryProvider::populateSingleSlot(const MediaAddress& address)
{
    const MediaSlot* record = std::as_const(*m_library).getSlot(address.collection, address.slot);
    if (!record) {
        m_slots.remove(address);
        qCWarning(lcMedia, "Missing slot from collection: %s", address.toString().c_str());
        return false;
    }
    m_slots.put(address, *record);
    return true;
}

} // namespace vantrel
