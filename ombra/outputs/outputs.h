#pragma once

#include "ombra/outputs/videooutput.h"
#include "tarn/json/json.h"
#include "tarn/json/path.h"
#include "tarn/media/channelenums.h"
#include "tarn/scene/scene.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::ombra {

struct Connector;

/// A machine as it is unpacked: every output carries the sound of its picture.
inline constexpr AudioPlaybackDevice initialAudioDevice = AudioPlaybackDevice::Embedded;

/// The outputs of the machine and what they show: one GPU with two outputs, and a channel whose two mappings
/// put the preview on the first and the program on the second. Builds this part of the scene and answers the
/// methods of it. The thread of the scene.
class Outputs
{
public:
    static constexpr int previewMapping = 0, programMapping = 1;
    /// Simulated: with a display each that is made up. Real: without any, until follow() tells of them.
    enum class Kind { Simulated, Real };
    explicit Outputs(Scene& scene, Kind kind = Kind::Simulated);
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

    /// Who gives the machine's connectors their modes; without it they keep what they have.
    void setModeSetter(const VideoOutput::ModeSetter& setter);

    int count() const { return static_cast<int>(m_outputs.size()); }
    VideoOutput& at(int output) { return *m_outputs[static_cast<std::size_t>(output)]; }
    /// The output that a mapping's picture goes to; -1 where it names none.
    int outputOf(int mapping) const;

    /// Takes over what the machine's connectors are: an output keeps its own as long as there is a display;
    /// one without takes a connector that has one and is no other output's. Mappings follow their outputs. In
    /// the order of the machine.
    void follow(const std::vector<Connector>& machine);

    /// Plugs a display with this EDID into a simulated output; an empty text pulls it out.
    bool plug(int output, const std::string& edid, std::string* error);
    /// Of the display that was there on the start.
    static std::string ownEdid(int output);

private:
    VideoOutput* videoOutput(const Object* object) const;
    int outputNamed(const std::string& name) const;
    bool isSeen(const VideoOutput& output) const;
    void resetMappings();
    bool invokeMapping(Object* mapping, const std::string& method, const Json& args, std::string* error);
    bool configure(Object* channel, const Json& args, std::string* error);
    Object* mapping(int index) const;
    std::array<std::string, 2> names() const;
    std::array<int, 2> targets() const;
    void showTargets();
    void targetWritten(int mapping, bool isByClient);

    Scene& m_scene;
    const Kind m_kind;
    std::vector<std::unique_ptr<VideoOutput>> m_outputs;
    std::array<std::string, 2> m_wanted; // the outputs of the mappings
    bool m_isChosen = false;             // by somebody, since the start or the last show
};

} // namespace vantrel::ombra
