#pragma once

#include "ombra/rest/http.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/thread_pool.hpp>

#include <cstddef>
#include <deque>
#include <filesystem>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace vantrel::ombra {

/// Answers for metadata and thumbnails of media files. Files are looked for and opened on threads of their
/// own, in the order of the requests; requests for the same file wait for one piece of work, and answers are
/// kept until the file changes, the newest 64 MiB of them. What nobody waits for any more when its turn comes
/// is not made.
class MediaData
{
public:
    /// Whether somebody still waits for an answer; an empty one means that it is not known.
    using Wanted = std::function<bool()>;

    /// keptBytes: of all answers that are kept.
    MediaData(boost::asio::io_context& io, std::filesystem::path mediaFolder,
              std::size_t keptBytes = 64u * 1024 * 1024);
    std::size_t keptAtMost() const { return m_keptBytes; }
    /// Waits for the work at hand; answers that are still due are not given.
    ~MediaData();
    MediaData(const MediaData&) = delete;
    MediaData& operator=(const MediaData&) = delete;

    /// JSON as MediaMetadata reads it. A file that is missing or leads out of the folder is not playable,
    /// with that as its reason.
    void metadata(const std::string& contentUrl, HttpAnswer answer, Wanted wanted = {});
    /// A JPEG, nothing when there is no picture in the file; 404 when there is no such file.
    void thumbnail(const std::string& contentUrl, HttpAnswer answer, Wanted wanted = {});

private:
    using Work = HttpReply (*)(const std::filesystem::path& file);
    struct Waiter
    {
        HttpAnswer answer;
        Wanted wanted;
    };
    struct Job
    {
        std::filesystem::path file;
        Work work = nullptr;
        std::vector<Waiter> waiters;
    };

    /// What the disk says of a URL.
    struct Found
    {
        bool isFolderThere = false;
        std::optional<std::filesystem::path> file; // nothing where it leads out of the folder
        std::optional<std::string> stamp;          // nothing where the file is not there
    };
    void find(const std::string& contentUrl, const HttpAnswer& answer,
              std::function<void(const Found&)> then);
    void serve(const char* kind, const Found& found, Work work, Waiter waiter);
    void startNext();
    void finish(const std::string& key, const HttpReply& reply);
    const HttpReply* cached(const std::string& key);

    boost::asio::io_context& m_io;
    std::filesystem::path m_folder;
    std::map<std::string, Job> m_jobs; // by key; the one at hand and those that wait
    std::deque<std::string> m_queue;   // keys of those that wait
    bool m_busy = false;
    std::list<std::pair<std::string, HttpReply>> m_recent; // newest first
    std::unordered_map<std::string, std::list<std::pair<std::string, HttpReply>>::iterator> m_cache;
    std::size_t m_keptBytes;
    std::size_t m_cacheBytes = 0;
    std::size_t m_finding = 0; // questions to the disk
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
    boost::asio::thread_pool m_asker{1}; // asks the disk, which may hang
    boost::asio::thread_pool m_worker{1};
};

} // namespace vantrel::ombra
