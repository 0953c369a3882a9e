#pragma once

#include "ombra/engine/heardmoment.h"

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace vantrel::ombra {

/// The sound of a playback on a device of the machine. A thread of its own opens the device, looks after it
/// and finds it again when it was gone; without one there is a trouble() to tell, and nothing else is
/// different. Any thread.
class SoundOut
{
public:
    /// owner: "Program", in what operators read. An empty device means the machine's own choice.
    SoundOut(std::string owner, std::string device);
    /// Waits for a moment at most: a device that hangs holds up nobody.
    ~SoundOut();
    SoundOut(const SoundOut&) = delete;

    /// Whether threads wait for a device that hangs: they would hold up an orderly end of the process.
    static bool isHanging();

    static constexpr double largestOffset = 0.25; // seconds

    /// Goes over to another one.
    void setDevice(const std::string& device);
    /// Sound is heard so many seconds later than the pictures, or earlier below 0: at once, but for the
    /// pictures, which follow with the next pictureDelay().
    void setOffset(double seconds);
    /// Who is asked for the next moment when a device runs out of sound. After this returns the one before is
    /// not asked any more.
    void setAsker(std::function<void()> asker);
    /// The mixing thread; never waits.
    void play(const HeardMoment& moment);

    /// Seconds by which pictures are to be shown after their moment, so that they meet their sound, on a
    /// screen with so many a second (0: none). To be called now and then.
    double pictureDelay(double pictureRate);
    /// What an operator must know of it; empty where there is nothing.
    std::string trouble() const;

private:
    class Keeper;
    std::shared_ptr<Keeper> m_keeper; // the thread has it too
    std::thread m_thread;
};

} // namespace vantrel::ombra
