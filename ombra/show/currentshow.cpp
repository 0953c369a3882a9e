#include "ombra/show/currentshow.h"

#include "ombra/base/asidethread.h"
#include "ombra/show/scenesettings.h"
#include "ombra/show/showdifference.h"
#include "ombra/show/showstore.h"

#include <chrono>

namespace vantrel::ombra {

CurrentShow::CurrentShow(boost::asio::io_context& io, Scene& scene, ShowStore& store,
                         const SceneSettings& settings)
    : m_scene(scene)
    , m_store(store)
    , m_settings(settings)
    , m_name(store.settings().get(namePath).stringView())
    , m_savedLibrary(MediaLibrary().toJson())
    , m_soon(io)
{
    if (m_name.empty())
        m_name = unnamed;
    write("showName", Variant::from(m_name));
    m_store.addLibraryListener([this](const ShowStore::Difference&, bool) { touch(); });
    m_store.setSettingsListener([this] { touch(); });
}

void CurrentShow::setSaved(const std::string& name, const Json& library, const Json& settings)
{
    m_name = name;
    replaceAside(m_savedLibrary, library);
    m_savedSettings = settings;
    write("showName", Variant::from(m_name));
    compare();
}

/// Many changes of one moment are looked at once.
void CurrentShow::touch()
{
    constexpr auto pause = std::chrono::milliseconds(200);
    if (std::exchange(m_isTouched, true))
        return;
    m_soon.expires_after(pause);
    m_soon.async_wait([this](boost::system::error_code code) {
        if (!code)
            compare();
    });
}

void CurrentShow::compare()
{
    m_isTouched = false;
    const ShowDifference difference(m_store.library().toJson(), m_savedLibrary, m_settings.current(),
                                    m_savedSettings, true);
    m_isModified = difference.isAny();
    write("showModified", Variant::from(m_isModified));
    if (m_isModified && m_modifiedListener)
        m_modifiedListener();
}

void CurrentShow::write(const char* property, const Variant& value)
{
    Object* configuration = m_scene.findObject("/device/showConfiguration");
    const PropertyInfo* info = configuration ? configuration->findProperty(property) : nullptr;
    if (info && configuration->setProperty(info, value))
        m_scene.notifyPropertyChange(configuration, info, value);
}

} // namespace vantrel::ombra
