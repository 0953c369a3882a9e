#pragma once

#include "ombra/decode/picturereader.h"
#include "ombra/decode/soundprogramme.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace vantrel::ombra {

/// Decodes the sound of one medium ahead of its playback on a thread of its own, from start() to stop() or
/// the feed's end. The functions only take and give what is there: none waits for a decoder. Any thread.
class AudioFeed
{
public:
    /// For sound from begin (seconds) on; a sequence is a medium without. arrived is called on the feed's
    /// thread when ready() has come true; name stands for the medium in the log.
    AudioFeed(MediaSource source, double begin, std::string name, std::function<void()> arrived);
    ~AudioFeed();
    AudioFeed(const AudioFeed&) = delete;
    AudioFeed& operator=(const AudioFeed&) = delete;

    /// Opens the medium and begins to decode; once.
    void start();
    /// Ends that at once, without waiting for it. When idle(), letting the feed go waits for nobody.
    void stop();
    bool idle() const { return m_idle; }

    void seek(double time);
    /// Whether the first of what was sought is there, or it is known that nothing will come.
    bool ready() const;
    /// Whether the sound from that time (seconds) on is decoded, or it is known that there is none.
    bool holds(double time) const;
    /// Nothing until the medium is opened; 0 for one without sound, or with sound that does not decode.
    std::optional<int> channels() const;
    /// Seconds of the medium at which its sound ends: exactly once ended() is true, before that as the file
    /// says; 0 without sound.
    double end() const;
    bool ended() const;
    /// Appends what sounds between two times of the media (seconds), silence where there is nothing. Time
    /// goes on: what lies well before it is forgotten.
    void take(double from, double to, Sound& out);

private:
    using Lock = std::unique_lock<std::mutex>;

    void run();
    void decode();
    void playWithout(const std::string& reason);
    void read(Lock& lock, SoundProgramme& reader);
    bool wantsMore() const;
    bool isKnown(std::int64_t sample) const;
    bool isReady() const;
    std::int64_t bufferEnd() const;
    void noteSeams(std::int64_t begin, std::int64_t end, std::int64_t whole, Sound& out);

    const MediaSource m_source;
    const std::string m_name;
    const std::function<void()> m_arrived;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_idle{true}; // the thread holds nothing

    mutable std::mutex m_mutex;
    std::condition_variable m_work;
    std::optional<int> m_channels;
    double m_toldEnd = 0;           // seconds
    std::optional<double> m_seekTo; // asked for, not done
    std::vector<float> m_buffer;    // decoded, from m_bufferStart on
    std::int64_t m_bufferStart = 0; // sample
    std::int64_t m_playedTo = 0;    // sample
    bool m_filling = true;          // decodes on until enough lies ready
    bool m_ended = false;           // the buffer holds the last sample
    bool m_sounds = false;          // the last sample taken was one, and no silence in its place
    std::thread m_thread;           // last: it uses all of the above
};

} // namespace vantrel::ombra
