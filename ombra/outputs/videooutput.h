#pragma once

#include "ombra/outputs/connectorchoice.h"
#include "ombra/outputs/displaylink.h"
#include "ombra/outputs/screenfigures.h"
#include "tarn/edid/edid.h"
#include "tarn/json/json.h"
#include "tarn/scene/scene.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::ombra {

/// One video output of the machine: the display at its connector, the modes of that display's EDID or of the
/// one that an operator put in its place, and the mode in force. What it has and does stands in its scene
/// object. The thread of the scene.
class VideoOutput
{
public:
    /// How long a mode that an audience sees waits to be kept, in seconds.
    static constexpr int secondsToKeep = 15;

    /// index: of its object in the scene. edid: of the display that is plugged in, in hexadecimal digits;
    /// nothing for an output of the machine, of which follow() tells.
    VideoOutput(Scene& scene, int index, std::string name, std::optional<std::string> edid);

    const std::string& name() const { return m_name; }
    /// What build() makes an object of.
    Json toJson() const;
    /// To be called once the object is there.
    void start();

    /// The methods of the object. False, with the reason, when nothing was done; the object tells it too.
    /// isSeen: somebody may lose sight of it. The mode then goes back by itself unless it is kept.
    bool invoke(const std::string& method, const Json& args, bool isSeen, std::string* error);
    /// A property was written, by a client or out of a show: the output takes over what it can.
    void propertyWritten(const std::string& property, bool isByClient, bool isSeen);
    /// A display is plugged in, or none is: an empty text. False, with the reason, for an EDID that is none.
    bool plug(const std::string& edid, std::string* error);
    /// It is that connector of the machine from now on, by name, display, modes and mode in force.
    void follow(const Connector& connector);
    /// Who gives a connector of the machine a mode, and answers on this thread, with a sentence where that
    /// was not done.
    using ModeAnswer = std::function<void(const std::string& why)>;
    using ModeSetter =
        std::function<void(const std::string& connector, const VideoTiming& mode, ModeAnswer answer)>;
    void setModeSetter(ModeSetter setter) { m_setMode = std::move(setter); }
    /// What is seen there in fact, in pixels and pictures a second: its mode, where the machine tells of
    /// none.
    void tellPicture(int width, int height, double rate);
    /// The machine has its connector no more, or had none for it.
    void pulled();
    HeldConnector held() const;
    /// Null for one that is simulated, or that the machine does not have.
    const Connector* connector() const { return m_real && !m_real->name.empty() ? &*m_real : nullptr; }
    bool isConnected() const;
    bool hasHadDisplay() const { return m_hasHadDisplay; }
    /// As on the first start.
    void reset();
    /// The same by an operator: where an audience sees it, the mode goes back by itself unless it is kept.
    void resetByClient(bool isSeen);
    /// Counts down to the moment in which a mode that nobody has kept goes back.
    void secondPassed();
    /// The real screen that it is shown on, with what was counted lately. To be called each second.
    void tellScreen(const ScreenFigures& lately);
    /// Whether it is to show which one it is while there is no program.
    bool isIdentified() const;
    void endIdentify();
    int number() const { return m_index + 1; }

private:
    struct Mode
    {
        std::string id;
        VideoTiming timing;
        bool isStandard;
    };
    struct Settings
    {
        std::string modelineId, edidOverride, edidOverrideFilename;
        bool maxLinkRate = false;
        VideoTiming timing;
    };
    using Change = std::function<bool(std::string*)>;

    static constexpr std::string_view displayPrefix = "edid-"; // of a mode that the display itself names

    static std::optional<Edid> edidOf(const std::string& hex);
    Object* object() const;
    bool change(bool isSeen, const Change& act, std::string* error);
    bool selectModeline(const Json& args, std::string* error);
    bool setEdidOverride(const Json& args, std::string* error);
    bool resetEdid(std::string* error);
    bool identify(const Json& args, std::string* error);
    bool take(const std::string& id, bool maxLinkRate, std::string* error);
    void takeUsual(bool maxLinkRate);
    void takeReal();
    bool ask(const Mode& mode, bool maxLinkRate, std::string* error);
    void answered(const std::string& why);
    bool isUnderWayTo(const VideoTiming& timing) const;
    void write(const Settings& settings);
    void apply(const Mode& mode, bool maxLinkRate);
    std::string whyNotTaken(const Mode& mode) const;
    int colorDepth(const VideoTiming& mode) const;
    void readDisplay();
    std::vector<VideoTiming> displayModes() const;
    std::string preferredId() const;
    void showModes();
    void showLink();
    const Mode* find(const std::string& id) const;
    void keep();
    void revert();
    void goBackTo(const Settings& former);
    void tell(const std::string& trouble);
    std::string text(const char* property) const;
    template <typename T>
    void set(const char* property, const T& value);

    Scene& m_scene;
    const int m_index;
    std::string m_name;
    std::optional<Connector> m_real; // of the machine; without a name while it has none for this output
    bool m_hasHadDisplay = false;
    std::string m_displayEdid;  // of what is plugged in; empty for nothing
    std::string m_lastEdid;     // of the display that was there last
    std::optional<Edid> m_edid; // in force
    std::vector<Mode> m_modes;
    Settings m_inForce;
    ModeSetter m_setMode;
    std::optional<Settings> m_asked;      // of the machine, and not answered yet
    std::optional<Settings> m_beforeOurs; // what a real output had before its first mode of ours
    int m_asks = 0;
    std::optional<Settings> m_kept; // what comes back unless the mode is kept
    int m_secondsLeft = 0;
};

} // namespace vantrel::ombra
