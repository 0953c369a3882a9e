#pragma once

#include "ombra/outputs/screenfigures.h"
#include "tarn/media/channelenums.h"
#include "tarn/scene/scene.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace boost::asio {
class io_context;
}

namespace vantrel::ombra {

class Display;
class Engine;
class NoticeBoard;
class Outputs;
class Screens;
class SoundOut;
struct Place;
struct ServerOptions;

/// What an audience sees and hears, and preview beside it where that is wanted: on screens and on sound
/// devices of the machine, as far as the options ask for them, and what of the scene these follow. The thread
/// of the scene.
class ProgramOut
{
public:
    /// The options and what they are followed in outlive follow() and tellFigures(), not this: a graphics
    /// card that hangs while it is closed holds up nobody.
    ProgramOut(boost::asio::io_context& io, const ServerOptions& options, Scene& scene, Outputs& outputs,
               NoticeBoard& notices);
    ~ProgramOut();
    /// Whether a thread of one that has ended hangs in a desktop or a graphics card.
    static bool isHanging();

    /// The engine plays here until disconnect().
    void connect(Engine& engine);
    void disconnect();
    /// Takes over what may have changed in the scene, or at the screens.
    void follow();
    /// To be called each second: tells the scene how the screens and the sound do.
    void tellFigures();

private:
    /// One screen, and what it shows. Full screens stand for an output each, windows for a mapping.
    struct Seat
    {
        std::unique_ptr<Display> display;
        std::mutex mutex{}; // of a change of what it shows, and held while a picture is given to it
        int shows = -1;     // the mapping whose picture it has
        std::atomic<bool> paces{false}; // its beat is the engine's
        LastMinute dropped{}, late{};
    };

    void makeDisplays(boost::asio::io_context& io);
    bool isFull() const;
    bool isShown(int mapping) const;
    int mappingFor(int seat) const;
    int outputFor(int seat) const;
    int seatMeantFor(int mapping) const;
    std::optional<Place> placeOf(int seat) const;
    bool isOpen(int seat) const;
    void followTargets();
    void followPace();
    void followMapping(Seat& seat, int mapping);
    void followTestCard(int seat);
    void followSound(int playback);
    std::string soundDeviceFor(int playback, AudioPlaybackDevice chosen);
    void tellScreens();
    void tellMissing();
    void keepTogether();

    const ServerOptions& m_options;
    Scene& m_scene;
    Outputs& m_outputs;
    NoticeBoard& m_notices;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    std::unique_ptr<Screens> m_screens;
    std::array<Seat, 2> m_seats;
    std::array<std::unique_ptr<SoundOut>, 2> m_sounds; // of preview and program; null where there is none
};

} // namespace vantrel::ombra
