#pragma once

#include "common/media/abstractmedialibraryprovider.h"
#include "tarn/ref.h"

#include <QMap>
#include <QSet>

namespace vantrel {

/// Keeps the items of collections and slots in step with the library. Listens to MediaLibraryApi and rebuilds
/// only what a change touched. The session owns it for its life; main thread only.
class MediaLibraryProvider : public AbstractMediaLibraryProvider
{
    Q_OBJECT

public:
    explicit MediaLibraryProvider(Ref<MediaLibrary> library, QObject* parent = nullptr);
    ~MediaLibraryProvider() override;

    QList<std::shared_ptr<const GuiMediaCollection>> collections() const override;
    std::shared_ptr<const GuiMediaCollection> collection(int index) const override;
    QList<std::shared_ptr<const GuiMediaSlot>> slots_(int collection) const override;
    std::shared_ptr<const GuiMediaSlot> slot(MediaAddress address) const override;
    void setInpoint(const MediaAddress& address, double inpoint) override;
    void setOutpoint(const MediaAddress& address, std::optional<double> outpoint) override;
    MediaLibrary* mediaLibrary() override;

public Q_SLOTS:
    void onReset();
    void onCollectionChanged(uint index);
    void onCollectionRemoved(uint index);
    void onCollectionAdded(uint index);
    void onSlotAdded(const vantrel::MediaAddress& address);
    void onSlotChanged(const vantrel::MediaAddress& address);
    void onSlotRemoved(const vantrel::MediaAddress& address);

private:
    void populateCollections();
    void populateSingleCollection(uint index, bool replace);
    void populateSlots();
    void populateSlotsOf(uint collection);
    bool populateSingleSlot(const MediaAddress& address);
    void clearSingleSlot(const MediaAddress& address);

    Ref<MediaLibrary> m_library;
    QMap<uint, std::shared_ptr<const GuiMediaCollection>> m_collections;
    QMap<MediaAddress, std::shared_ptr<const GuiMediaSlot>> m_slots;
    QMap<uint, QSet<std::shared_ptr<const GuiMediaSlot>>> m_collectionSlots;
};

} // namespace vantrel
