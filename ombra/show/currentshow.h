#pragma once

#include "tarn/json/json.h"
#include "tarn/scene/scene.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <string>
#include <utility>

namespace vantrel::ombra {

class SceneSettings;
class ShowStore;

/// The name of the show that is on, and whether it differs from what was saved under that name: both stand in
/// the scene ("showName" and "showModified" of the showConfiguration). The thread of the scene.
class CurrentShow
{
public:
    /// Of a show that has no name yet; the application calls the one that is on by it, whatever its name.
    static constexpr const char* unnamed = "default";
    static constexpr const char* namePath = "/device/showConfiguration/properties/showName";

    CurrentShow(boost::asio::io_context& io, Scene& scene, ShowStore& store, const SceneSettings& settings);

    const std::string& name() const noexcept { return m_name; }
    /// What is saved under the name: a show's library and settings. An empty library where nothing is.
    void setSaved(const std::string& name, const Json& library, const Json& settings);
    const Json& savedLibrary() const noexcept { return m_savedLibrary; }

    bool isModified() const noexcept { return m_isModified; }
    /// Called whenever the show was looked at and found to differ from what is saved.
    void setModifiedListener(std::function<void()> listener) { m_modifiedListener = std::move(listener); }

private:
    void touch();
    void compare();
    void write(const char* property, const Variant& value);

    Scene& m_scene;
    ShowStore& m_store;
    const SceneSettings& m_settings;
    std::string m_name;
    Json m_savedLibrary, m_savedSettings;
    boost::asio::steady_timer m_soon;
    bool m_isTouched = false;
    bool m_isModified = false;
    std::function<void()> m_modifiedListener;
};

} // namespace vantrel::ombra
