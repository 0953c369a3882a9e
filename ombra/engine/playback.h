#pragma once

#include "ombra/engine/latewatch.h"
#include "ombra/engine/player.h"
#include "ombra/engine/runningorder.h"
#include "ombra/engine/slotsource.h"
#include "tarn/json/json.h"
#include "tarn/media/playenums.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>

namespace vantrel {
class Object;
class Scene;
} // namespace vantrel

namespace vantrel::ombra {

/// What the playbacks of an engine share.
struct Studio
{
    const SlotSource& source;
    std::filesystem::path mediaFolder;
    Canvas canvas;              // of a playback without an output of its own
    std::function<void()> wake; // the mixing thread; called from any thread, also under the lock
    PictureOpener open = openReader;
    std::mutex lock{}; // guards all players and decks
};

/// One of the two playbacks of a channel as clients see it: what is loaded, and the methods and properties.
/// The io_context's thread, but for player(), which the mixing thread uses under the studio's lock.
///
/// A stopped playback waits at the in point; program is black meanwhile, preview shows the picture. A seek or
/// a step turns stop into pause. Slots have no end action of their own: loading one turns "next" into
/// "pause". At the end of a list "next" pauses on the last picture; media that do not play are passed over in
/// a list and stop elsewhere. What comes next is opened ahead, and made anew when an edit changes it.
class Playback
{
public:
    Playback(Studio& studio, std::string path, bool isProgram);

    /// A client's call; false, and a message, when there is no such method or argument.
    bool invoke(std::string_view method, const Json& args, std::string* error);
    /// A client's writes.
    void setState(SourcePlayState state);
    void setEndAction(EndAction action);
    void setMedia(const std::string& url);
    /// As loud as the properties volume, muted and audioDevice say.
    void followSound(const Object& object);
    /// How previews are made of its pictures, and the scaling of media that say none of their own.
    void setOutput(const Canvas& output);

    /// Follows the newest edit of the library.
    void libraryChanged();
    /// Goes on after an end, and writes into the scene what has changed.
    void publish(Scene& scene);

    const std::string& path() const { return m_path; }
    Player& player() { return m_player; }
    const Loaded& loaded() const { return m_loaded; }

    // Of the mixing thread, under the studio's lock.
    double gain() const { return m_gain; } // amplitude
    const Canvas& output() const { return m_output; }
    LateWatch& lateWatch() { return m_lateWatch; }

    // For a take, under the studio's lock.
    /// Takes notice of what the player did by itself; true where it did something. Before anything that is
    /// done with what is loaded.
    bool sync();
    void setLoaded(Loaded loaded);
    std::shared_ptr<Deck> makeDeck(const Loaded& loaded, std::optional<double> position,
                                   SourcePlayState state) const;
    void beginTake() { m_taking = true; }
    ScaleMode scalingOf(const Loaded& loaded) const;

private:
    bool playMedia(const std::string& url, std::string* error);
    void load(const std::string& url, std::optional<MediaItem> item, SourcePlayState state);
    void load(Loaded loaded, SourcePlayState state, bool transition);
    /// To the next or the previous slot or entry; false when there is none.
    bool move(int direction);
    Player::Transition transitionInto(const Loaded& loaded) const;
    void passOver();
    void extendPlan();
    void revisePlan();
    SourcePlayState state() const;
    void update(MediaItem item);
    void adopt(MediaItem item);
    void loadAnew();
    void seekTo(double position);
    std::string nextInList() const;
    void tellWhetherItKeepsUp(bool constrained);
    void publishProgress(Scene& scene, Object& object, double progress);

    Studio& m_studio;
    const std::string m_path;
    const bool m_isProgram;
    /// What the player has as to follow.
    struct Planned
    {
        Loaded loaded;
        bool loops = false;
    };

    RunningOrder m_order;
    Loaded m_loaded;
    Loaded m_onAir; // while the player waits for what is loaded
    std::deque<Planned> m_plan;
    bool m_planIsWhole = false; // nothing comes after it
    int m_direction = 1;        // of the move that loaded it
    Player m_player;
    Canvas m_output;
    double m_gain = 0;
    LateWatch m_lateWatch;
    bool m_isConstrained = false; // said
    bool m_taking = false;
    double m_progress = 0; // published
};

} // namespace vantrel::ombra
