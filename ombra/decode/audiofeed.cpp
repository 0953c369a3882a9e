#include "ombra/decode/audiofeed.h"

#include "tarn/log/log.h"

#include <algorithm>
#include <system_error>

namespace vantrel::ombra {

namespace {

// Samples. The thread fills up to one mark and sleeps until the other, so that it wakes twice a second and
// not with every packet.
constexpr std::int64_t fillTo = Sound::sampleRate;
constexpr std::int64_t fillBelow = Sound::sampleRate / 2;
constexpr std::int64_t readyWith = Sound::sampleRate / 12;
constexpr std::int64_t kept =
    Sound::sampleRate / 10; // behind the clock: it goes back to a picture's start on a pause
constexpr std::int64_t takenAtMost = 2 * Sound::sampleRate;

} // namespace

AudioFeed::AudioFeed(MediaSource source, double begin, std::string name, std::function<void()> arrived)
    : m_source(std::move(source))
    , m_name(std::move(name))
    , m_arrived(std::move(arrived))
    , m_seekTo(begin)
    , m_playedTo(Sound::sampleAt(begin))
{
    if (m_source.sequence)
        m_channels = 0;
}

AudioFeed::~AudioFeed()
{
    stop();
    if (m_thread.joinable())
        m_thread.join();
}

void AudioFeed::start()
{
    if (m_source.sequence)
        return;
    m_idle = false;
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error& error) { // a machine out of threads or memory
        m_idle = true;
        playWithout(error.what());
    }
}

void AudioFeed::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_work.notify_all();
}

void AudioFeed::seek(double time)
{
    {
        const std::lock_guard lock(m_mutex);
        const std::int64_t sample = Sound::sampleAt(time);
        const bool known = isKnown(sample);
        m_playedTo = sample;
        if (!known) {
            m_seekTo = time;
            m_buffer.clear();
            m_ended = false;
        }
        m_filling = true;
    }
    m_work.notify_all();
}

bool AudioFeed::holds(double time) const
{
    const std::lock_guard lock(m_mutex);
    return m_channels == 0 || isKnown(Sound::sampleAt(time));
}

bool AudioFeed::isKnown(std::int64_t sample) const
{
    return !m_seekTo && sample >= m_bufferStart && sample + readyWith <= bufferEnd();
}

bool AudioFeed::ready() const
{
    const std::lock_guard lock(m_mutex);
    return isReady();
}

bool AudioFeed::isReady() const
{
    return m_channels == 0 || (m_channels && !m_seekTo && (m_ended || bufferEnd() >= m_playedTo + readyWith));
}

std::optional<int> AudioFeed::channels() const
{
    const std::lock_guard lock(m_mutex);
    return m_channels;
}

double AudioFeed::end() const
{
    const std::lock_guard lock(m_mutex);
    if (m_channels.value_or(0) == 0)
        return 0;
    if (m_seekTo || m_ended)
        return m_toldEnd;
    return std::max(m_toldEnd, static_cast<double>(bufferEnd()) / Sound::sampleRate);
}

bool AudioFeed::ended() const
{
    const std::lock_guard lock(m_mutex);
    return m_channels == 0 || (m_ended && !m_seekTo);
}

std::int64_t AudioFeed::bufferEnd() const
{
    const int channels = m_channels.value_or(0);
    return m_bufferStart +
           (channels > 0 ? static_cast<std::int64_t>(m_buffer.size()) / channels : std::int64_t{0});
}

bool AudioFeed::wantsMore() const
{
    return m_seekTo || (m_filling && !m_ended);
}

void AudioFeed::take(double from, double to, Sound& out)
{
    bool wake = false;
    {
        const std::lock_guard lock(m_mutex);
        out.channels = m_channels.value_or(0);
        const std::int64_t first = Sound::sampleAt(from);
        const std::int64_t last = std::min(Sound::sampleAt(to), first + takenAtMost);
        if (out.channels < 1 || last <= first)
            return;
        const std::size_t channels = static_cast<std::size_t>(out.channels);
        const std::size_t at = out.samples.size();
        out.samples.resize(at + static_cast<std::size_t>(last - first) * channels, 0.0f);
        const std::int64_t begin = m_seekTo ? last : std::max(first, m_bufferStart);
        const std::int64_t end = std::min(last, bufferEnd());
        if (begin < end)
            std::copy_n(m_buffer.data() + static_cast<std::size_t>(begin - m_bufferStart) * channels,
                        static_cast<std::size_t>(end - begin) * channels,
                        out.samples.data() + at + static_cast<std::size_t>(begin - first) * channels);
        noteSeams(begin - first, std::max(begin, end) - first, last - first, out);
        if (m_seekTo)
            return;
        m_playedTo = last;
        const std::int64_t done = std::min(m_playedTo - kept, bufferEnd()) - m_bufferStart;
        if (done > kept) { // seldom: what is left moves
            m_buffer.erase(m_buffer.begin(), m_buffer.begin() + static_cast<std::ptrdiff_t>(done) *
                                                                    static_cast<std::ptrdiff_t>(channels));
            m_bufferStart += done;
        }
        wake = !m_filling && !m_ended && bufferEnd() < m_playedTo + fillBelow;
        m_filling = m_filling || wake;
    }
    if (wake)
        m_work.notify_all();
}

/// Of what is taken there are samples from one frame to another.
void AudioFeed::noteSeams(std::int64_t begin, std::int64_t end, std::int64_t whole, Sound& out)
{
    const std::size_t at = out.frames() - static_cast<std::size_t>(whole);
    const bool any = begin < end;
    if (m_sounds && (!any || begin > 0))
        out.seams.push_back(at);
    if (any && (!m_sounds || begin > 0))
        out.seams.push_back(at + static_cast<std::size_t>(begin));
    if (any && end < whole)
        out.seams.push_back(at + static_cast<std::size_t>(end));
    m_sounds = any && end == whole;
}

void AudioFeed::run()
{
    decode();
    m_idle = true;
}

void AudioFeed::decode()
{
    std::string error;
    const std::unique_ptr<SoundProgramme> reader = SoundProgramme::open(m_source.locate(), m_stop, &error);
    if (!reader) {
        playWithout(error);
        return;
    }
    Lock lock(m_mutex);
    m_channels = reader->channels();
    m_toldEnd = reader->duration();
    while (!m_stop) {
        if (wantsMore())
            read(lock, *reader);
        else
            m_work.wait(lock);
    }
}

/// An empty reason is none to be told.
void AudioFeed::playWithout(const std::string& reason)
{
    {
        const std::lock_guard lock(m_mutex);
        m_channels = 0;
    }
    if (!reason.empty() && !m_stop)
        Log::write_fmt(LogLevel::Warning, {}, "vantrel.decode", "'%s' plays without sound: %s",
                       m_name.c_str(), reason.c_str());
    m_arrived();
}

void AudioFeed::read(Lock& lock, SoundProgramme& reader)
{
    const std::optional<double> target = m_seekTo;
    const bool wasReady = isReady();
    std::vector<float> samples;
    lock.unlock();
    const bool found = (!target || reader.seek(*target)) && reader.next(samples);
    lock.lock();
    if (m_stop || m_seekTo != target)
        return; // sought elsewhere meanwhile
    if (target) {
        m_seekTo.reset();
        m_buffer.clear();
        m_bufferStart = Sound::sampleAt(*target);
    }
    m_buffer.insert(m_buffer.end(), samples.begin(), samples.end());
    m_ended = !found;
    if (m_ended) {
        const double last = static_cast<double>(bufferEnd()) / Sound::sampleRate;
        m_toldEnd = target ? std::min(m_toldEnd, last) : last; // sought behind the end tells only that
    }
    m_filling = bufferEnd() < m_playedTo + fillTo;
    if (!wasReady && isReady()) {
        lock.unlock();
        m_arrived();
        lock.lock();
    }
}

} // namespace vantrel::ombra
