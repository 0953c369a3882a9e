#pragma once

#include "tarn/json/json.h"
#include "tarn/media/medialibrary.h"

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

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

    /// The show as it is now, and as a file's content.
    Json show() const;
    static std::string textOf(const Json& show);

    /// What the content of a file holds. Any thread.
    struct Reading
    {
        Json show;
        MediaLibrary library;
        std::string whyNoShow; // empty for a show
        std::string whyNoLibrary;
    };
    static Reading read(const std::string& file);

    using Done = std::function<void(unsigned httpStatus, const std::string& message)>;
    /// Takes over sections of a show file: names out of "output", "audio", "playback" and "medialibrary" with
    /// commas between, none meaning all. 400 for what is no show file or section, 409 for one of another
    /// version unless forced, 413 when its library is too large, 422 when it is not valid, 507 when the disk
    /// takes nothing.
    void importShow(const Reading& file, const std::string& include, bool forced, Done done);

    /// Called with a sentence when something that was invoked comes to nothing, and with none when it worked.
    void setTroubleListener(std::function<void(const std::string& sentence)> listener)
    {
        m_trouble = std::move(listener);
    }

    /// The methods of the scene's showConfiguration: "saveShow", "revertShow", "clearShow". False, with the
    /// reason, when that failed.
    bool invoke(const std::string& method, const Json& args, std::string* error);

private:
    bool saveShow(const std::string& name, std::string* error);
    bool revertShow(const std::string& name, std::string* error);
    void clearShow();
    void tell(const std::string& sentence) const;
    std::filesystem::path pathOf(const std::string& name) const;

    ShowStore& m_store;
    SceneSettings& m_settings;
    Outputs& m_outputs;
    std::filesystem::path m_folder;
    std::function<void(const std::string& sentence)> m_trouble;
};

} // namespace vantrel::ombra
