#include "ombra/show/autostart.h"

#include "ombra/show/currentshow.h"
#include "ombra/show/scenesettings.h"
#include "ombra/show/showfiles.h"
#include "ombra/show/showstore.h"
#include "tarn/media/playenums.h"

#include <array>
#include <string>

namespace vantrel::ombra {

namespace {

constexpr const char* showPath = "/device/showConfiguration/properties/autoStartShow";
constexpr const char* playStatePath = "/device/showConfiguration/properties/autoStartPlayState";
constexpr const char* autoSavePath = "/device/showConfiguration/properties/autoSave";
constexpr const char* programMedia = "/device/channels/0/program/properties/media";
constexpr const char* programState = "/device/channels/0/program/properties/state";
constexpr const char* previewState = "/device/channels/0/preview/properties/state";

} // namespace

AutoStart::AutoStart(ShowStore& store, SceneSettings& settings, ShowFiles& files, const CurrentShow& current)
    : m_store(store)
    , m_settings(settings)
    , m_files(files)
    , m_current(current)
{
}

Json AutoStart::setting(const char* path) const
{
    return m_store.settings().get(path);
}

void AutoStart::begin(const Positions& playing)
{
    const std::string name(setting(showPath).stringView());
    const bool isAnother = !name.empty() && name != CurrentShow::unnamed && name != m_current.name();
    Json left = m_store.settings();
    const Json playState = setting(playStatePath);
    if (!playState.stringView().empty() && !setting(programMedia).stringView().empty())
        left.set(programState, playState);
    Json first = left;
    if (isAnother) {
        for (const char* path : {programState, previewState})
            first.set(path, toStr(SourcePlayState::Stop));
    }
    m_settings.apply(first, SceneSettings::all(), isAnother ? Positions() : playing);
    if (isAnother)
        load(name, left);
}

/// How the server starts is not for the show to say that it starts with.
void AutoStart::load(const std::string& name, const Json& left)
{
    Json instead = Json::object();
    for (const char* path : {showPath, playStatePath, autoSavePath}) {
        if (const Json value = setting(path); !value.isNull())
            instead.set(path, value);
    }
    if (const Json playState = setting(playStatePath); !playState.stringView().empty())
        instead.set(programState, playState);
    m_files.startWith(name, instead, [this, left](const ShowFiles::Outcome& outcome) {
        if (outcome.status == 200)
            return;
        Json states = Json::object();
        for (const char* path : {programState, previewState}) {
            if (const Json state = left.get(path); !state.isNull())
                states.set(path, state);
        }
        m_settings.apply(states, SceneSettings::sections());
    });
}

} // namespace vantrel::ombra
