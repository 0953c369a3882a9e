#include "ombra/programout.h"

#include "ombra/display/display.h"
#include "ombra/display/screens.h"
#include "ombra/engine/engine.h"
#include "ombra/outputs/outputs.h"
#include "ombra/outputs/sceneaccess.h"
#include "ombra/outputs/videooutput.h"
#include "ombra/server.h"
#include "ombra/show/noticeboard.h"
#include "ombra/sound/soundout.h"

#include <boost/asio/post.hpp>

#include <chrono>
#include <tuple>
#include <utility>

namespace vantrel::ombra {

namespace {

constexpr std::array playbackPaths = {"/device/channels/0/preview", "/device/channels/0/program"};
constexpr std::array titles = {"Preview", "Program"};
constexpr const char* mappingsPath = "/device/channels/0/mappings/";
constexpr int preview = Outputs::previewMapping, program = Outputs::programMapping;
/// How long a graphics card may take to be closed.
constexpr auto stopsWithin = std::chrono::seconds(2);

std::atomic<bool> hangs{false};

} // namespace

ProgramOut::ProgramOut(boost::asio::io_context& io, const ServerOptions& options, Scene& scene,
                       Outputs& outputs, NoticeBoard& notices)
    : m_options(options)
    , m_scene(scene)
    , m_outputs(outputs)
    , m_notices(notices)
{
    if (m_options.screen != ServerOptions::Screen::None)
        makeDisplays(io);
    if (m_options.sound)
        m_sounds[program] = std::make_unique<SoundOut>(titles[program], *m_options.sound);
    if (m_options.previewSound)
        m_sounds[preview] = std::make_unique<SoundOut>(titles[preview], *m_options.previewSound);
    keepTogether();
}

void ProgramOut::makeDisplays(boost::asio::io_context& io)
{
    const auto changed = [this, &io, alive = std::weak_ptr<bool>(m_alive)] {
        boost::asio::post(io, [this, alive] {
            if (alive.lock())
                follow();
        });
    };
    m_screens = std::make_unique<Screens>(m_options.paintBy);
    for (std::size_t i = 0; i < m_seats.size(); ++i)
        m_seats[i].display = std::make_unique<Display>(
            *m_screens, isFull() ? Display::Kind::FullScreen : Display::Kind::Window,
            isFull() ? "Output " + std::to_string(i + 1) : titles[i], changed);
}

/// What hangs is left as it lies: its thread still uses it.
ProgramOut::~ProgramOut()
{
    if (!m_screens)
        return;
    const auto deadline = Display::Clock::now() + stopsWithin;
    for (Seat& seat : m_seats)
        seat.display->askToStop();
    bool isDone = true;
    for (Seat& seat : m_seats) {
        if (seat.display->stop(deadline))
            continue;
        std::ignore = seat.display.release();
        isDone = false;
    }
    if (isDone && m_screens->stop(deadline))
        return;
    std::ignore = m_screens.release();
    hangs = true;
}

bool ProgramOut::isHanging()
{
    return hangs;
}

void ProgramOut::connect(Engine& engine)
{
    if (m_screens) {
        engine.setMomentSink([this](const std::string& playback, const ShownMoment& moment) {
            for (Seat& seat : m_seats) {
                const std::lock_guard lock(seat.mutex);
                const int shown = seat.shows;
                if (shown >= 0 && playback == playbackPaths[static_cast<std::size_t>(shown)])
                    seat.display->show(moment);
            }
        });
        for (Seat& seat : m_seats)
            seat.display->setAsker([&engine, paces = &seat.paces](auto moment) {
                if (*paces)
                    engine.pace(moment);
                return paces->load();
            });
    }
    if (m_sounds[preview] || m_sounds[program])
        engine.setSoundSink([this](const std::string& playback, const HeardMoment& moment) {
            for (std::size_t i = 0; i < m_sounds.size(); ++i) {
                if (m_sounds[i] && playback == playbackPaths[i])
                    m_sounds[i]->play(moment);
            }
        });
    for (const auto& sound : m_sounds) {
        if (sound)
            sound->setAsker([&engine] { engine.hurry(); });
    }
    follow();
}

void ProgramOut::disconnect()
{
    for (Seat& seat : m_seats) {
        if (seat.display)
            seat.display->setAsker({});
    }
    for (const auto& sound : m_sounds) {
        if (sound)
            sound->setAsker({});
    }
}

void ProgramOut::follow()
{
    if (m_screens)
        followTargets();
    for (const int playback : {preview, program})
        followSound(playback);
    keepTogether();
}

bool ProgramOut::isFull() const
{
    return m_options.screen == ServerOptions::Screen::Full;
}

/// Preview beside program takes two screens that are painted on their own, which only a desktop has.
bool ProgramOut::isShown(int mapping) const
{
    if (mapping == program)
        return true;
    const int output = m_outputs.outputOf(mapping);
    const Connector* connector = output < 0 ? nullptr : m_outputs.at(output).connector();
    return m_options.showsPreview && (!isFull() || (connector && connector->area));
}

int ProgramOut::mappingFor(int seat) const
{
    for (const int mapping : {program, preview}) {
        const bool isThere = isFull() ? m_outputs.outputOf(mapping) == seat : mapping == seat;
        if (isThere && isShown(mapping))
            return mapping;
    }
    return -1;
}

int ProgramOut::outputFor(int seat) const
{
    return isFull() ? seat : m_outputs.outputOf(seat);
}

int ProgramOut::seatMeantFor(int mapping) const
{
    return isFull() ? m_outputs.outputOf(mapping) : mapping;
}

bool ProgramOut::isOpen(int seat) const
{
    return seat >= 0 && m_seats[static_cast<std::size_t>(seat)].display->figures().isOpen;
}

/// Where nobody tells of any output, the second screen that there is serves, or the only one: the operator's
/// own is the first.
std::optional<Place> ProgramOut::placeOf(int seat) const
{
    if (!isFull())
        return Place{};
    const bool isKnown = m_outputs.at(0).connector() || m_outputs.at(1).connector();
    if (!isKnown)
        return mappingFor(seat) == program
                   ? std::optional(Place{.name = m_outputs.at(seat).name(), .screen = 1, .isGuess = true})
                   : std::nullopt;
    const Connector* connector = m_outputs.at(seat).connector();
    if (!connector || !connector->isConnected || !connector->isOn)
        return std::nullopt;
    return Place{.name = connector->name,
                 .area = connector->area,
                 .screen = connector->screen,
                 .rate = connector->mode ? connector->mode->refreshRate() : 0};
}

/// Program that goes to another screen stays where it was until it is there.
void ProgramOut::followTargets()
{
    const int own = seatMeantFor(program);
    const bool isThere = own >= 0 && m_seats[static_cast<std::size_t>(own)].display->figures().isShowing;
    const bool isUnderWay = own >= 0 && placeOf(own) && !isThere;
    for (int i = 0; i < static_cast<int>(m_seats.size()); ++i) {
        Seat& seat = m_seats[static_cast<std::size_t>(i)];
        int mapping = mappingFor(i);
        if (mapping < 0 && isUnderWay && seat.shows == program)
            mapping = program;
        {
            const std::lock_guard lock(seat.mutex); // no picture of the one before comes after this
            if (std::exchange(seat.shows, mapping) != mapping) {
                seat.display->expectAnother();
                seat.display->setDelay(0); // that of the sound comes with keepTogether()
            }
        }
        seat.display->setPlace(mapping < 0 ? std::nullopt : placeOf(i));
        if (mapping >= 0)
            followMapping(seat, mapping);
        followTestCard(i);
    }
    followPace();
    tellMissing();
}

/// The engine goes by the beat of program's own screen; by that of another one while there is none.
void ProgramOut::followPace()
{
    int best = seatMeantFor(program);
    for (int i = 0; !isOpen(best) && i < static_cast<int>(m_seats.size()); ++i) {
        if (isOpen(i))
            best = i;
    }
    for (std::size_t i = 0; i < m_seats.size(); ++i)
        m_seats[i].paces = static_cast<int>(i) == best;
}

/// What the display shows where there is no picture, and how pictures become others.
void ProgramOut::followMapping(Seat& seat, int mapping)
{
    const Object* object = m_scene.findObject(mappingsPath + std::to_string(mapping));
    if (!object)
        return;
    const auto value = propertyOf<ColorValue>(object, "backgroundColor");
    seat.display->setGround({{float(value.red) / 255, float(value.green) / 255, float(value.blue) / 255},
                             propertyOf<bool>(object, "linearTransitions")});
}

/// For want of a picture alone: once there is one, it is not to come back with the next black.
void ProgramOut::followTestCard(int index)
{
    Seat& seat = m_seats[static_cast<std::size_t>(index)];
    const int shown = seat.shows, output = outputFor(index);
    const Object* playback =
        shown < 0 ? nullptr : m_scene.findObject(playbackPaths[static_cast<std::size_t>(shown)]);
    if (!playback || output < 0)
        return seat.display->setTestCard(std::nullopt);
    VideoOutput& of = m_outputs.at(output);
    const bool isIdle = propertyOf<std::string>(playback, "media").empty() &&
                        propertyOf<std::string>(playback, "heldMedia").empty();
    if (!isIdle && of.isIdentified())
        of.endIdentify();
    seat.display->setTestCard(of.isIdentified() ? std::optional(TestCard{of.number(), of.name()})
                                                : std::nullopt);
}

void ProgramOut::followSound(int playback)
{
    SoundOut* sound = m_sounds[static_cast<std::size_t>(playback)].get();
    const Object* object = m_scene.findObject(playbackPaths[static_cast<std::size_t>(playback)]);
    if (!sound || !object)
        return;
    const auto chosen = propertyOf<AudioPlaybackDevice>(object, "audioDevice");
    const std::string device = soundDeviceFor(playback, chosen);
    if (chosen != AudioPlaybackDevice::Off) // it stays where it was, and is silent
        sound->setDevice(device);
    sound->setOffset(propertyOf<double>(object, "audioOffset"));
}

/// The device of the machine that stands for what a playback's sound is set to. Preview has one alone.
std::string ProgramOut::soundDeviceFor(int playback, AudioPlaybackDevice chosen)
{
    if (playback == preview)
        return *m_options.previewSound;
    const auto named = m_options.soundOf.find(chosen);
    const bool isNamed = named != m_options.soundOf.end();
    const std::string& usual = *m_options.sound;
    m_notices.set("audio network",
                  chosen != AudioPlaybackDevice::Dante || isNamed
                      ? ""
                      : "Program's sound is set to Dante, but no sound device of the server stands for the "
                        "audio network: it goes to " +
                            (usual.empty() ? "the machine's own device" : "\"" + usual + "\"") +
                            " instead. Choose another program output in the OUTPUTS tab, or start ombra with "
                            "--sound dante=DEVICE.");
    return isNamed ? named->second : usual;
}

void ProgramOut::tellFigures()
{
    if (m_screens)
        tellScreens();
    follow(); // program may have got its medium by itself
}

void ProgramOut::tellScreens()
{
    std::array<ScreenFigures, 2> lately;
    for (int i = 0; i < static_cast<int>(m_seats.size()); ++i) {
        Seat& seat = m_seats[static_cast<std::size_t>(i)];
        const Display::Figures figures = seat.display->figures();
        const int dropped = seat.dropped.grown(figures.dropped), late = seat.late.grown(figures.late);
        const int output = outputFor(i);
        if (output < 0 || mappingFor(i) < 0)
            continue;
        lately[static_cast<std::size_t>(output)] = {.rate = figures.isOpen ? figures.rate : 0,
                                                    .dropped = dropped,
                                                    .late = late,
                                                    .decodeLoad = figures.isOpen ? figures.decodeLoad : 0,
                                                    .paintLoad = figures.isOpen ? figures.paintLoad : 0,
                                                    .bySoftware = figures.isOpen && figures.bySoftware};
        if (figures.isOpen && isFull())
            m_outputs.at(output).tellPicture(figures.width, figures.height, figures.rate);
    }
    for (int i = 0; i < m_outputs.count(); ++i)
        m_outputs.at(i).tellScreen(lately[static_cast<std::size_t>(i)]);
}

/// Program without a screen, where one is known of.
void ProgramOut::tellMissing()
{
    const int output = m_outputs.outputOf(program);
    const bool isKnown = isFull() && (m_outputs.at(0).connector() || m_outputs.at(1).connector());
    std::string sentence;
    if (m_screens->isLost()) {
        sentence =
            "The desktop of the server's machine has ended, and program has no screen any more. Start ombra "
            "again once there is a desktop.";
    } else if (isKnown && output >= 0 && !placeOf(output)) {
        const VideoOutput& own = m_outputs.at(output);
        sentence = own.isConnected()
                       ? "The display of program's output " + own.name() +
                             " is switched off. Switch it on in the desktop's settings of the "
                             "server's machine."
                       : "Program's output " + own.name() +
                             " has no display. Plug one in, and program is there at once, or give "
                             "program the other output in the OUTPUTS tab.";
    }
    m_notices.set("screen", sentence);
    const bool isConsole =
        isKnown && m_options.showsPreview && output >= 0 && placeOf(output) && !placeOf(output)->area;
    m_notices.set("preview screen", isConsole
                                        ? "Preview has no screen of its own on a console. Start ombra on a "
                                          "desktop for that, or without --display-preview."
                                        : "");
}

/// Pictures and sound, each on a device of its own.
void ProgramOut::keepTogether()
{
    for (const int playback : {preview, program}) {
        SoundOut* sound = m_sounds[static_cast<std::size_t>(playback)].get();
        if (!sound)
            continue;
        const int own = m_screens ? seatMeantFor(playback) : -1;
        const Display::Figures figures =
            own < 0 ? Display::Figures() : m_seats[static_cast<std::size_t>(own)].display->figures();
        const double delay = sound->pictureDelay(figures.isOpen ? figures.rate : 0);
        for (Seat& seat : m_seats) {
            if (seat.display && seat.shows == playback)
                seat.display->setDelay(delay);
        }
        m_notices.set(playback == program ? "sound" : "sound of preview", sound->trouble());
    }
}

} // namespace vantrel::ombra
