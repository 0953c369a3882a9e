#pragma once

#include "ombra/base/asidethread.h"
#include "ombra/show/slotfacts.h"
#include "tarn/media/medialibrary.h"

#include <boost/asio/io_context.hpp>

#include <atomic>
#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace vantrel::ombra {

class ShowStore;

/// Looks into the media of slots and edits what the slots say of it: type, length, whether it plays. A slot
/// whose file is missing cannot be played; a file that comes back as it was is not opened again. Files are
/// opened on one worker thread, all else happens on the io_context's.
class SlotProber
{
public:
    SlotProber(boost::asio::io_context& io, std::filesystem::path mediaFolder, ShowStore& store);
    /// Waits for the file at hand.
    ~SlotProber();
    SlotProber(const SlotProber&) = delete;
    SlotProber& operator=(const SlotProber&) = delete;

    /// All slots: opens what nobody has looked at yet and what was changed, and notices what is missing.
    void probeAll();
    /// The slots with this media, which came, went or, where changed says so, is to be opened again. Calls of
    /// one moment make one walk.
    void probeAgain(const std::string& contentUrl, bool changed);
    /// The slots of which something was found out while the disk took no edits.
    void probeUnsaved();

    /// The slots that a saved edit brought in, or gave other media.
    void probeEdited(const std::shared_ptr<const Patch>& edit);

private:
    struct Found
    {
        MediaAddress address;
        MediaSlot slot;
        bool always = false; // open it, also where its type is known
    };
    struct Finding
    {
        Found found;
        std::optional<SlotFacts> facts; // none: it is missing
    };
    struct Remembered
    {
        std::string stamp;
        SlotFacts facts;
    };
    static constexpr std::size_t findingsAtOnce = 100; // in one edit
    static constexpr std::size_t rememberedAtMost = 200'000;

    void walk(std::function<bool(const std::string& contentUrl)> wanted);
    void lookBelow(PathView path, const MediaCollectionMap& collections);
    void look(const Found& found);
    void remember(const std::string& contentUrl, const std::string& stamp, const SlotFacts& facts);
    void handIn(const std::weak_ptr<int>& alive);
    void saveSome();
    void save(const std::vector<Finding>& findings);

    boost::asio::io_context& m_io;
    std::filesystem::path m_folder;
    ShowStore& m_store;
    std::map<std::string, bool> m_again; // content URLs, and whether their files are others now
    std::set<std::string> m_unsaved;     // likewise
    std::deque<Finding> m_toSave;        // the next ones first
    std::atomic<bool> m_stop{false};
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);

    // Of the worker.
    std::unordered_map<std::string, Remembered> m_remembered; // by content URL
    std::vector<Finding> m_findings;
    std::chrono::steady_clock::time_point m_handedIn;
    AsideThread m_worker;
};

} // namespace vantrel::ombra
