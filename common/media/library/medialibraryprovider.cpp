#include "common/media/library/medialibraryprovider.h"

#include "common/media/address/medialogging.h"
#include "common/media/address/mediautils.h"
#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaslot.h"
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
    if (collection < 0)
        return {};
    makeSlotsOf(static_cast<uint>(collection));
    return m_collectionSlots.value(static_cast<uint>(collection)).values();
}

std::shared_ptr<const GuiMediaSlot> MediaLibraryProvider::slot(MediaAddress address) const
{
    const auto made = m_slots.constFind(address);
    return made != m_slots.constEnd() ? *made : makeSlot(address);
}

bool MediaLibraryProvider::hasSlot(MediaAddress address) const
{
    const auto isUnmade = [&](const std::map<uint, Records>& unmade) {
        const auto records = unmade.find(static_cast<uint>(address.collection));
        return records != unmade.end() && records->second.contains(address.slot);
    };
    return m_slots.contains(address) || isUnmade(m_unmade) || isUnmade(m_unmadeGone);
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
}

MediaLibrary* MediaLibraryProvider::mediaLibrary()
{
    return m_library.get();
}

void MediaLibraryProvider::onReset()
{
    // What m_collectionSlots tells stays: who asks for the slots of a collection after a reload gets the
    // earlier items beside the new ones, and tells them apart by their pointers.
    for (auto& [collection, records] : m_unmade) {
        if (!records.empty())
            m_unmadeEarlier[collection].push_back(std::move(records));
    }
    m_unmade.clear();
    m_unmadeGone.clear();
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
    m_unmadeEarlier.erase(index);
    if (const auto unmade = m_unmade.find(index); unmade != m_unmade.end()) {
        Records& gone = m_unmadeGone[index];
        for (const auto& [number, record] : unmade->second)
            gone.set(number, record);
        m_unmade.erase(unmade);
    }
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
    const Records records = record->getSlots().records();
    if (m_slots.isEmpty() && m_unmadeGone.empty() && !m_unmade.contains(collection)) {
        m_unmade[collection] = records; // as after a reload
        return;
    }
    for (const auto& [index, slot] : records) {
        clearSingleSlot(MediaAddress(static_cast<int>(collection), index));
        m_unmade[collection].set(index, slot);
    }
}

bool MediaLibraryProvider::populateSingleSlot(const MediaAddress& address)
{
    clearSingleSlot(address);
    const MediaSlot* record = std::as_const(*m_library).getSlot(address.collection, address.slot);
    if (!record) {
        qCWarning(lcMedia, "Missing slot from collection: %s", address.toString().c_str());
        return false;
    }
    m_unmade[static_cast<uint>(address.collection)].set(address.slot, *record);
    return true;
}

void MediaLibraryProvider::clearSingleSlot(const MediaAddress& address)
{
    const auto collection = static_cast<uint>(address.collection);
    for (std::map<uint, Records>* unmade : {&m_unmade, &m_unmadeGone}) {
        if (const auto records = unmade->find(collection); records != unmade->end())
            records->second.erase(address.slot);
    }
    const SlotPtr item = m_slots.take(address);
    if (!item)
        return;
    const auto items = m_collectionSlots.find(collection);
    if (items != m_collectionSlots.end())
        items->remove(item);
}

std::shared_ptr<const GuiMediaSlot> MediaLibraryProvider::makeSlot(const MediaAddress& address) const
{
    const auto collection = static_cast<uint>(address.collection);
    for (std::map<uint, Records>* unmade : {&m_unmade, &m_unmadeGone}) {
        const auto records = unmade->find(collection);
        const MediaSlot* record = records == unmade->end() ? nullptr : records->second.get(address.slot);
        if (!record)
            continue;
        const auto item = std::make_shared<const GuiMediaSlot>(address, *record);
        records->second.erase(address.slot);
        m_slots.insert(address, item);
        if (unmade == &m_unmade)
            m_collectionSlots[collection].insert(item);
        return item;
    }
    return nullptr;
}

void MediaLibraryProvider::makeSlotsOf(uint collection) const
{
    if (const auto unmade = m_unmade.find(collection); unmade != m_unmade.end()) {
        const Records records = unmade->second; // a copy: each that is made leaves it
        for (const auto& [index, record] : records)
            makeSlot(MediaAddress(static_cast<int>(collection), index));
    }
    const auto earlier = m_unmadeEarlier.find(collection);
    if (earlier == m_unmadeEarlier.end())
        return;
    for (const Records& records : earlier->second) {
        for (const auto& [index, record] : records)
            m_collectionSlots[collection].insert(std::make_shared<const GuiMediaSlot>(
                MediaAddress(static_cast<int>(collection), index), record));
    }
    m_unmadeEarlier.erase(earlier);
}

} // namespace vantrel
