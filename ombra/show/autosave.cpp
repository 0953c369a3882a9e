#include "ombra/show/autosave.h"

#include "ombra/show/currentshow.h"
#include "ombra/show/showfiles.h"
#include "ombra/show/showstore.h"

#include <utility>

namespace vantrel::ombra {

namespace {

constexpr std::chrono::seconds pause{1};  // many edits are saved once
constexpr std::chrono::seconds again{30}; // after what may have failed
constexpr const char* path = "/device/showConfiguration/properties/autoSave";

} // namespace

AutoSave::AutoSave(boost::asio::io_context& io, ShowFiles& files, CurrentShow& current, ShowStore& store)
    : m_files(files)
    , m_current(current)
    , m_store(store)
    , m_timer(io)
{
    m_current.setModifiedListener([this] {
        if (!std::exchange(m_isSoon, true))
            wait(pause);
    });
}

void AutoSave::wait(std::chrono::seconds time)
{
    m_timer.expires_after(time);
    m_timer.async_wait([this](boost::system::error_code code) {
        if (!code)
            saveWhatDiffers();
    });
}

void AutoSave::saveWhatDiffers()
{
    m_isSoon = false;
    if (!isWanted())
        return;
    std::string ignored; // what comes to nothing is told
    m_files.invoke("saveShow", Json::object({{"showName", CurrentShow::unnamed}}), &ignored);
    wait(again);
}

bool AutoSave::isWanted() const
{
    const MediaLibrary& library = m_store.library();
    return m_store.settings().get(path).asBool() && m_current.isModified() &&
           !(library.getCollections().empty() && library.getPlaylists().empty());
}

} // namespace vantrel::ombra
