#include "ombra/engine/channel.h"

#include "tarn/media/enumtext.h"
#include "tarn/media/playenums.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

namespace {

constexpr double longestTransition = 60; // seconds

struct TakeOptions
{
    bool presetToggle = true;
    PlayheadOption playheadOption = PlayheadOption::FromInpoint;
    TakeTransitionType transitionType = TakeTransitionType::Crossfade;
    double transitionDuration = 0; // seconds
};

template <typename T>
bool readText(const Json& args, const char* name, T& out)
{
    const Json* value = args.find(name);
    return !value || (value->isString() && fromStr(value->stringView(), out));
}

/// The name of the argument that is wrong, or null.
const char* readOptions(const Json& args, TakeOptions& out)
{
    const Json* toggle = args.find("presetToggle");
    if (toggle && toggle->type() != JsonType::Bool)
        return "presetToggle";
    out.presetToggle = !toggle || toggle->asBool();
    if (!readText(args, "playheadOption", out.playheadOption))
        return "playheadOption";
    if (!readText(args, "transitionType", out.transitionType))
        return "transitionType";
    const Json* duration = args.find("transitionDuration");
    if (duration && (!duration->isNumber() || duration->asDouble() < 0))
        return "transitionDuration";
    out.transitionDuration = duration ? std::min(duration->asDouble(), longestTransition) : 0;
    return nullptr;
}

std::optional<double> positionOf(const Player& player)
{
    const Deck* deck = player.deck().get();
    if (!deck)
        return std::nullopt;
    return player.waiting() ? deck->target() : deck->position();
}

} // namespace

bool Channel::take(const Json& args, std::string* error)
{
    TakeOptions options;
    const char* wrong = readOptions(args, options);
    if (!wrong && !m_preview.loaded().item)
        wrong = "preview";
    if (wrong) {
        if (error)
            *error = std::string("a take needs a valid '") + wrong + "'";
        return false;
    }

    const std::lock_guard lock(m_studio.lock);
    m_preview.sync();
    m_program.sync();
    const bool fromInpoint = options.playheadOption == PlayheadOption::FromInpoint;
    const auto keep = [&](Playback& playback) {
        return fromInpoint ? std::nullopt : positionOf(playback.player());
    };
    const Loaded cued = m_preview.loaded();
    const Loaded onAir = m_program.loaded();
    const std::optional<double> onAirAt = keep(m_program);
    std::shared_ptr<Deck> deck;
    if (!options.presetToggle) {
        deck = m_program.makeDeck(cued, keep(m_preview), SourcePlayState::Play);
    } else if ((deck = m_preview.player().release())) {
        // The very deck goes over, so that a playing preview runs on without a break.
        if (fromInpoint)
            deck->seekInpoint();
        deck->setState(SourcePlayState::Play);
        deck->setScaling(m_program.scalingOf(cued));
    }
    m_program.setLoaded(cued);
    m_program.player().load(std::move(deck), {options.transitionType, options.transitionDuration},
                            cued.item->mode == SourceMode::Playlist);
    m_program.beginTake();
    if (options.presetToggle) {
        m_preview.setLoaded(onAir);
        m_preview.player().load(m_preview.makeDeck(onAir, onAirAt, SourcePlayState::Pause), {});
    }
    m_studio.wake();
    return true;
}

} // namespace vantrel::ombra
