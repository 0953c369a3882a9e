#pragma once

#include "tarn/json/json.h"
#include "tarn/json/path.h"
#include "tarn/media/channelenums.h"
#include "tarn/scene/scene.h"

#include <optional>
#include <string>

namespace vantrel::ombra {

struct VideoMode;

/// A machine as it is unpacked: every output carries the sound of its picture.
inline constexpr AudioPlaybackDevice initialAudioDevice = AudioPlaybackDevice::Embedded;

/// The outputs of the machine and what they show: one GPU with two outputs, and a channel whose two mappings
/// put the preview on the first and the program on the second. Builds this part of the scene, answers the
/// methods of it, and keeps an output's timing in step with the mode that is chosen. The thread of the scene.
class Outputs
{
public:
    explicit Outputs(Scene& scene)
        : m_scene(scene)
    {
    }

    /// Puts the channel and the outputs into a new scene.
    void build();

    /// A method of this part of the scene: nothing when it is none; else whether it was done, with the reason
    /// in error.
    std::optional<bool> invoke(PathView methodPath, const Json& args, std::string* error);

    /// A property was written: an output takes over the mode that its modelineId names, and a write of a mode
    /// that it does not have is undone.
    void propertyWritten(Object* object, const PropertyInfo* property);

    /// All outputs and mappings as on the first start.
    void reset();

private:
    bool invokeOutput(Object* output, const std::string& method, const Json& args, std::string* error);
    bool invokeMapping(Object* mapping, const std::string& method, const Json& args, std::string* error);
    bool configure(Object* channel, const Json& args, std::string* error);
    bool selectMode(Object* output, const std::string& id, std::string* error);
    void applyMode(Object* output, const VideoMode& mode);
    std::string text(const Object* object, const char* property) const;
    template <typename T>
    void set(Object* object, const char* property, const T& value);

    Scene& m_scene;
};

} // namespace vantrel::ombra
