#pragma once

#include "ombra/outputs/screenfigures.h"
#include "tarn/json/json.h"
#include "tarn/json/path.h"
#include "tarn/media/channelenums.h"
#include "tarn/scene/scene.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::ombra {

class VideoOutput;

/// A machine as it is unpacked: every output carries the sound of its picture.
inline constexpr AudioPlaybackDevice initialAudioDevice = AudioPlaybackDevice::Embedded;

/// The outputs of the machine and what they show: one GPU with two outputs, and a channel whose two mappings
/// put the preview on the first and the program on the second. Builds this part of the scene and answers the
/// methods of it. The thread of the scene.
class Outputs
{
public:
    explicit Outputs(Scene& scene);
    ~Outputs();

    /// Puts the channel and the outputs into a new scene.
    void build();

    /// A method of this part of the scene: nothing when it is none; else whether it was done, with the reason
    /// in error.
    std::optional<bool> invoke(PathView methodPath, const Json& args, std::string* error);

    /// A property was written: an output takes over the mode and the EDID that it names. In the place of a
    /// mode that it cannot take it has the usual one; an EDID that is none is undone, and so is a target that
    /// is no output. Of a target that the other mapping has, the two change places. isByClient: and not out
    /// of a show, which is as it was meant.
    void propertyWritten(const Object* object, const PropertyInfo* property, bool isByClient);

    /// All outputs and mappings as on the first start, as it is meant; a client's mode on air waits to be
    /// kept.
    void reset();

    /// To be called each second: a mode on air that nobody keeps goes back.
    void secondPassed();

    /// To be called each second where there is a screen: it stands in the scene with the output of the
    /// program.
    void tellScreen(const ScreenFigures& figures);

    /// The output of the program, where it is to show which one it is; null otherwise.
    const VideoOutput* identified() const;
    /// No output does any more.
    void endIdentify();

    /// Plugs a display with this EDID into an output; an empty text pulls it out.
    bool plug(int output, const std::string& edid, std::string* error);
    /// Of the display that was there on the start.
    static std::string ownEdid(int output);

private:
    VideoOutput* outputOf(const Object* object) const;
    bool isOnAir(const VideoOutput& output) const;
    void resetMappings();
    void settleTargets(const Object* written);
    bool invokeMapping(Object* mapping, const std::string& method, const Json& args, std::string* error);
    bool configure(Object* channel, const Json& args, std::string* error);

    Scene& m_scene;
    std::vector<std::unique_ptr<VideoOutput>> m_outputs;
    LastMinute m_dropped, m_late;
};

} // namespace vantrel::ombra
