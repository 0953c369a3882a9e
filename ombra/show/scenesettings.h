#pragma once

#include "ombra/show/playpositions.h"
#include "tarn/scene/scene.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace vantrel::ombra {

class ShowStore;

/// Keeps the scene's lasting properties and the show's settings in step: puts the saved ones into the scene,
/// and saves each change of the scene. The thread of the scene.
class SceneSettings
{
public:
    /// The sections of a show that stand in the scene.
    static const std::set<std::string>& sections(); // "output", "audio", "playback"
    /// With what lasts and is no part of a show.
    static const std::set<std::string>& all();

    /// What puts a saved picture back: the path of a playback, and a position in its media in seconds.
    using Seek = std::function<void(const std::string& playback, double seconds)>;

    /// written is told of each property that apply() changes, as if a client had written it.
    SceneSettings(Scene& scene, ShowStore& store, std::function<void(Object*, const PropertyInfo*)> written,
                  Seek seek);
    ~SceneSettings();
    SceneSettings(const SceneSettings&) = delete;
    SceneSettings& operator=(const SceneSettings&) = delete;

    /// Puts settings of these sections into the scene. What is not there any more, or does not fit, is passed
    /// over with a log line. A playback that was paused shows its picture again, and one that plays begins at
    /// the position that is given for it.
    void apply(Json settings, const std::set<std::string>& sections, const Positions& playing = {});
    /// Everything that a show has of the scene, as it is now; of an output whose mode waits to be kept, the
    /// one before.
    Json current() const;
    /// The names of the outputs that they are for.
    Json outputs() const;
    /// Those of a show's settings that belong to these sections and can stand in this scene. note: a sentence
    /// where outputs of this machine stand in the place of others.
    Json chosen(const Json& show, const std::set<std::string>& sections, std::string& note) const;
    /// Which of its settings there has a value that no client could write, as a sentence; empty when none
    /// has.
    std::string misfit(const Json& settings, const std::set<std::string>& sections) const;
    /// Plays nothing and sets what belongs to playback and audio to its defaults.
    void resetPlayback();

private:
    void onSceneChange(int count, const SceneChange* changes);
    void save(Object* object, const PropertyInfo* property);
    void followMode(Object* output);
    void collect(const Object* object, Json& out) const;
    const char* sectionAt(std::string_view path) const;
    void applyOne(std::string_view path, const Json& value, const std::set<std::string>& sections);
    bool write(const std::string& path, const Json& value);

    Scene& m_scene;
    ShowStore& m_store;
    std::function<void(Object*, const PropertyInfo*)> m_written;
    Seek m_seek;
    Scene::ChangeCallback m_callback;
    std::map<std::string, Json> m_beforeMode; // of outputs whose mode waits to be kept, by path
};

} // namespace vantrel::ombra
