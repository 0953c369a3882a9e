#pragma once

#include "tarn/media/medialibrary.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/thread_pool.hpp>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>

namespace vantrel::ombra {

class ShowStore;

/// Looks into the media of slots and edits what the slots say of it: type, length, whether it plays. Files
/// are opened on one worker thread, all else happens on the io_context's.
class SlotProber
{
public:
    SlotProber(boost::asio::io_context& io, std::filesystem::path mediaFolder, ShowStore& store);
    /// Waits for the file at hand.
    ~SlotProber();
    SlotProber(const SlotProber&) = delete;
    SlotProber& operator=(const SlotProber&) = delete;

    /// The slots whose media nobody has looked at yet.
    void probeUnknown();
    /// The slots with this media, since its file is another now. Calls of one moment make one walk.
    void probeAgain(const std::string& contentUrl);
    /// The slots of which something was found out while the disk took no edits.
    void probeUnsaved();

    /// The slots that a saved edit brought in unknown, or gave other media.
    void probeEdited(const Patch& edit);

private:
    struct Found
    {
        MediaAddress address;
        MediaSlot slot;
    };
    using Filter = std::function<bool(const MediaSlot&)>;
    void probe(Filter wanted);
    void look(const Found& found, const std::weak_ptr<int>& alive);
    void save(const Found& found, const MediaSlot& probed);

    boost::asio::io_context& m_io;
    std::filesystem::path m_folder;
    ShowStore& m_store;
    std::set<std::string> m_changed, m_unsaved; // content URLs
    std::atomic<bool> m_stop{false};
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
    boost::asio::thread_pool m_worker{1};
};

} // namespace vantrel::ombra
