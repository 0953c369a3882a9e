#include "ombra/engine/playback.h"

#include "ombra/base/fail.h"
#include "tarn/log/log.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"
#include "tarn/scene/scene.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vantrel::ombra {

namespace {

bool numberArgument(const Json& args, const char* name, double& out, std::string* error)
{
    const Json* value = args.find(name);
    if (!value || !value->isNumber() || !std::isfinite(value->asDouble()))
        return fail(error, std::string("the argument '") + name + "' must be a number");
    out = value->asDouble();
    return true;
}

bool textArgument(const Json& args, const char* name, std::string& out, std::string* error)
{
    const Json* value = args.find(name);
    if (!value || !value->isString())
        return fail(error, std::string("the argument '") + name + "' must be a text");
    out = value->asString();
    return true;
}

/// Writes a property and tells the scene's listeners, where the value differs.
void put(Scene& scene, Object& object, const char* name, const Variant& value)
{
    const PropertyInfo* property = object.findProperty(name);
    Variant present;
    if (property && object.getProperty(property, present) && !(present == value) &&
        object.setProperty(property, value))
        scene.notifyPropertyChange(&object, property, value);
}

/// A time on a whole nanosecond, and never a hair below it: clients cut it to nanoseconds and then to
/// pictures, and would show the picture before.
double wholeNanoseconds(double seconds)
{
    constexpr double unit = 1e9;
    if (!(std::abs(seconds) < 1e6))
        return seconds;
    const double count = std::round(seconds * unit);
    double result = count / unit;
    while (std::trunc(unit * result) < count)
        result = std::nextafter(result, std::numeric_limits<double>::infinity());
    return result;
}

} // namespace

Playback::Playback(Studio& studio, std::string path, bool isProgram)
    : m_studio(studio)
    , m_path(std::move(path))
    , m_isProgram(isProgram)
    , m_order(studio.source)
    , m_player(isProgram)
    , m_output(studio.canvas)
{
}

bool Playback::invoke(std::string_view method, const Json& args, std::string* error)
{
    double number = 0;
    std::string text;
    if (method == "playMedia")
        return textArgument(args, "mediaUrl", text, error) && playMedia(text, error);
    if (method == "nextMedia" || method == "prevMedia") {
        move(method == "nextMedia" ? 1 : -1);
        return true;
    }
    if (method == "seekMedia" && !numberArgument(args, "mediaPosition", number, error))
        return false;
    if (method == "seekMedia" && number < 0)
        return fail(error, "there is no position before 0");
    if (method == "step" && !numberArgument(args, "frameCount", number, error))
        return false;
    if (method != "seekMedia" && method != "step" && method != "seekInpoint" && method != "seekOutpoint")
        return fail(error, "a playback has no method '" + std::string(method) + "'");

    const std::lock_guard lock(m_studio.lock);
    sync();
    const std::shared_ptr<Deck>& deck = m_player.deck();
    if (!deck || !m_loaded.item)
        return true;
    if (method == "seekMedia")
        seekTo(number);
    else if (method == "step")
        deck->step(static_cast<int>(std::clamp(number, -1e6, 1e6)));
    else if (method == "seekInpoint")
        seekTo(m_loaded.item->inpoint);
    else
        deck->seekOutpoint();
    return true;
}

/// What plays goes on until the picture sought is there, by a second deck.
void Playback::seekTo(double position)
{
    Deck& deck = *m_player.deck();
    const bool plays = deck.state() == SourcePlayState::Play && deck.landed() && !m_player.waiting();
    if (plays && !deck.holds(position))
        m_player.seekBy(makeDeck(m_loaded, deck.seekable(position), SourcePlayState::Play));
    else
        deck.seek(position);
    m_studio.wake();
}

void Playback::setState(SourcePlayState state)
{
    const std::lock_guard lock(m_studio.lock);
    sync();
    m_player.setState(state);
    m_studio.wake();
}

void Playback::setEndAction(EndAction action)
{
    const std::lock_guard lock(m_studio.lock);
    sync();
    m_loaded.endAction = action;
    if (m_player.deck())
        m_player.deck()->setEndAction(action);
    revisePlan();
}

void Playback::setMedia(const std::string& url)
{
    std::optional<MediaItem> item = m_studio.source.resolve(url);
    if (!item && !url.empty())
        Log::write_fmt(LogLevel::Warning, {}, "vantrel.engine", "There is no media '%s' to show on %s",
                       url.c_str(), m_path.c_str());
    load(url, std::move(item), SourcePlayState::Play);
}

void Playback::followSound(const Object& object)
{
    Variant volume, muted, device;
    if (!object.getProperty("volume", volume) || !object.getProperty("muted", muted) ||
        !object.getProperty("audioDevice", device))
        return;
    const bool silent = muted.as<bool>() || device.as<AudioPlaybackDevice>() == AudioPlaybackDevice::Off;
    const std::lock_guard lock(m_studio.lock);
    m_gain = silent ? 0 : std::clamp(volume.as<double>(), 0.0, 1.0);
}

void Playback::setOutput(const Canvas& output)
{
    if (output == m_output)
        return;
    const std::lock_guard lock(m_studio.lock);
    sync();
    m_output = output;
    if (m_player.deck())
        m_player.deck()->setScaling(scalingOf(m_loaded));
    revisePlan();
}

ScaleMode Playback::scalingOf(const Loaded& loaded) const
{
    const bool hasItsOwn = loaded.item && loaded.item->scaling != ScaleMode::Default;
    return hasItsOwn ? loaded.item->scaling : m_output.scaling;
}

bool Playback::playMedia(const std::string& url, std::string* error)
{
    std::optional<MediaItem> item = m_studio.source.resolve(url);
    if (!item)
        return fail(error, "there is no media '" + url + "'");
    load(url, std::move(item), SourcePlayState::Play);
    return true;
}

void Playback::load(const std::string& url, std::optional<MediaItem> item, SourcePlayState state)
{
    m_order.forgetFailures();
    m_direction = 1;
    load(m_order.load(url, std::move(item), m_loaded.endAction), state, false);
}

void Playback::load(Loaded loaded, SourcePlayState state, bool transition)
{
    std::shared_ptr<Deck> deck = makeDeck(loaded, std::nullopt, state);
    const bool inList = loaded.item && loaded.item->mode == SourceMode::Playlist;
    const std::lock_guard lock(m_studio.lock);
    sync();
    m_taking = false;
    const Player::Transition into = transition ? transitionInto(loaded) : Player::Transition();
    setLoaded(std::move(loaded));
    m_player.load(std::move(deck), into, inList);
    m_studio.wake();
}

void Playback::setLoaded(Loaded loaded)
{
    if (!m_player.loading())
        m_onAir = std::move(m_loaded);
    m_loaded = std::move(loaded);
    m_plan.clear();
    m_planIsWhole = false;
}

Player::Transition Playback::transitionInto(const Loaded& loaded) const
{
    const bool mixes = loaded.item && loaded.item->mode == SourceMode::Playlist;
    return mixes ? Player::Transition{loaded.item->transition, loaded.item->transitionDuration}
                 : Player::Transition();
}

std::shared_ptr<Deck> Playback::makeDeck(const Loaded& loaded, std::optional<double> position,
                                         SourcePlayState state) const
{
    if (!loaded.item)
        return nullptr;
    // Its own threads ask the disk where it lies: one that hangs must not hold up anything else.
    MediaSource source{{}, loaded.item->sequence, m_studio.mediaFolder, loaded.item->contentUrl};
    return std::make_shared<Deck>(std::move(source), *loaded.item, loaded.endAction, scalingOf(loaded),
                                  position, state, m_studio.wake, m_studio.open);
}

bool Playback::move(int direction)
{
    SourcePlayState now = SourcePlayState::Pause;
    {
        const std::lock_guard lock(m_studio.lock);
        sync();
        if (m_loaded.item)
            now = m_player.deck() ? m_player.deck()->state() : SourcePlayState::Stop;
    }
    m_order.forgetFailures();
    std::optional<Loaded> loaded = m_order.beside(m_loaded, direction);
    if (!loaded)
        return false;
    m_direction = direction;
    load(std::move(*loaded), now, direction > 0 && now == SourcePlayState::Play);
    return true;
}

/// What was loaded does not play: the one behind it instead, or else what was on air before goes on.
void Playback::passOver()
{
    m_order.noteFailure(m_loaded);
    std::optional<Loaded> loaded = m_order.beside(m_loaded, m_direction);
    Log::write_fmt(LogLevel::Warning, {}, "vantrel.engine",
                   loaded ? "'%s' cannot be played on %s and is passed over"
                          : "'%s' cannot be played on %s, nor can what comes after it: the picture stays",
                   m_loaded.url.c_str(), m_path.c_str());
    if (loaded) {
        load(std::move(*loaded), SourcePlayState::Play, m_direction > 0);
        return;
    }
    const std::lock_guard lock(m_studio.lock);
    if (m_player.dropNext()) {
        m_loaded = std::move(m_onAir);
        m_planIsWhole = false;
    }
}

bool Playback::sync()
{
    const std::vector<Player::News> news = m_player.takeNews();
    for (const Player::News& one : news) {
        const auto at = m_plan.begin() + static_cast<std::ptrdiff_t>(one.index);
        if (one.failed) {
            m_order.noteFailure(at->loaded);
            Log::write_fmt(LogLevel::Warning, {}, "vantrel.engine",
                           "'%s' cannot be played on %s and is passed over", at->loaded.url.c_str(),
                           m_path.c_str());
        } else {
            m_loaded = std::move(at->loaded);
            m_taking = false;
        }
        m_plan.erase(at);
    }
    m_planIsWhole = m_planIsWhole && news.empty();
    return !news.empty();
}

/// Has one more opened to follow, where its time is near.
void Playback::extendPlan()
{
    Planned next;
    {
        const std::lock_guard lock(m_studio.lock);
        sync();
        if (m_planIsWhole || !m_player.wantsFollowing())
            return;
        const Loaded& last = m_plan.empty() ? m_loaded : m_plan.back().loaded;
        std::optional<Loaded> after = m_order.after(last);
        m_planIsWhole = !after;
        if (!after)
            return;
        next = {std::move(*after), last.endAction == EndAction::Repeat};
    }
    std::shared_ptr<Deck> deck = makeDeck(next.loaded, std::nullopt, SourcePlayState::Play);
    const std::lock_guard lock(m_studio.lock);
    if (sync() || !m_player.wantsFollowing())
        return; // it may not be the next one any more
    m_player.follow(std::move(deck), next.loops ? Player::Transition() : transitionInto(next.loaded),
                    next.loops);
    m_plan.push_back(std::move(next));
}

/// Under the lock: keeps of what is to follow what still does, as it is to be played now.
void Playback::revisePlan()
{
    m_planIsWhole = false;
    const Loaded* last = &m_loaded;
    for (std::size_t i = 0; i < m_plan.size(); ++i) {
        const bool loops = last->endAction == EndAction::Repeat;
        std::optional<Loaded> after = m_order.after(*last);
        if (!after || loops != m_plan[i].loops || !isSameMedium(after->item, m_plan[i].loaded.item)) {
            m_player.unfollow(i);
            m_plan.resize(i);
            break;
        }
        m_plan[i].loaded = std::move(*after);
        last = &m_plan[i].loaded;
    }
    m_player.forFollowing([this, i = std::size_t(0)](Deck& deck, Player::Transition& transition) mutable {
        const Planned& planned = m_plan[i++];
        deck.setScaling(scalingOf(planned.loaded));
        deck.setItem(*planned.loaded.item);
        deck.setEndAction(planned.loaded.endAction);
        transition = planned.loops ? Player::Transition() : transitionInto(planned.loaded);
    });
}

void Playback::libraryChanged()
{
    if (m_loaded.url.empty())
        return;
    {
        const std::lock_guard lock(m_studio.lock);
        sync();
    }
    std::optional<MediaItem> item;
    if (m_onAir.item)
        m_order.followEdit(m_onAir, item);
    if (m_order.followEdit(m_loaded, item))
        update(std::move(*item));
    else if (m_loaded.item && (m_loaded.held || (m_isProgram && state() != SourcePlayState::Stop)))
        m_loaded.held = true;
    else if (item != m_loaded.item) {
        const bool stays = item && m_loaded.item;
        load(m_loaded.url, std::move(item), stays ? state() : SourcePlayState::Stop);
    }
    const std::lock_guard lock(m_studio.lock);
    if (sync() && m_loaded.item) // went on in between: followed like what was on air before
        m_order.followEdit(m_loaded, item);
    revisePlan();
}

/// The same medium with other settings.
void Playback::update(MediaItem item)
{
    if (item == m_loaded.item)
        return;
    const bool hasCome = item.playable && !m_loaded.item->playable;
    {
        const std::lock_guard lock(m_studio.lock);
        adopt(std::move(item));
        const std::shared_ptr<Deck>& deck = m_player.deck();
        if (!hasCome || !deck || !deck->failed())
            return;
    }
    loadAnew();
}

/// What could not be opened is there now: it goes on as if it had been.
void Playback::loadAnew()
{
    std::optional<double> position;
    SourcePlayState state = SourcePlayState::Stop;
    {
        const std::lock_guard lock(m_studio.lock);
        const Deck& before = *m_player.deck();
        state = before.waitsToPlay() ? SourcePlayState::Play : before.state();
        position = before.target();
    }
    std::shared_ptr<Deck> deck = makeDeck(m_loaded, position, state);
    const bool inList = m_loaded.item->mode == SourceMode::Playlist;
    const std::lock_guard lock(m_studio.lock);
    if (!m_player.loading())
        m_onAir = m_loaded; // itself, as it failed
    m_plan.clear();
    m_planIsWhole = false;
    m_player.load(std::move(deck), {}, inList);
    m_studio.wake();
}

/// Under the lock.
void Playback::adopt(MediaItem item)
{
    if (item.mode == SourceMode::Playlist && item.endAction != m_loaded.item->endAction)
        m_loaded.endAction = item.endAction;
    m_loaded.item = std::move(item);
    if (const std::shared_ptr<Deck>& deck = m_player.deck()) {
        deck->setScaling(scalingOf(m_loaded));
        deck->setItem(*m_loaded.item);
        deck->setEndAction(m_loaded.endAction);
    }
}

SourcePlayState Playback::state() const
{
    const std::lock_guard lock(m_studio.lock);
    return m_player.deck() ? m_player.deck()->state() : SourcePlayState::Stop;
}

void Playback::tellWhetherItKeepsUp(bool constrained)
{
    if (constrained == std::exchange(m_isConstrained, constrained))
        return;
    const std::string side = m_path.substr(m_path.rfind('/') + 1);
    if (constrained)
        Log::write(LogLevel::Warning, "vantrel.engine",
                   "decoding of " + m_loaded.url + " does not keep up: " + side +
                       " shows its last picture for longer");
    else
        Log::write(LogLevel::Info, "vantrel.engine", "decoding for " + side + " keeps up again");
}

void Playback::publish(Scene& scene)
{
    bool failed = false;
    {
        const std::lock_guard lock(m_studio.lock);
        failed = m_player.nextFailed();
    }
    if (failed)
        passOver();
    extendPlan();

    PictureFeed::Status status;
    SourcePlayState state = SourcePlayState::Stop;
    double position = 0, outpoint = 0, duration = 0, progress = 0;
    bool constrained = false, waits = false;
    {
        const std::lock_guard lock(m_studio.lock);
        sync();
        if (m_planIsWhole && m_player.ended()) { // on the last picture
            if (m_player.deck()->failed())
                m_player.deck()->giveUp();
            else
                m_player.setState(SourcePlayState::Pause);
        }
        if (const std::shared_ptr<Deck>& deck = m_player.deck()) {
            const Deck& medium = *m_player.described();
            state = deck->state();
            waits = deck->waitsToPlay();
            position = m_player.waiting() ? deck->target() : deck->position();
            status = medium.status();
            outpoint = medium.outpoint();
            duration = medium.duration();
        }
        constrained = m_lateWatch.constrained();
        m_taking = m_taking && m_player.inTransition();
        progress = m_taking ? m_player.progress() : 0;
    }
    tellWhetherItKeepsUp(constrained);
    Object* object = scene.findObject(m_path);
    if (!object)
        return;
    const Ref<Object> keep(object);
    const std::optional<MediaItem>& item = m_loaded.item;
    const bool named = !m_loaded.held;
    // First, so that nobody sees neither of the two.
    put(scene, *object, "heldMedia", Variant::from(named ? std::string() : item->contentUrl));
    put(scene, *object, "media", Variant::from(named ? m_loaded.url : std::string()));
    put(scene, *object, "nextMedia", Variant::from(nextInList()));
    put(scene, *object, "sourceMode", Variant::from(item && named ? item->mode : SourceMode::None));
    put(scene, *object, "endAction", Variant::from(m_loaded.endAction));
    put(scene, *object, "waitsToPlay", Variant::from(waits)); // before the state, which is kept by it
    put(scene, *object, "state", Variant::from(state));
    put(scene, *object, "inpoint", Variant::from(item ? item->inpoint : 0.0));
    put(scene, *object, "outpoint", Variant::from(outpoint));
    put(scene, *object, "duration", Variant::from(duration));
    put(scene, *object, "fps", Variant::from(status.fps));
    put(scene, *object, "mediaPosition", Variant::from(wholeNanoseconds(position)));
    put(scene, *object, "resourceConstrained", Variant::from(constrained));
    publishProgress(scene, *object, progress);
}

std::string Playback::nextInList() const
{
    if (!m_loaded.item || m_loaded.item->mode != SourceMode::Playlist)
        return {};
    return m_order.expectedAfter(m_loaded);
}

/// A transition always ends at 1 before it goes back to 0, also when no picture fell on its last moment.
void Playback::publishProgress(Scene& scene, Object& object, double progress)
{
    const bool ends = progress == 0 && m_progress > 0 && m_progress < 1;
    m_progress = ends ? 1 : progress;
    put(scene, object, "takeProgress", Variant::from(m_progress));
}

} // namespace vantrel::ombra
