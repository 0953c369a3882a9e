#pragma once

#include "ombra/decode/picturereader.h"
#include "ombra/engine/heardmoment.h"
#include "ombra/engine/shownmoment.h"
#include "tarn/json/json.h"
#include "tarn/json/path.h"
#include "tarn/preview/audiolevels.h"
#include "tarn/preview/frame.h"
#include "tarn/ref.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace boost::asio {
class io_context;
}

namespace vantrel {
class MediaLibrary;
class Object;
class Scene;
struct PropertyInfo;
} // namespace vantrel

namespace vantrel::ombra {

/// How loud a playback was since the levels before.
struct PreviewLevels
{
    std::string source; // path of the playback, "/device/channels/0/preview"
    int stream = 0;
    long long timeNs = 0; // nanoseconds since 1970
    AudioLevels levels;
};

struct EngineConfig
{
    std::filesystem::path mediaFolder;
    int previewWidth = 480; // pixels; pictures are 16:9
    int framesPerSecond = 25;
    PictureOpener open = openReader;
};

/// Plays the library's media on the scene's channels and publishes what happens into the scene. Made, used
/// and destroyed on the io_context's thread; decoding and mixing run on threads of its own.
class Engine
{
public:
    Engine(boost::asio::io_context& io, Scene& scene, MediaLibrary& library, EngineConfig config);
    /// Stops and joins all threads; the sink is not called afterwards.
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    /// Called on a thread of the engine's: at every new picture, and a few times a second while nothing
    /// changes, as long as anybody wants them. Pictures are 24-bit RGB, EngineConfig::previewWidth wide,
    /// their time is nanoseconds since 1970. A surface may be shared with later pictures: never write into
    /// it.
    void setPreviewSink(std::function<void(PreviewFrame)> sink, std::function<bool()> isWanted = {});
    /// The same for the sound, on the mixing thread: with every picture's time in which the levels changed,
    /// and a few times a second.
    void setLevelSink(std::function<void(PreviewLevels)> sink);

    /// A display that is about to show the picture of this moment (pace) gets what it is, program or preview,
    /// on the mixing thread. Without that word for a while the engine goes on by itself.
    using MomentSink = std::function<void(const std::string& playback, ShownMoment)>;
    void setMomentSink(MomentSink sink);
    void pace(std::chrono::steady_clock::time_point moment); // any thread

    /// Who plays the sound of the playbacks, program or preview: moment after moment, on the mixing thread.
    /// Where he runs out of it before the next one he asks for that (hurry).
    using SoundSink = std::function<void(const std::string& playback, HeardMoment)>;
    void setSoundSink(SoundSink sink);
    void hurry(); // any thread

    /// A method of a channel or of a playback that a client invoked, "/device/channels/0/methods/take".
    /// False, and a message for the client, when there is no such object, method or argument.
    bool invoke(PathView methodPath, const Json& args, std::string* error);

    /// A client wrote a property that the scene holds already: state, media, endAction, volume, muted or
    /// audioDevice of a playback, or one of an output that decides how pictures stand in it. Everything else
    /// is ignored.
    void propertyWritten(Object* object, const PropertyInfo* property);

    /// The library changed: players take over new in and out points, end actions and durations, and follow
    /// what was moved, but not in the library of another show: nothing in that was moved from this one. What
    /// is on air plays on when the library has it no more; preview loses it.
    void libraryChanged(bool isAnotherShow = false);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantrel::ombra
