#include "ombra/show/slotprober.h"

#include "ombra/show/showstore.h"
#include "tarn/media/mediaenums.h"

#include <boost/asio/post.hpp>

#include <algorithm>
#include <utility>

namespace vantrel::ombra {

namespace {

/// Adds what probing changed of one slot.
void appendFinding(const MediaAddress& address, const MediaSlot& before, const MediaSlot& after, Patch& patch)
{
    const std::string base =
        "/collections/" + std::to_string(address.collection) + "/slots/" + std::to_string(address.slot) + "/";
    after.toJson().forEachMember([&](std::string_view key, const Json& value) {
        if (!(before.toJson().get(key) == value))
            patch.append({PatchOpType::Replace, Path(base + std::string(key)), {}, value});
        return true;
    });
}

constexpr std::chrono::milliseconds handInTime{200}; // what is found shows at least so often

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

void SlotProber::probeAll()
{
    walk([](const std::string&) { return true; });
}

void SlotProber::probeAgain(const std::string& contentUrl, bool changed)
{
    m_again[contentUrl] |= changed;
    if (m_again.size() > 1)
        return;
    boost::asio::post(m_io, [this, alive = std::weak_ptr(m_alive)] {
        if (alive.expired())
            return;
        auto urls = std::exchange(m_again, {});
        boost::asio::post(m_worker, [this, urls] {
            for (const auto& [url, other] : urls) {
                if (other)
                    m_remembered[url].stamp.clear();
            }
        });
        walk([urls = std::move(urls)](const std::string& url) { return urls.contains(url); });
    });
}

void SlotProber::probeUnsaved()
{
    for (const std::string& url : std::exchange(m_unsaved, {}))
        probeAgain(url, false);
}

void SlotProber::probeEdited(const std::shared_ptr<const Patch>& edit)
{
    // A member of a slot that does not say where its medium is brings nothing to look at: what is found here
    // comes back as such edits, by the thousand.
    const auto brings = [](const PatchOp& op) {
        const bool isOfSlot = op.path.size() > 4 && op.path[2].text() == "slots";
        return op.op != PatchOpType::Remove && op.op != PatchOpType::Test &&
               (!isOfSlot || (op.path.size() == 5 && op.path[4].text() == "contentUrl"));
    };
    const bool all = std::ranges::any_of(*edit, [&](const PatchOp& op) {
        return brings(op) && (op.path.empty() || (op.path.size() == 1 && op.path[0].text() == "collections"));
    });
    if (all)
        return probeAll();
    if (std::ranges::none_of(*edit, brings))
        return;
    // The worker finds the slots: an edit may bring very many.
    boost::asio::post(m_worker, [this, alive = std::weak_ptr(m_alive), edit, brings,
                                 collections = m_store.library().getCollections()] {
        for (const PatchOp& op : *edit) {
            if (brings(op) && op.path.size() > 1)
                lookBelow(op.path, collections);
        }
        handIn(alive);
    });
}

/// On the worker's thread: the slots that came with what an edit put there.
void SlotProber::lookBelow(PathView path, const MediaCollectionMap& collections)
{
    long long index = 0, number = 0;
    if (path[0].text() != "collections" || !path[1].parseIndex(&index))
        return;
    const MediaCollection* collection = collections.get(static_cast<int>(index));
    const bool isSlots = path.size() > 2 && path[2].text() == "slots";
    if (collection && (path.size() == 2 || (isSlots && path.size() == 3))) {
        for (const auto& [slotNumber, slot] : collection->getSlots())
            look({{static_cast<int>(index), slotNumber}, slot, false});
    }
    if (!collection || !isSlots || path.size() < 4 || !path[3].parseIndex(&number))
        return;
    const MediaSlot* slot = collection->getSlots().get(static_cast<int>(number));
    const bool hasOtherMedia = path.size() == 5 && path[4].text() == "contentUrl";
    if (slot && (path.size() == 4 || hasOtherMedia))
        look({{static_cast<int>(index), static_cast<int>(number)}, *slot, hasOtherMedia});
}

void SlotProber::walk(std::function<bool(const std::string&)> wanted)
{
    // The worker walks a library that stays as it is now; what is edited meanwhile is looked at by itself.
    boost::asio::post(m_worker, [this, alive = std::weak_ptr(m_alive), wanted = std::move(wanted),
                                 collections = m_store.library().getCollections()] {
        for (const auto& [index, collection] : collections) {
            for (const auto& [number, slot] : collection.getSlots()) {
                if (m_stop)
                    return;
                if (!wanted(slot.getUrl()))
                    continue;
                look({{index, number}, slot});
                const auto now = std::chrono::steady_clock::now();
                if (m_findings.size() >= findingsAtOnce || now - m_handedIn > handInTime)
                    handIn(alive);
            }
        }
        handIn(alive);
    });
}

/// On the worker's thread.
void SlotProber::look(const Found& found)
{
    const std::string url = found.slot.getUrl();
    if (m_stop || url.empty())
        return; // no media: nothing is missing
    const auto stamp = mediaStamp(m_folder, url);
    const auto known = m_remembered.find(url);
    std::optional<SlotFacts> facts;
    if (known != m_remembered.end() && stamp == known->second.stamp) {
        facts = known->second.facts;
    } else if (stamp) {
        // What plays is taken at its word, unless its file was another when somebody last looked.
        const bool trusted = known == m_remembered.end() && !found.always && found.slot.getIsPlayable() &&
                             found.slot.getMediaType() != MediaType::Unknown;
        facts = trusted ? factsOf(found.slot) : probeFacts(m_folder, url);
        if (facts)
            remember(url, *stamp, *facts);
    }
    MediaSlot probed = found.slot;
    if (applyFacts(facts, probed))
        m_findings.push_back({found, facts});
}

void SlotProber::remember(const std::string& contentUrl, const std::string& stamp, const SlotFacts& facts)
{
    if (m_remembered.size() >= rememberedAtMost)
        m_remembered.clear();
    m_remembered[contentUrl] = {stamp, facts};
}

/// On the worker's thread.
void SlotProber::handIn(const std::weak_ptr<int>& alive)
{
    m_handedIn = std::chrono::steady_clock::now();
    if (m_findings.empty())
        return;
    boost::asio::post(m_io, [this, alive, findings = std::exchange(m_findings, {})] {
        if (alive.expired())
            return;
        const bool isSaving = !m_toSave.empty();
        m_toSave.insert(m_toSave.end(), findings.begin(), findings.end());
        if (!isSaving)
            saveSome();
    });
}

/// Between two edits all else has its turn that waits for this thread, the pictures among it.
void SlotProber::saveSome()
{
    const auto end =
        m_toSave.begin() + static_cast<std::ptrdiff_t>(std::min(m_toSave.size(), findingsAtOnce));
    save({m_toSave.begin(), end});
    m_toSave.erase(m_toSave.begin(), end);
    if (m_toSave.empty())
        return;
    boost::asio::post(m_io, [this, alive = std::weak_ptr(m_alive)] {
        if (!alive.expired())
            saveSome();
    });
}

void SlotProber::save(const std::vector<Finding>& findings)
{
    Patch patch;
    std::vector<std::string> urls;
    for (const auto& [found, facts] : findings) {
        const MediaSlot* now = m_store.latestLibrary().findSlot(found.address.collection, found.address.slot);
        if (!now || now->getUrl() != found.slot.getUrl())
            continue; // an edit came first
        MediaSlot probed = *now;
        applyFacts(facts, probed);
        appendFinding(found.address, *now, probed, patch);
        urls.push_back(found.slot.getUrl());
    }
    if (patch.empty())
        return;
    m_store.patchLibrary(patch, [this, alive = std::weak_ptr(m_alive), urls](const EditResult& result) {
        if (!alive.expired() && result.status == EditResult::Status::NotSaved)
            m_unsaved.insert(urls.begin(), urls.end());
    });
}

} // namespace vantrel::ombra
