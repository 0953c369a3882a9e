#include "ombra/decode/picturefeed.h"

#include "ombra/base/memory.h"
#include "tarn/log/log.h"

#include <algorithm>
#include <chrono>
#include <system_error>

namespace vantrel::ombra {

namespace {

/// Seconds that the clock may be ahead of what is decoded before pictures are passed over.
constexpr double patience = 0.1;
/// Pictures that are decoded ahead; of large ones as many as there is room for, in bytes, but a few.
constexpr std::size_t ahead = 6, aheadAtLeast = 2;
constexpr std::size_t roomAhead = 160 << 20;

} // namespace

PictureFeed::PictureFeed(MediaSource source, double begin, std::string name, std::function<void()> arrived,
                         PictureOpener open)
    : m_source(std::move(source))
    , m_name(std::move(name))
    , m_arrived(std::move(arrived))
    , m_open(std::move(open))
    , m_seekTo(begin)
{
}

PictureFeed::~PictureFeed()
{
    stop();
    if (m_thread.joinable())
        m_thread.join();
}

void PictureFeed::start()
{
    m_idle = false;
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error& error) { // a machine out of threads or memory
        m_idle = true;
        std::unique_lock lock(m_mutex);
        fail(lock, error.what());
    }
}

void PictureFeed::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_work.notify_all();
}

void PictureFeed::seek(double time)
{
    {
        const std::lock_guard lock(m_mutex);
        if (!m_seekTo && reuse(time))
            m_first = true;
        else
            seekAfresh(time);
    }
    m_work.notify_all();
    m_arrived(); // harmless where nothing arrived, and needed where it was there already
}

void PictureFeed::seekAfresh(double time)
{
    m_queue.clear();
    m_taken.reset();
    m_goOnAt.reset();
    m_beginGrows = false;
    ++m_jumps;
    m_first = true;
    m_clock = 0;
    m_status.ended = false;
    m_status.failed = m_status.failed && !m_status.opened; // another place may be whole
    m_seekTo = time;
}

bool PictureFeed::holds(double time) const
{
    const std::lock_guard lock(m_mutex);
    return !m_seekTo && !known(time).empty();
}

std::deque<Picture> PictureFeed::known(double time) const
{
    std::deque<Picture> known = m_queue;
    if (m_taken)
        known.push_front(*m_taken);
    return from(std::move(known), time, m_status.ended);
}

std::deque<Picture> PictureFeed::from(std::deque<Picture> pictures, double time, bool isToTheEnd)
{
    const auto later = std::ranges::find_if(
        pictures, [&](const Picture& picture) { return picture.time > time + PictureReader::tolerance; });
    if (later == pictures.begin() || (later == pictures.end() && !isToTheEnd))
        return {};
    const auto shown = std::prev(later);
    if (later != pictures.end() && time >= shown->time + shown->duration + PictureReader::tolerance)
        return {}; // passed over
    pictures.erase(pictures.begin(), shown);
    return pictures;
}

/// Whether the picture of the time is at hand, and then the queue begins with it.
bool PictureFeed::reuse(double time)
{
    if (std::deque<Picture> pictures = known(time); !pictures.empty()) {
        m_queue = std::move(pictures);
    } else if (pictures = from(m_begin, time, m_beginIsWhole); !pictures.empty()) {
        m_queue = std::move(pictures);
        m_status.endTime = m_queue.back().time + m_queue.back().duration;
        m_status.ended = m_beginIsWhole;
        m_status.failed = false; // what is kept can be shown, and the rest may be whole by now
        m_goOnAt = m_beginIsWhole ? std::nullopt : std::optional(m_status.endTime);
        m_beginGrows = false;
        ++m_jumps;
    } else {
        return false;
    }
    m_clock = 0;
    m_taken.reset();
    return true;
}

/// What comes first, and as many after it as are decoded ahead.
void PictureFeed::noteBegin(const Picture& picture, bool sought)
{
    if (sought && m_begin.empty())
        m_beginGrows = true;
    const bool isNext = m_begin.empty() || picture.time <= m_begin.back().time + m_begin.back().duration +
                                                               PictureReader::tolerance;
    m_beginGrows = m_beginGrows && isNext && !isFull(m_begin);
    if (m_beginGrows)
        m_begin.push_back(picture);
}

std::optional<Picture> PictureFeed::take(double time)
{
    std::optional<Picture> picture;
    {
        const std::lock_guard lock(m_mutex);
        const double limit = time + PictureReader::tolerance;
        if (!m_first)
            m_clock = time;
        if (m_queue.empty() || (!m_first && m_queue.front().time > limit))
            return std::nullopt;
        m_first = false;
        while (m_queue.size() > 1 && m_queue[1].time <= limit)
            m_queue.pop_front();
        picture = m_queue.front();
        m_taken = picture;
        m_queue.pop_front();
    }
    m_work.notify_all();
    return picture;
}

PictureFeed::Status PictureFeed::status() const
{
    const std::lock_guard lock(m_mutex);
    return m_status;
}

bool PictureFeed::isBehind() const
{
    const std::lock_guard lock(m_mutex);
    return m_queue.empty() && !m_status.ended && !m_status.failed;
}

void PictureFeed::run()
{
    decode();
    m_idle = true;
}

void PictureFeed::decode()
{
    std::unique_lock lock(m_mutex);
    std::unique_ptr<PictureReader> reader = open(lock);
    while (reader && !m_stop) {
        if (!m_seekTo && (isFull(m_queue) || m_status.ended || m_status.failed)) {
            m_work.wait(lock);
            continue;
        }
        const std::optional<double> target = std::exchange(m_seekTo, std::nullopt);
        const unsigned jumps = m_jumps;
        Picture picture;
        const bool found = read(lock, *reader, target, picture);
        if (jumps == m_jumps && !m_stop)
            accept(lock, found, std::move(picture), target.has_value());
    }
    lock.unlock(); // a disk may take its time to close a file
    reader.reset();
    giveBackMemory(); // what other media of other sizes would not fit into
}

/// False where there is none after what was kept.
bool PictureFeed::goOn(PictureReader& reader, double time, double clock, Picture& out)
{
    return reader.seek(std::max(time, clock), out) && out.time > time - PictureReader::tolerance;
}

bool PictureFeed::read(std::unique_lock<std::mutex>& lock, PictureReader& reader,
                       std::optional<double> target, Picture& out)
{
    const double clock = m_clock;
    const bool behind = clock > m_status.endTime + patience;
    const std::optional<double> goOnAt = std::exchange(m_goOnAt, std::nullopt);
    lock.unlock();
    const auto begin = std::chrono::steady_clock::now();
    const bool found = target   ? reader.seek(*target, out)
                       : goOnAt ? goOn(reader, *goOnAt, behind ? clock : 0, out)
                       : behind ? reader.catchUp(clock, out)
                                : reader.next(out);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    lock.lock();
    if (found && !target && !goOnAt)
        noteLoad(taken.count(), out.time + out.duration - m_status.endTime);
    return found;
}

void PictureFeed::noteLoad(double seconds, double ofPictures)
{
    if (ofPictures > 0)
        m_status.load += (seconds / ofPictures - m_status.load) * std::min(1.0, ofPictures);
}

bool PictureFeed::isFull(const std::deque<Picture>& pictures)
{
    if (pictures.size() < aheadAtLeast)
        return false;
    std::size_t bytes = 0;
    for (const Picture& picture : pictures)
        bytes += picture.image->bytes();
    return pictures.size() >= ahead || bytes + bytes / pictures.size() > roomAhead;
}

std::unique_ptr<PictureReader> PictureFeed::open(std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    std::string error;
    std::unique_ptr<PictureReader> reader = m_open(m_source, m_stop, &error);
    lock.lock();
    if (!reader) {
        fail(lock, error);
        return nullptr;
    }
    m_status.opened = true;
    m_status.type = reader->type();
    m_status.fps = reader->fps();
    m_status.duration = reader->duration();
    return reader;
}

void PictureFeed::accept(std::unique_lock<std::mutex>& lock, bool found, Picture picture, bool sought)
{
    if (!found && sought) {
        fail(lock, "no picture of it can be decoded");
        return;
    }
    if (!found) {
        m_status.ended = true;
        m_beginIsWhole = m_beginIsWhole || std::exchange(m_beginGrows, false);
        return;
    }
    noteBegin(picture, sought);
    m_status.endTime = picture.time + picture.duration;
    m_queue.push_back(std::move(picture));
    if (sought) {
        lock.unlock();
        m_arrived();
        lock.lock();
    }
}

void PictureFeed::fail(std::unique_lock<std::mutex>& lock, const std::string& error)
{
    m_status.failed = true;
    if (m_stop)
        return;
    lock.unlock();
    Log::write_fmt(LogLevel::Warning, {}, "vantrel.decode", "Cannot play '%s': %s", m_name.c_str(),
                   error.c_str());
    m_arrived();
    lock.lock();
}

} // namespace vantrel::ombra
