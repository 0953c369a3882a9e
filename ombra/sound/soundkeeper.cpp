#include "ombra/sound/soundkeeper.h"

#include "tarn/log/log.h"

#include <cmath>
#include <utility>

namespace vantrel::ombra {

namespace {

using namespace std::chrono_literals;

constexpr auto lookAgainAfter = 1s; // for a device that is not there
constexpr auto lookEach = 5ms;      // whether one that is there has enough to play
constexpr auto tellEach = 10s;      // gaps, at most
constexpr auto provenAfter = 500ms; // of asking for sound
constexpr auto hangsAfter = 2s;     // without asking for sound
constexpr auto patience = 1s;       // of the end
constexpr int abandonedAtMost = 4;  // devices that hang while they are closed
constexpr double usualDelay = 0.08; // seconds, while no device has told what it needs

std::atomic<int> abandoned{0}; // threads that wait for a device which hangs

} // namespace

SoundOut::Keeper::Keeper(std::string owner, std::string device)
    : m_owner(std::move(owner))
    , m_name(std::move(device))
    , m_leastDelay(usualDelay)
{
}

std::string SoundOut::Keeper::silentFor(const std::string& what) const
{
    return m_owner + " is silent: the sound device " + what + ". It is heard as soon as that is back.";
}

void SoundOut::Keeper::run()
{
    while (!isStopped()) {
        std::string error;
        const std::string name = this->name();
        setOpeningSince(SoundStream::Clock::now());
        auto device = abandoned < abandonedAtMost ? SoundDevice::open(name, &error) : nullptr;
        setOpeningSince(std::nullopt);
        if (device)
            serve(std::move(device), name);
        else if (trouble().empty() && !error.empty())
            setTrouble(m_owner + " is silent: " + error +
                       ". It is heard as soon as the sound device is there.");
        if (name == this->name())
            waitFor(lookAgainAfter);
        else
            setTrouble({});
    }
    const std::lock_guard lock(m_mutex);
    m_ended = true;
    m_change.notify_all();
}

bool SoundOut::Keeper::stop()
{
    std::unique_lock lock(m_mutex);
    m_stop = true;
    m_change.notify_all();
    if (m_change.wait_for(lock, patience, [this] { return m_ended; }))
        return true;
    ++abandoned;
    return false;
}

void SoundOut::Keeper::serve(std::unique_ptr<SoundDevice> device, const std::string& name)
{
    setStream(device->stream(), SoundStream::leastDelay(device->rate(), device->framesAtOnce()));
    const Fate fate = watch(*device, name);
    tellGaps(*device->stream());
    {
        const std::lock_guard lock(m_mutex);
        m_stream.reset();
    }
    if (fate != Fate::Left)
        setTrouble(silentFor(fate == Fate::Hangs ? "does not answer" : "is gone"));
    if (fate == Fate::Hangs)
        abandon(std::move(device));
}

SoundOut::Keeper::Fate SoundOut::Keeper::watch(const SoundDevice& device, const std::string& name)
{
    SoundStream& stream = *device.stream();
    const auto begun = SoundStream::Clock::now();
    auto toldAt = begun;
    bool isProven = false;
    m_toldGaps = 0;
    while (!waitFor(lookEach) && name == this->name()) {
        if (!device.isAlive())
            return Fate::Gone;
        const auto now = SoundStream::Clock::now();
        if (now - std::max(begun, stream.lastAsked()) > hangsAfter)
            return Fate::Hangs;
        if (!isProven && now - begun > provenAfter && now - stream.lastAsked() < provenAfter) {
            isProven = true;
            welcome(device);
        }
        if (now - toldAt > tellEach) {
            toldAt = now;
            tellGaps(stream);
        }
        const std::lock_guard lock(m_askerMutex);
        if (stream.isStarving() && m_asker)
            m_asker();
    }
    return Fate::Left;
}

/// A device that opens may still hang with its first sound.
void SoundOut::Keeper::welcome(const SoundDevice& device)
{
    setTrouble({});
    Log::write_fmt(LogLevel::Info, {}, "vantrel.sound", "%s's sound goes to %s: %d channels at %d Hz",
                   m_owner.c_str(),
                   device.name().empty() ? "the machine's own device" : device.name().c_str(),
                   device.channels(), device.rate());
}

void SoundOut::Keeper::tellGaps(const SoundStream& stream)
{
    const long long all = stream.gaps();
    const long long gaps = all - std::exchange(m_toldGaps, all);
    if (gaps > 0)
        Log::write_fmt(LogLevel::Warning, {}, "vantrel.sound",
                       "%s's sound had %lld gaps: the machine did not mix in time", m_owner.c_str(), gaps);
}

/// Closing waits for its driver, which answers nobody.
void SoundOut::Keeper::abandon(std::unique_ptr<SoundDevice> device)
{
    ++abandoned;
    std::thread([device = std::move(device)]() mutable {
        device.reset();
        --abandoned;
    }).detach();
}

void SoundOut::Keeper::setTrouble(const std::string& trouble)
{
    const std::lock_guard lock(m_mutex);
    m_trouble = trouble;
}

void SoundOut::Keeper::setOpeningSince(std::optional<SoundStream::Clock::time_point> moment)
{
    const std::lock_guard lock(m_mutex);
    m_openingSince = moment;
}

void SoundOut::Keeper::setStream(std::shared_ptr<SoundStream> stream, double leastDelay)
{
    const std::lock_guard lock(m_mutex);
    m_stream = std::move(stream);
    m_leastDelay = leastDelay;
    m_stream->setDelay(leastDelay + std::max(0.0, m_offset));
}

void SoundOut::Keeper::setAsker(std::function<void()> asker)
{
    const std::lock_guard lock(m_askerMutex);
    m_asker = std::move(asker);
}

std::shared_ptr<SoundStream> SoundOut::Keeper::stream() const
{
    const std::lock_guard lock(m_mutex);
    return m_stream;
}

/// Pictures wait for whole beats of their screen, and the sound meets them there.
double SoundOut::Keeper::pictureDelay(double pictureRate)
{
    const std::lock_guard lock(m_mutex);
    const double least = m_leastDelay + std::max(0.0, -m_offset);
    const double pictures = pictureRate > 0 ? std::ceil(least * pictureRate - 0.01) / pictureRate : least;
    if (m_stream && std::exchange(m_hasMoved, false))
        m_stream->goTo(pictures + m_offset);
    else if (m_stream)
        m_stream->setDelay(pictures + m_offset);
    return pictures;
}

std::string SoundOut::Keeper::trouble() const
{
    const std::lock_guard lock(m_mutex);
    const bool hangs = m_openingSince && SoundStream::Clock::now() - *m_openingSince > hangsAfter;
    return m_trouble.empty() && hangs ? silentFor("does not answer") : m_trouble;
}

bool SoundOut::Keeper::isHanging()
{
    return abandoned > 0;
}

void SoundOut::Keeper::setDevice(const std::string& name)
{
    const std::lock_guard lock(m_mutex);
    m_name = name;
}

void SoundOut::Keeper::setOffset(double seconds)
{
    const std::lock_guard lock(m_mutex);
    const double offset = std::clamp(seconds, -largestOffset, largestOffset);
    m_hasMoved = std::exchange(m_offset, offset) != offset || m_hasMoved;
}

std::string SoundOut::Keeper::name() const
{
    const std::lock_guard lock(m_mutex);
    return m_name;
}

bool SoundOut::Keeper::waitFor(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    return m_change.wait_for(lock, time, [this] { return m_stop; });
}

bool SoundOut::Keeper::isStopped() const
{
    const std::lock_guard lock(m_mutex);
    return m_stop;
}

} // namespace vantrel::ombra
