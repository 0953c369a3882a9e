#pragma once

#include "ombra/sound/sounddevice.h"
#include "ombra/sound/soundout.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>

namespace vantrel::ombra {

/// What SoundOut's thread does: it outlives SoundOut where a device hangs.
class SoundOut::Keeper
{
public:
    Keeper(std::string owner, std::string device);

    void run();
    /// True when run() has ended in time.
    bool stop();

    void setDevice(const std::string& name);
    void setOffset(double seconds);
    void setAsker(std::function<void()> asker);
    std::shared_ptr<SoundStream> stream() const;
    double pictureDelay(double pictureRate);
    std::string trouble() const;
    static bool isHanging();

private:
    /// What becomes of a device that plays: Left for another one, or at the end.
    enum class Fate { Left, Gone, Hangs };

    void serve(std::unique_ptr<SoundDevice> device, const std::string& name);
    Fate watch(const SoundDevice& device, const std::string& name);
    void welcome(const SoundDevice& device);
    void tellGaps(const SoundStream& stream);
    void abandon(std::unique_ptr<SoundDevice> device);
    void setTrouble(const std::string& trouble);
    void setOpeningSince(std::optional<SoundStream::Clock::time_point> moment);
    void setStream(std::shared_ptr<SoundStream> stream, double leastDelay);
    bool waitFor(std::chrono::milliseconds time);
    bool isStopped() const;
    std::string name() const;

    std::string silentFor(const std::string& what) const;

    const std::string m_owner;

    std::mutex m_askerMutex;
    std::function<void()> m_asker;

    mutable std::mutex m_mutex;
    std::condition_variable m_change;
    std::string m_name;
    std::shared_ptr<SoundStream> m_stream;
    double m_leastDelay = 0;
    double m_offset = 0;     // seconds
    bool m_hasMoved = false; // the offset, since the stream was told
    std::string m_trouble;
    std::optional<SoundStream::Clock::time_point> m_openingSince;
    bool m_stop = false, m_ended = false;

    // Of run():
    long long m_toldGaps = 0;
};

} // namespace vantrel::ombra
