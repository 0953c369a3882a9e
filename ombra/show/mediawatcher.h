#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>

#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

namespace vantrel::ombra {

/// Watches the media folder and all below it, and tells which files appeared, changed or went, by their
/// content URLs. A file counts when its writer closes it. Changes of a moment come together, each file once;
/// numbered files are also told once by the URL of their sequence. One thread, that of the io_context.
class MediaWatcher
{
public:
    enum class Event { Added, Changed, Removed };
    using Listener = std::function<void(Event, const std::string& contentUrl)>;

    MediaWatcher(boost::asio::io_context& io, std::filesystem::path mediaFolder, Listener listener);
    ~MediaWatcher();
    MediaWatcher(const MediaWatcher&) = delete;
    MediaWatcher& operator=(const MediaWatcher&) = delete;

    /// False, with the reason, when the system gives no watch.
    bool start(std::string* error);

private:
    void watchTree(const std::filesystem::path& relative, bool announce);
    bool watchFolder(const std::filesystem::path& relative);
    void read();
    void handle(const char* bytes, std::size_t size);
    void handle(int watch, std::uint32_t mask, const std::string& name);
    void forgetTree(const std::filesystem::path& relative);
    void note(Event event, const std::filesystem::path& relative);
    void noteUrl(Event event, const std::string& url);
    void flush();

    boost::asio::posix::stream_descriptor m_stream;
    boost::asio::steady_timer m_timer;
    std::filesystem::path m_folder;
    Listener m_listener;
    std::unordered_map<int, std::filesystem::path> m_watches; // relative folders
    std::set<std::filesystem::path> m_known;                  // relative files
    std::map<std::string, Event> m_pending;
    bool m_timerRuns = false;
    alignas(8) std::array<char, 64 * 1024> m_buffer{};
};

} // namespace vantrel::ombra
