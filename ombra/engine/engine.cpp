#include "ombra/engine/engine.h"

#include "ombra/engine/channel.h"
#include "ombra/engine/librarysource.h"
#include "ombra/engine/mixer.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/medialibrary.h"
#include "tarn/scene/scene.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <atomic>

namespace vantrel::ombra {

namespace {

constexpr const char* channelsPath = "/device/channels";
constexpr const char* outputsPath = "/device/system/gpus/0/outputs";

/// The place below /device/channels that a path names.
struct Place
{
    long long channel = -1;
    std::string child;  // "preview", "program", or empty for the channel itself
    std::string method; // empty for a path without one
};

bool parsePlace(PathView path, Place& out)
{
    if (path.size() < 3 || path[0].text() != "device" || path[1].text() != "channels" ||
        !path[2].parseIndex(&out.channel))
        return false;
    PathView rest = path.from(3);
    if (!rest.empty() && rest[0].text() != "methods") {
        out.child = rest[0].text();
        rest = rest.from(1);
    }
    if (rest.size() == 2 && rest[0].text() == "methods")
        out.method = rest[1].text();
    else if (!rest.empty())
        return false;
    return true;
}

} // namespace

class Engine::Impl
{
public:
    Impl(boost::asio::io_context& io, Scene& scene, MediaLibrary& library, EngineConfig config)
        : m_io(io)
        , m_scene(scene)
        , m_source(library)
        , m_studio{m_source, std::move(config.mediaFolder),
                   Canvas{.width = config.previewWidth, .height = config.previewWidth * 9 / 16},
                   [this] { m_mixer.wake(); }, std::move(config.open)}
        , m_mixer(m_studio.lock, config.framesPerSecond, [this] { schedulePublish(); })
    {
        addChannels();
        m_mixer.start();
    }

    ~Impl() { m_mixer.stop(); }

    Mixer& mixer() { return m_mixer; }

    bool invoke(PathView methodPath, const Json& args, std::string* error)
    {
        Place place;
        if (!parsePlace(methodPath, place) || place.method.empty())
            return refuse(methodPath, error);
        Channel* channel = channelAt(place.channel);
        if (!channel)
            return refuse(methodPath, error);
        bool done = false;
        if (Playback* playback = playbackOf(*channel, place.child)) {
            if (place.method == "selectAudioDevice")
                return selectAudioDevice(*playback, args, error);
            done = playback->invoke(place.method, args, error);
        } else if (place.child.empty() && place.method == "take") {
            done = channel->take(args, error);
        } else {
            return refuse(methodPath, error);
        }
        if (done)
            publish(); // clients see the new media and state before the first picture
        return done;
    }

    void propertyWritten(Object* object, const PropertyInfo* property)
    {
        Path path;
        Place place;
        Variant value;
        if (!object || !property || !m_scene.pathOf(object, path) || !parsePlace(path, place) ||
            !object->getProperty(property, value))
            return;
        Channel* channel = channelAt(place.channel);
        Playback* playback = channel ? playbackOf(*channel, place.child) : nullptr;
        if (!playback)
            return;
        if (property->name == "state") {
            SourcePlayState state;
            if (readEnum(value, state))
                playback->setState(state);
        } else if (property->name == "endAction") {
            EndAction action;
            if (readEnum(value, action))
                playback->setEndAction(action);
        } else if (property->name == "media") {
            playback->setMedia(value.asString());
        } else {
            playback->followSound(*object);
        }
        publish(); // also puts right what a client may not write
    }

    void libraryChanged(bool isAnotherShow)
    {
        if (isAnotherShow)
            m_source.noteAnotherShow();
        else
            m_source.noteEdit();
        for (const std::unique_ptr<Channel>& channel : m_channels) {
            channel->preview().libraryChanged();
            channel->program().libraryChanged();
        }
        publish();
    }

private:
    template <typename T>
    static bool readEnum(const Variant& value, T& out)
    {
        if (value.type() == VariantType::String)
            return fromStr(value.asString(), out);
        out = value.as<T>();
        return true;
    }

    static bool refuse(PathView path, std::string* error)
    {
        if (error)
            *error = "there is nothing to invoke at '" + path.toString() + "'";
        return false;
    }

    static Playback* playbackOf(Channel& channel, const std::string& child)
    {
        return child == "preview" ? &channel.preview() : child == "program" ? &channel.program() : nullptr;
    }

    Channel* channelAt(long long index)
    {
        addChannels();
        const bool known = index >= 0 && index < static_cast<long long>(m_channels.size());
        return known ? m_channels[static_cast<std::size_t>(index)].get() : nullptr;
    }

    void addChannels()
    {
        const auto* array = dynamic_cast<ObjectArray*>(m_scene.findObject(channelsPath));
        const std::size_t count = array ? static_cast<std::size_t>(array->size()) : 0;
        while (m_channels.size() < count) {
            const std::string path = std::string(channelsPath) + '/' + std::to_string(m_channels.size());
            m_channels.push_back(std::make_unique<Channel>(m_studio, path));
            followSound(m_channels.back()->preview());
            followSound(m_channels.back()->program());
            m_mixer.add(m_channels.back()->preview());
            m_mixer.add(m_channels.back()->program());
        }
    }

    void followSound(Playback& playback)
    {
        if (const Object* object = m_scene.findObject(playback.path()))
            playback.followSound(*object);
    }

    /// The canvas of a channel's playback: its mapping (the first is preview's, the second program's) has the
    /// scaling and names the output.
    Canvas outputOf(std::size_t channel, int mapping) const
    {
        Canvas canvas = m_studio.canvas;
        const Object* at = m_scene.findObject(std::string(channelsPath) + '/' + std::to_string(channel) +
                                              "/mappings/" + std::to_string(mapping));
        Variant scaling, target;
        if (!at || !at->getProperty("defaultScaleMode", scaling) || !at->getProperty("target", target))
            return canvas;
        canvas.scaling = scaling.as<ScaleMode>();
        const Object* outputs = m_scene.findObject(outputsPath);
        for (int i = 0; outputs && i < outputs->childCount(); ++i) {
            Variant name, width, height;
            const Object* output = outputs->childAt(i);
            if (!output->getProperty("name", name) || name.asString() != target.asString() ||
                !output->getProperty("width", width) || !output->getProperty("height", height))
                continue;
            if (width.as<int>() > 0 && height.as<int>() > 0) {
                canvas.outputWidth = width.as<int>();
                canvas.outputHeight = height.as<int>();
            }
        }
        return canvas;
    }

    bool selectAudioDevice(Playback& playback, const Json& args, std::string* error)
    {
        const Json* device = args.find("device");
        AudioPlaybackDevice value;
        if (!device || !device->isString() || !fromStr(device->stringView(), value)) {
            if (error)
                *error = "the argument 'device' must name an audio device";
            return false;
        }
        m_scene.replaceProperty(m_scene.find(playback.path() + "/properties/audioDevice"),
                                Variant::from(value));
        followSound(playback);
        return true;
    }

    /// On the mixing thread. One publication at a time waits: a busy thread gets the newest values, not all.
    void schedulePublish()
    {
        if (m_scheduled.exchange(true))
            return;
        boost::asio::post(m_io, [this, alive = std::weak_ptr<bool>(m_alive)] {
            if (!alive.lock())
                return;
            m_scheduled = false;
            publish();
        });
    }

    void publish()
    {
        addChannels();
        for (std::size_t i = 0; i < m_channels.size(); ++i) {
            m_channels[i]->preview().setOutput(outputOf(i, 0));
            m_channels[i]->program().setOutput(outputOf(i, 1));
            m_channels[i]->preview().publish(m_scene);
            m_channels[i]->program().publish(m_scene);
        }
    }

    boost::asio::io_context& m_io;
    Scene& m_scene;
    LibrarySource m_source;
    Studio m_studio;
    std::atomic<bool> m_scheduled{false};
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    Mixer m_mixer;                                    // stopped before anything goes
    std::vector<std::unique_ptr<Channel>> m_channels; // their decks wake the mixer to the last
};

Engine::Engine(boost::asio::io_context& io, Scene& scene, MediaLibrary& library, EngineConfig config)
    : m_impl(std::make_unique<Impl>(io, scene, library, std::move(config)))
{
}

Engine::~Engine() = default;

void Engine::setPreviewSink(std::function<void(PreviewFrame)> sink, std::function<bool()> isWanted)
{
    m_impl->mixer().previews().setSink(std::move(sink), std::move(isWanted));
}

void Engine::setLevelSink(std::function<void(PreviewLevels)> sink)
{
    m_impl->mixer().setLevelSink(std::move(sink));
}

void Engine::setMomentSink(MomentSink sink)
{
    m_impl->mixer().setMomentSink([sink = std::move(sink)](const Playback& playback, ShownMoment moment) {
        sink(playback.path(), std::move(moment));
    });
}

void Engine::setSoundSink(SoundSink sink)
{
    m_impl->mixer().setSoundSink([sink = std::move(sink)](const Playback& playback, HeardMoment moment) {
        sink(playback.path(), std::move(moment));
    });
}

void Engine::hurry()
{
    m_impl->mixer().wake();
}

void Engine::pace(std::chrono::steady_clock::time_point moment)
{
    m_impl->mixer().pace(moment);
}

bool Engine::invoke(PathView methodPath, const Json& args, std::string* error)
{
    return m_impl->invoke(methodPath, args, error);
}

void Engine::propertyWritten(Object* object, const PropertyInfo* property)
{
    m_impl->propertyWritten(object, property);
}

void Engine::libraryChanged(bool isAnotherShow)
{
    m_impl->libraryChanged(isAnotherShow);
}

} // namespace vantrel::ombra
