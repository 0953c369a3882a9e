#pragma once

#include "ombra/outputs/screenfigures.h"
#include "tarn/scene/scene.h"

#include <memory>

namespace vantrel::ombra {

class Display;
class Engine;
class NoticeBoard;
class Outputs;
class SoundOut;
struct ServerOptions;

/// What an audience sees and hears: program on a screen and on a sound device of the machine, as far as the
/// options ask for them, and what of the scene these two follow. The thread of the scene.
class ProgramOut
{
public:
    /// The options and what they are followed in outlive follow() and tellFigures(), not this: a graphics
    /// card that hangs while it is closed holds up nobody.
    ProgramOut(const ServerOptions& options, Scene& scene, Outputs& outputs, NoticeBoard& notices);
    ~ProgramOut();

    bool hasScreen() const { return m_display != nullptr; }
    /// The engine plays here until disconnect().
    void connect(Engine& engine);
    void disconnect();
    /// Takes over what may have changed in the scene.
    void follow();
    /// To be called each second: tells the scene how the screen and the sound do.
    void tellFigures();

private:
    void followMapping();
    void followTestCard();
    void followSoundDevice();
    void keepTogether();

    const ServerOptions& m_options;
    Scene& m_scene;
    Outputs& m_outputs;
    NoticeBoard& m_notices;
    std::unique_ptr<Display> m_display;
    LastMinute m_dropped, m_late;
    std::unique_ptr<SoundOut> m_sound;
};

} // namespace vantrel::ombra
