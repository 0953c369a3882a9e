#pragma once

#include "tarn/json/json.h"

#include <filesystem>
#include <functional>
#include <string>

namespace vantrel::ombra {

class Outputs;
class SceneSettings;
class ShowStore;

/// Whole shows: exported to and imported from a show file, saved under a name and taken back, cleared. The
/// thread of the scene.
class ShowFiles
{
public:
    static constexpr std::int64_t formatVersion = 1;

    ShowFiles(ShowStore& store, SceneSettings& settings, Outputs& outputs, std::filesystem::path stateFolder);

    /// The show as a file's content.
    std::string exportShow() const;

    using Done = std::function<void(unsigned httpStatus, const std::string& message)>;
    /// Takes over sections of a show file: names out of "output", "audio", "playback" and "medialibrary" with
    /// commas between, none meaning all. 400 for what is no show file or section, 409 for one of another
    /// version unless forced, 413 when its library is too large, 422 when it is not valid, 507 when the disk
    /// takes nothing.
    void importShow(const std::string& file, const std::string& include, bool forced, Done done);

    /// The methods of the scene's showConfiguration: "saveShow", "revertShow", "clearShow". False, with the
    /// reason, when that failed.
    bool invoke(const std::string& method, const Json& args, std::string* error);

private:
    bool saveShow(const std::string& name, std::string* error);
    bool revertShow(const std::string& name, std::string* error);
    void clearShow();
    std::filesystem::path pathOf(const std::string& name) const;

    ShowStore& m_store;
    SceneSettings& m_settings;
    Outputs& m_outputs;
    std::filesystem::path m_folder;
};

} // namespace vantrel::ombra
