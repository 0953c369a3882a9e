#include "ombra/show/showwriter.h"

#include "tarn/log/log.h"

#include <utility>

namespace vantrel::ombra {

ShowWriter::ShowWriter(ShowDisk& disk, Json library, Json settings)
    : m_disk(disk)
    , m_library(std::move(library))
    , m_settings(std::move(settings))
    , m_thread([this] { run(); })
{
}

ShowWriter::~ShowWriter()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void ShowWriter::submit(Job job)
{
    {
        const std::lock_guard lock(m_mutex);
        m_queue.push_back(std::move(job));
    }
    m_wake.notify_one();
}

void ShowWriter::run()
{
    for (;;) {
        std::vector<Job> jobs;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_stop || !m_queue.empty(); });
            if (m_queue.empty())
                return;
            jobs.swap(m_queue);
        }
        std::erase_if(jobs, [this](const Job& job) {
            if (job.epoch > m_failedEpoch)
                return false;
            job.done(false, m_failure); // of the edit that it was made on
            return true;
        });
        if (!jobs.empty())
            write(jobs);
    }
}

void ShowWriter::write(std::vector<Job>& jobs)
{
    std::string error;
    const bool ok = save(jobs, &error);
    if (!ok) {
        m_failedEpoch = jobs.back().epoch;
        m_failure = error;
    }
    for (const Job& job : jobs)
        job.done(ok, error);
    if (ok && m_disk.wantsSnapshot() && !m_disk.writeSnapshot(m_library, m_settings, &error))
        Log::write(LogLevel::Error, "vantrel.show", error);
}

bool ShowWriter::save(std::vector<Job>& jobs, std::string* error)
{
    // A disk that took no journal, or not its end, may by now. The edits go into the new journal, as always:
    // a show and its journal lead to the next show, so that an older generation can stand in for a damaged
    // one.
    if (!m_disk.hasJournal() && !m_disk.writeSnapshot(m_library, m_settings, error))
        return false;
    std::vector<std::string> lines;
    lines.reserve(jobs.size());
    for (Job& job : jobs)
        lines.push_back(std::move(job.line));
    if (!m_disk.append(lines, error))
        return false;
    m_library = std::move(jobs.back().library);
    m_settings = std::move(jobs.back().settings);
    return true;
}

} // namespace vantrel::ombra
