#pragma once

#include "tarn/scene/scene.h"

#include <functional>
#include <set>
#include <string>

namespace vantrel::ombra {

class ShowStore;

/// Keeps the scene's lasting properties and the show's settings in step: puts the saved ones into the scene,
/// and saves each change of the scene. The thread of the scene.
class SceneSettings
{
public:
    /// The sections of a show that stand in the scene.
    static const std::set<std::string>& sections(); // "output", "audio", "playback"

    /// written is told of each property that apply() changes, as if a client had written it.
    SceneSettings(Scene& scene, ShowStore& store, std::function<void(Object*, const PropertyInfo*)> written);
    ~SceneSettings();
    SceneSettings(const SceneSettings&) = delete;
    SceneSettings& operator=(const SceneSettings&) = delete;

    /// Puts settings of these sections into the scene. What is not there any more, or does not fit, is passed
    /// over with a log line.
    void apply(Json settings, const std::set<std::string>& sections);
    /// Everything that lasts, as the scene has it now.
    Json current() const;
    /// Plays nothing and sets what belongs to playback and audio to its defaults.
    void resetPlayback();

private:
    void onSceneChange(int count, const SceneChange* changes);
    void collect(const Object* object, Json& out) const;
    bool write(const std::string& path, const Json& value);

    Scene& m_scene;
    ShowStore& m_store;
    std::function<void(Object*, const PropertyInfo*)> m_written;
    Scene::ChangeCallback m_callback;
};

} // namespace vantrel::ombra
