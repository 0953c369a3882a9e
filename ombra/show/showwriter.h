#pragma once

#include "ombra/show/showdisk.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace vantrel::ombra {

/// Writes edits to the disk on a thread of its own, all that wait by one fsync. When one is lost, those made
/// on top of it fail too: all of its epoch and of earlier ones. The owner goes back, and numbers its next
/// edits by a new epoch.
class ShowWriter
{
public:
    struct Job
    {
        std::uint64_t epoch = 1;
        std::string line;                                            // of the journal
        Json library, settings;                                      // after the edit
        std::function<void(bool ok, const std::string& error)> done; // on the writer's thread
    };

    /// The library and the settings are those that were loaded.
    ShowWriter(ShowDisk& disk, Json library, Json settings);
    /// Writes what was submitted and joins the thread.
    ~ShowWriter();
    ShowWriter(const ShowWriter&) = delete;
    ShowWriter& operator=(const ShowWriter&) = delete;

    void submit(Job job);

private:
    void run();
    void write(std::vector<Job>& jobs);
    bool save(std::vector<Job>& jobs, std::string* error);

    ShowDisk& m_disk;
    Json m_library, m_settings; // as they are saved; writer's thread only
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<Job> m_queue;
    std::uint64_t m_failedEpoch = 0; // this and the next: writer's thread only
    std::string m_failure;           // why it failed
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace vantrel::ombra
