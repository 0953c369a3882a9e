#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>

#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vantrel::ombra {

/// Watches the media folder and all below it, and tells which files appeared, changed or went, by their
/// content URLs. A file counts when its writer closes it. Changes of a moment come together, each file once;
/// numbered files are also told once by the URL of their sequence. The folder itself may go and come back, by
/// its disk or with its name: it is looked for each second, and what it holds then is told as added. One
/// thread, that of the io_context; a thread of its own asks for the folder and lists it, so that a dead disk
/// holds nobody up.
class MediaWatcher
{
public:
    enum class Event { Added, Changed, Removed };
    enum class Folder { There, Empty, Gone };
    using FolderListener = std::function<void(Folder)>;
    using Listener = std::function<void(Event, const std::string& contentUrl)>;

    MediaWatcher(boost::asio::io_context& io, std::filesystem::path mediaFolder, Listener listener);
    ~MediaWatcher();
    MediaWatcher(const MediaWatcher&) = delete;
    MediaWatcher& operator=(const MediaWatcher&) = delete;

    /// Lists what is there, which is not told. False, with the reason, when the system gives no watch; a
    /// folder that is not there is waited for.
    bool start(std::string* error);
    /// Told how the folder is, now and whenever that changes.
    void setFolderListener(FolderListener listener);

private:
    /// What a look at the disk found; paths are relative.
    struct Tree
    {
        std::vector<std::pair<int, std::filesystem::path>>
            watches; // none: there is no such folder, or no watch for it
        std::vector<std::filesystem::path> files;
        std::string trouble;
    };
    static Tree watchTree(int inotify, const std::filesystem::path& root,
                          const std::filesystem::path& relative);

    bool open(std::string* error);
    void scheduleCheck();
    void follow(const std::string& identity);
    void tellFolder();
    void look(const std::filesystem::path& relative, std::function<void()> then = {});
    void lookAtNew(std::vector<std::filesystem::path> files);
    void ask(std::function<std::function<void()>()> work);
    bool take(const Tree& tree, bool announce);
    void read();
    void handle(const char* bytes, std::size_t size);
    void handle(int watch, std::uint32_t mask, const std::string& name);
    void forgetTree(const std::filesystem::path& relative);
    void note(Event event, const std::filesystem::path& relative);
    void scheduleFlush();
    void noteUrl(Event event, const std::string& url);
    void flush();

    boost::asio::posix::stream_descriptor m_stream;
    boost::asio::steady_timer m_timer;
    std::filesystem::path m_folder;
    Listener m_listener;
    std::unordered_map<int, std::filesystem::path> m_watches; // relative folders
    std::set<std::filesystem::path> m_known;                  // relative files
    std::map<std::string, Event> m_pending;
    bool m_reads = false;
    bool m_isListed = true; // not while another folder is looked at for the first time
    bool m_timerRuns = false;
    boost::asio::steady_timer m_check;
    std::string m_identity;                   // of the folder and the disks in it; empty: to be watched anew
    int m_round = 0;                          // one more with each other folder
    int m_looks = 0;                          // at the disk, under way
    std::vector<std::filesystem::path> m_new; // names that came, of files that may be whole already
    std::string m_trouble;                    // said in the log
    FolderListener m_folderListener;
    std::optional<Folder> m_told;
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
    alignas(8) std::array<char, 64 * 1024> m_buffer{};
    boost::asio::thread_pool m_asker{1};
};

} // namespace vantrel::ombra
