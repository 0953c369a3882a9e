#include "ombra/programout.h"

#include "ombra/display/display.h"
#include "ombra/engine/engine.h"
#include "ombra/outputs/outputs.h"
#include "ombra/outputs/sceneaccess.h"
#include "ombra/outputs/videooutput.h"
#include "ombra/server.h"
#include "ombra/show/noticeboard.h"
#include "ombra/sound/soundout.h"

namespace vantrel::ombra {

namespace {

constexpr const char* programPath = "/device/channels/0/program";
constexpr const char* programMapping = "/device/channels/0/mappings/1";
constexpr int programScreen = 1; // the operator's own is the first

} // namespace

ProgramOut::ProgramOut(const ServerOptions& options, Scene& scene, Outputs& outputs, NoticeBoard& notices)
    : m_options(options)
    , m_scene(scene)
    , m_outputs(outputs)
    , m_notices(notices)
{
    if (m_options.screen != ServerOptions::Screen::None)
        m_display = std::make_unique<Display>(m_options.screen == ServerOptions::Screen::Window
                                                  ? Display::Kind::Window
                                                  : Display::Kind::FullScreen,
                                              programScreen, "Program");
    if (m_options.sound)
        m_sound = std::make_unique<SoundOut>(*m_options.sound, m_options.soundOffset);
    keepTogether();
}

ProgramOut::~ProgramOut() = default;

void ProgramOut::connect(Engine& engine)
{
    if (m_display) {
        engine.setMomentSink([display = m_display.get()](const std::string& playback, ShownMoment moment) {
            if (playback == programPath)
                display->show(std::move(moment));
        });
        m_display->setAsker([&engine](auto moment) { engine.pace(moment); });
    }
    if (m_sound) {
        engine.setSoundSink([sound = m_sound.get()](const std::string& playback, const HeardMoment& moment) {
            if (playback == programPath)
                sound->play(moment);
        });
        m_sound->setAsker([&engine] { engine.hurry(); });
    }
    follow();
}

void ProgramOut::disconnect()
{
    if (m_display)
        m_display->setAsker({});
    if (m_sound)
        m_sound->setAsker({});
}

void ProgramOut::follow()
{
    followMapping();
    followTestCard();
    followSoundDevice();
}

/// What the display shows where there is no picture.
void ProgramOut::followMapping()
{
    const Object* mapping = m_scene.findObject(programMapping);
    Variant color;
    if (!m_display || !mapping || !mapping->getProperty("backgroundColor", color))
        return;
    const auto value = color.as<ColorValue>();
    m_display->setGround({{float(value.red) / 255, float(value.green) / 255, float(value.blue) / 255}});
}

/// For want of a program alone: once there is one, it is not to come back with the next black.
void ProgramOut::followTestCard()
{
    const Object* program = m_scene.findObject(programPath);
    if (!m_display || !program)
        return;
    const bool isIdle = propertyOf<std::string>(program, "media").empty() &&
                        propertyOf<std::string>(program, "heldMedia").empty();
    const int shown = m_outputs.outputOf(Outputs::programMapping);
    if (!isIdle && shown >= 0)
        m_outputs.at(shown).endIdentify();
    const bool isCard = shown >= 0 && m_outputs.at(shown).isIdentified();
    m_display->setTestCard(
        isCard ? std::optional(TestCard{m_outputs.at(shown).number(), m_outputs.at(shown).name()})
               : std::nullopt);
}

/// Sound goes to the device of the machine that stands for what program's sound is set to.
void ProgramOut::followSoundDevice()
{
    const Object* program = m_scene.findObject(programPath);
    Variant device;
    if (!m_sound || !program || !program->getProperty("audioDevice", device))
        return;
    const auto chosen = device.as<AudioPlaybackDevice>();
    const auto named = m_options.soundOf.find(chosen);
    if (chosen != AudioPlaybackDevice::Off) // it stays where it was, and is silent
        m_sound->setDevice(named == m_options.soundOf.end() ? *m_options.sound : named->second);
}

void ProgramOut::tellFigures()
{
    if (m_display) {
        const Display::Figures figures = m_display->figures();
        const ScreenFigures lately{.rate = figures.isOpen ? figures.rate : 0,
                                   .dropped = m_dropped.grown(figures.dropped),
                                   .late = m_late.grown(figures.late),
                                   .decodeLoad = figures.isOpen ? figures.decodeLoad : 0,
                                   .bySoftware = figures.isOpen && figures.bySoftware};
        const int shown = m_outputs.outputOf(Outputs::programMapping);
        for (int i = 0; i < m_outputs.count(); ++i)
            m_outputs.at(i).tellScreen(i == shown ? lately : ScreenFigures{});
        followTestCard(); // program may have got its medium by itself
    }
    followSoundDevice();
    keepTogether();
}

/// Pictures and sound, each on a device of its own.
void ProgramOut::keepTogether()
{
    if (!m_sound)
        return;
    const Display::Figures figures = m_display ? m_display->figures() : Display::Figures();
    const double delay = m_sound->pictureDelay(figures.isOpen ? figures.rate : 0);
    if (m_display)
        m_display->setDelay(delay);
    m_notices.set("sound", m_sound->trouble());
}

} // namespace vantrel::ombra
