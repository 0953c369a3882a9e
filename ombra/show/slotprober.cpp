#include "ombra/show/slotprober.h"

#include "ombra/show/initiallibrary.h"
#include "ombra/show/showstore.h"
#include "tarn/media/mediaenums.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace vantrel::ombra {

namespace {

/// What probing changed of one slot, on condition that it still has the same media.
Patch probePatch(const MediaAddress& address, const MediaSlot& before, const MediaSlot& after)
{
    const std::string base =
        "/collections/" + std::to_string(address.collection) + "/slots/" + std::to_string(address.slot);
    Patch patch;
    PatchOp op;
    op.op = PatchOpType::Test;
    op.path = Path(base + "/contentUrl");
    op.value = before.getUrl();
    patch.append(op);
    op.op = PatchOpType::Replace;
    after.toJson().forEachMember([&](std::string_view key, const Json& value) {
        if (!(before.toJson().get(key) == value)) {
            op.path = Path(base + "/" + std::string(key));
            op.value = value;
            patch.append(op);
        }
        return true;
    });
    return patch;
}

bool isUnknown(const MediaSlot& slot)
{
    return slot.getMediaType() == MediaType::Unknown;
}

} // namespace

SlotProber::SlotProber(boost::asio::io_context& io, std::filesystem::path mediaFolder, ShowStore& store)
    : m_io(io)
    , m_folder(std::move(mediaFolder))
    , m_store(store)
{
}

SlotProber::~SlotProber()
{
    m_stop = true;
    m_alive.reset();
    m_worker.join();
}

void SlotProber::probeUnknown()
{
    probe(isUnknown);
}

void SlotProber::probeAgain(const std::string& contentUrl)
{
    m_changed.insert(contentUrl);
    if (m_changed.size() > 1)
        return;
    boost::asio::post(m_io, [this, alive = std::weak_ptr(m_alive)] {
        if (alive.expired())
            return;
        probe([urls = std::exchange(m_changed, {})](const MediaSlot& slot) {
            return urls.contains(slot.getUrl());
        });
    });
}

void SlotProber::probeUnsaved()
{
    for (const std::string& url : std::exchange(m_unsaved, {}))
        probeAgain(url);
}

void SlotProber::probeEdited(const Patch& edit)
{
    const MediaLibrary& library = m_store.library();
    std::vector<Found> unknown;
    const auto note = [&](int collection, int number, const MediaSlot& slot, bool always) {
        if (always || isUnknown(slot))
            unknown.push_back({{collection, number}, slot});
    };
    const auto noteAll = [&](int index, const MediaCollection& collection) {
        for (const auto& [number, slot] : collection.getSlots())
            note(index, number, slot, false);
    };
    for (const PatchOp& op : edit) {
        const PathView path = op.path;
        if (op.op == PatchOpType::Remove || op.op == PatchOpType::Test)
            continue;
        if (path.empty() || (path.size() == 1 && path[0].text() == "collections")) {
            probeUnknown();
            return;
        }
        long long index = 0, number = 0;
        if (path.size() < 2 || path[0].text() != "collections" || !path[1].parseIndex(&index))
            continue;
        const MediaCollection* collection = library.findCollection(static_cast<int>(index));
        const bool isSlots = path.size() > 2 && path[2].text() == "slots";
        if (collection && (path.size() == 2 || (isSlots && path.size() == 3)))
            noteAll(static_cast<int>(index), *collection);
        if (!isSlots || path.size() < 4 || !path[3].parseIndex(&number))
            continue;
        const MediaSlot* slot = library.findSlot(static_cast<int>(index), static_cast<int>(number));
        const bool hasOtherMedia = path.size() == 5 && path[4].text() == "contentUrl";
        if (slot && (path.size() == 4 || hasOtherMedia))
            note(static_cast<int>(index), static_cast<int>(number), *slot, hasOtherMedia);
    }
    if (unknown.empty())
        return;
    boost::asio::post(m_worker, [this, alive = std::weak_ptr(m_alive), unknown = std::move(unknown)] {
        for (const Found& found : unknown)
            look(found, alive);
    });
}

void SlotProber::probe(Filter wanted)
{
    // The worker walks a library that stays as it is now; what was edited meanwhile is the patch's to find.
    boost::asio::post(m_worker, [this, alive = std::weak_ptr(m_alive), wanted = std::move(wanted),
                                 collections = m_store.library().getCollections()] {
        for (const auto& [index, collection] : collections) {
            for (const auto& [number, slot] : collection.getSlots()) {
                if (m_stop)
                    return;
                if (wanted(slot))
                    look({{index, number}, slot}, alive);
            }
        }
    });
}

/// On the worker's thread.
void SlotProber::look(const Found& found, const std::weak_ptr<int>& alive)
{
    MediaSlot probed = found.slot;
    if (m_stop || !probeSlot(m_folder, probed))
        return;
    boost::asio::post(m_io, [this, alive, found, probed] {
        if (!alive.expired())
            save(found, probed);
    });
}

void SlotProber::save(const Found& found, const MediaSlot& probed)
{
    m_store.patchLibrary(
        probePatch(found.address, found.slot, probed),
        [this, alive = std::weak_ptr(m_alive), url = found.slot.getUrl()](const EditResult& result) {
            if (!alive.expired() && result.status == EditResult::Status::NotSaved)
                m_unsaved.insert(url); // else it is saved, or an edit came first
        });
}

} // namespace vantrel::ombra
