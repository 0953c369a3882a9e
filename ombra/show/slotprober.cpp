#include "ombra/show/slotprober.h"

#include "ombra/show/initiallibrary.h"
#include "ombra/show/showstore.h"

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
    probe([](const MediaSlot& slot) { return slot.getMediaType() == MediaType::Unknown; });
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

void SlotProber::probe(Filter wanted)
{
    // The worker walks a library that stays as it is now; what was edited meanwhile is the patch's to find.
    boost::asio::post(m_worker, [this, alive = std::weak_ptr(m_alive), wanted = std::move(wanted),
                                 collections = m_store.library().getCollections()] {
        for (const auto& [index, collection] : collections) {
            for (const auto& [number, slot] : collection.getSlots()) {
                if (m_stop)
                    return;
                MediaSlot probed = slot;
                if (!wanted(slot) || !probeSlot(m_folder, probed))
                    continue;
                boost::asio::post(m_io, [this, alive, patch = probePatch({index, number}, slot, probed)] {
                    if (!alive.expired())
                        m_store.patchLibrary(patch,
                                             [](const EditResult&) {}); // an edit came first where it fails
                });
            }
        }
    });
}

} // namespace vantrel::ombra
