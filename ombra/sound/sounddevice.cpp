#include "ombra/sound/sounddevice.h"

#include "ombra/base/fail.h"

#include <SDL.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>

namespace vantrel::ombra {

namespace {

constexpr int usualFramesAtOnce = 512; // some drivers write past their room where it is no power of two

/// SDL opens one device at a time; who hangs meanwhile is waited for only so long.
std::timed_mutex opening;
constexpr auto othersOpenWithin = std::chrono::seconds(1);

/// Its own start, beside that of a display's: the two know nothing of each other, and neither ends the other.
bool startAudio(std::string* error)
{
    SDL_SetMainReady();
    if (!SDL_GetCurrentAudioDriver() && SDL_AudioInit(nullptr) != 0)
        return fail(error, SDL_GetError());
    return true;
}

std::atomic<int> openDevices{0};

/// So that the next try looks for a sound server that has come meanwhile. It would wait for devices that
/// hang.
void endAudio()
{
    if (openDevices == 0)
        SDL_AudioQuit();
}

std::vector<std::string> listed()
{
    std::vector<std::string> names;
    for (int i = 0; i < SDL_GetNumAudioDevices(0); ++i) {
        if (const char* name = SDL_GetAudioDeviceName(i, 0))
            names.emplace_back(name);
    }
    return names;
}

/// How many channels the device has; 0 where the driver does not tell.
int channelsOf(const std::string& name, const std::vector<std::string>& names)
{
    SDL_AudioSpec spec = {};
    char* own = nullptr;
    const auto at = std::ranges::find(names, name);
    const bool known = at != names.end()
                           ? SDL_GetAudioDeviceSpec(static_cast<int>(at - names.begin()), 0, &spec) == 0
                           : SDL_GetDefaultAudioInfo(&own, &spec, 0) == 0;
    SDL_free(own);
    return known ? std::min<int>(spec.channels, Sound::maxChannels) : 0;
}

} // namespace

std::vector<std::string> SoundDevice::names(std::string* error)
{
    return startAudio(error) ? listed() : std::vector<std::string>();
}

std::unique_ptr<SoundDevice> SoundDevice::open(const std::string& name, std::string* error)
{
    const std::unique_lock turn(opening, othersOpenWithin);
    if (!turn) {
        fail(error, "another sound device of this machine does not answer");
        return nullptr;
    }
    if (!startAudio(error))
        return nullptr;
    std::unique_ptr<SoundDevice> device(new SoundDevice);
    const std::vector<std::string> all = listed();
    auto found = std::ranges::find(all, name);
    if (found == all.end())
        found = std::ranges::find_if(
            all, [&](const std::string& one) { return one.find(name) != std::string::npos; });
    // Without any, a driver that is asked all the same tells its troubles to standard error, each time.
    if (all.empty())
        fail(error, "this machine has no sound device");
    else if (!name.empty() && found == all.end())
        fail(error, "there is no sound device of the name \"" + name + "\"");
    else {
        device->m_name = name.empty() ? name : *found;
        device->m_channels = channelsOf(device->m_name, all);
        if (device->start(error))
            return device;
    }
    endAudio();
    return nullptr;
}

bool SoundDevice::start(std::string* error)
{
    SDL_AudioSpec wanted = {}, got = {};
    wanted.freq = Sound::sampleRate;
    wanted.format = AUDIO_F32SYS;
    wanted.channels = static_cast<unsigned char>(m_channels); // 0: as the environment or SDL has it
    wanted.samples = std::getenv("SDL_AUDIO_SAMPLES") ? 0 : usualFramesAtOnce;
    wanted.callback = fill;
    // The stream is made for what comes of it: only then is it known what the device takes.
    wanted.userdata = this;
    m_id = SDL_OpenAudioDevice(m_name.empty() ? nullptr : m_name.c_str(), 0, &wanted, &got,
                               SDL_AUDIO_ALLOW_FREQUENCY_CHANGE | SDL_AUDIO_ALLOW_SAMPLES_CHANGE);
    if (m_id == 0)
        return fail(error, SDL_GetError());
    ++openDevices;
    m_channels = got.channels;
    m_rate = got.freq;
    m_framesAtOnce = got.samples;
    m_stream = std::make_shared<SoundStream>(m_channels, m_rate, m_framesAtOnce);
    SDL_PauseAudioDevice(m_id, 0);
    return true;
}

SoundDevice::~SoundDevice()
{
    if (m_id == 0)
        return;
    SDL_CloseAudioDevice(m_id);
    --openDevices;
}

bool SoundDevice::isAlive() const
{
    return SDL_GetAudioDeviceStatus(m_id) != SDL_AUDIO_STOPPED;
}

/// The driver's thread, from the end of start() on.
void SoundDevice::fill(void* device, unsigned char* out, int bytes)
{
    static_cast<SoundDevice*>(device)->m_stream->fill(
        {reinterpret_cast<float*>(out), static_cast<std::size_t>(bytes) / sizeof(float)},
        SoundStream::Clock::now());
}

} // namespace vantrel::ombra
