#include "common/filesystem/local/settlequeue.h"

#include "common/filesystem/local/copywork.h"
#include "common/filesystem/local/hiddenitems.h"
#include "common/filesystem/local/systemfile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace vantrel {

using namespace systemfile;

namespace {

constexpr int gatherMs = 20; // where they come faster than the disk takes them

/// Some disks tell only now that there was no room. One of no bytes is made here.
int closeFile(const SettleQueue::Item& item)
{
    errno = 0;
    if (!item.file->make())
        return errno ? errno : EIO;
    item.file->close();
    return item.file->error() == QFileDevice::NoError ? 0 : EIO;
}

int flush(const std::string& path)
{
    JobControl nobody(
        ConflictPolicy::Refuse, [] {}, [](const TransferConflict&) {});
    return CopyWork(nobody).flush(path);
}

/// Sends its bytes on their way to the disk, so that what is asked for next need not wait for one after the
/// other: the first one that is made sure of settles all. The whole disk is left alone, with the log of this
/// program on it.
int startFlush(const SettleQueue::Item& item)
{
    const Handle file(::open(item.hidden.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (file.isOpen())
        (void)::sync_file_range(file.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
    return 0;
}

int place(const SettleQueue::Item& item)
{
    if (item.file->isDropped())
        return ECANCELED;
    if (!item.isReplacing)
        return renameNoReplace(item.hidden, item.path);
    return std::rename(item.hidden.c_str(), item.path.c_str()) == 0 ? 0 : errno;
}

/// The items of one job, with the error of each.
class Batch
{
public:
    explicit Batch(const std::vector<SettleQueue::Item>& items)
        : m_items(items)
        , m_errors(items.size())
    {
    }

    std::vector<int> run(std::vector<std::string>& swept)
    {
        collectFolders();
        forEach(closeFile);
        for (const std::string& folder : m_folders) {
            if (std::ranges::find(swept, folder) == swept.end()) {
                sweepHidden(folder);
                swept.push_back(folder);
            }
        }
        forEach(startFlush);
        forEach([](const SettleQueue::Item& item) { return flush(item.hidden); });
        forEach(place);
        // The names, too.
        for (const std::string& folder : m_folders)
            flushFolder(folder);
        return m_errors;
    }

private:
    template <typename Work>
    void forEach(const Work& work)
    {
        for (std::size_t i = 0; i < m_items.size(); ++i)
            if (m_errors[i] == 0)
                m_errors[i] = work(m_items[i]);
    }

    void collectFolders()
    {
        for (const SettleQueue::Item& item : m_items)
            if (std::string folder = parentOf(item.path);
                std::ranges::find(m_folders, folder) == m_folders.end())
                m_folders.push_back(std::move(folder));
    }

    // Not every disk can do that, and the files are on it in any case.
    static void flushFolder(const std::string& folder)
    {
        const Handle item(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (item.isOpen())
            (void)::fsync(item.get());
    }

    const std::vector<SettleQueue::Item>& m_items;
    std::vector<int> m_errors;
    std::vector<std::string> m_folders;
};

} // namespace

SettleQueue::SettleQueue(StartJob startJob, QObject* parent)
    : QObject(parent)
    , m_startJob(std::move(startJob))
    , m_swept(std::make_shared<std::vector<std::string>>())
{
    m_gathering.setSingleShot(true);
    m_gathering.setInterval(gatherMs);
    connect(&m_gathering, &QTimer::timeout, this, &SettleQueue::start);
}

void SettleQueue::add(Item item, Done done)
{
    m_waiting.push_back({std::move(item), std::move(done)});
    if (!m_isRunning && !m_gathering.isActive())
        start();
}

void SettleQueue::start()
{
    m_isRunning = true;
    auto batch = std::exchange(m_waiting, {});
    auto items = std::make_shared<std::vector<Item>>();
    for (const Waiting& waiting : batch)
        items->push_back(waiting.item);
    auto errors = std::make_shared<std::vector<int>>();
    m_startJob(
        [items, errors, swept = m_swept](JobControl&) {
            *errors = Batch(*items).run(*swept);
            return JobResult{JobResult::Done, {}, {}};
        },
        [this, batch = std::move(batch), errors](const JobResult&) { onFinished(batch, *errors); });
}

void SettleQueue::onFinished(const std::vector<Waiting>& batch, const std::vector<int>& errors)
{
    m_isRunning = false;
    if (m_waiting.empty())
        m_swept->clear();
    else
        m_gathering.start();
    for (std::size_t i = 0; i < batch.size() && i < errors.size(); ++i)
        batch[i].done(errors[i]);
}

} // namespace vantrel
