#pragma once

#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/library/slottable.h"
#include "tarn/ref.h"

#include <QMap>

#include <functional>
#include <optional>

namespace vantrel {

/// Keeps the items of collections and slots in step with the library. Listens to MediaLibraryApi and rebuilds
/// only what a change touched. The session owns it for its life; main thread only.
class MediaLibraryProvider : public AbstractMediaLibraryProvider
{
    Q_OBJECT

public:
    explicit MediaLibraryProvider(Ref<MediaLibrary> library, QObject* parent = nullptr);
    ~MediaLibraryProvider() override;

    /// Makes the command that sets a point of a slot, in seconds; null where there is nothing to set.
    using TrimCommand =
        std::function<AbstractSessionCommand*(MediaLibrary*, const MediaAddress&, std::optional<double>)>;
    /// Commands stand above the library, so who knows them hands them in. Without them points cannot be set.
    void setTrimCommands(TrimCommand inpoint, TrimCommand outpoint);

    QList<std::shared_ptr<const GuiMediaCollection>> collections() const override;
    std::shared_ptr<const GuiMediaCollection> collection(int index) const override;
    QList<std::shared_ptr<const GuiMediaSlot>> slots_(int collection) const override;
    std::shared_ptr<const GuiMediaSlot> slot(MediaAddress address) const override;
    bool hasSlot(MediaAddress address) const override;
    void setInpoint(const MediaAddress& address, double inpoint) override;
    void setOutpoint(const MediaAddress& address, std::optional<double> outpoint) override;
    MediaLibrary* mediaLibrary() override;
    /// Of an edit that came to nothing before it was under way; in a turn of its own.
    void tellSettled();

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
    void populateSlotsOf(uint collection);
    bool populateSingleSlot(const MediaAddress& address);

    void execute(const TrimCommand& make, const MediaAddress& address, std::optional<double> seconds);

    Ref<MediaLibrary> m_library;
    TrimCommand m_inpointCommand;
    TrimCommand m_outpointCommand;
    QMap<uint, std::shared_ptr<const GuiMediaCollection>> m_collections;
    SlotTable m_slots;
};

} // namespace vantrel
