#pragma once

#include "ombra/show/playpositions.h"
#include "tarn/json/json.h"

namespace vantrel::ombra {

class CurrentShow;
class SceneSettings;
class ShowFiles;
class ShowStore;

/// What a start goes on with: the show and the play state of program that the configuration names
/// ("autoStartShow", "autoStartPlayState"). Where that show is on already it stays as it was left, with what
/// was not saved: a start may come after a power cut. Another one is loaded, and nothing plays until it is
/// there.
class AutoStart
{
public:
    /// All must outlive this.
    AutoStart(ShowStore& store, SceneSettings& settings, ShowFiles& files, const CurrentShow& current);

    /// Puts what was kept into the scene, and begins, at the positions that are given for what plays.
    void begin(const Positions& playing);

private:
    Json setting(const char* path) const;
    void load(const std::string& name, const Json& left);

    ShowStore& m_store;
    SceneSettings& m_settings;
    ShowFiles& m_files;
    const CurrentShow& m_current;
};

} // namespace vantrel::ombra
