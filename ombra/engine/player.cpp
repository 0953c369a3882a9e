#include "ombra/engine/player.h"

#include "ombra/engine/levelgauge.h"
#include "ombra/engine/mix.h"
#include "tarn/media/playenums.h"

#include <algorithm>

namespace vantrel::ombra {

namespace {

// How many decks may still be stopping when another one opens its file: whoever loads faster than files close
// gets the newest alone. A disk that hangs holds up no more than the first few for long.
constexpr std::size_t stoppingAtMost = 3;
constexpr std::size_t hangingAtMost = 30;
constexpr double hangsAfter = 2; // seconds

/// Seconds before its time that a deck is made to follow: it is to be ready two seconds ahead.
constexpr double madeAhead = 6;
constexpr std::size_t followingAtMost = 3; // of media shorter than that
/// Transitions over transitions are mixed whole up to so many media.
constexpr std::ptrdiff_t layersAtMost = 4; // as many as a display paints
constexpr std::size_t shadesAtMost = 64;   // of those that went, and whose black is still seen
/// Progress at which a transition is over, in spite of how its times were rounded.
constexpr double whole = 1 - 1e-6;

void addSound(Sound& to, const Sound& more)
{
    Sound both;
    both.channels = std::max(to.channels, more.channels);
    const auto channels = static_cast<std::size_t>(both.channels);
    both.samples.assign((to.frames() + more.frames()) * channels, 0.0f);
    std::size_t at = 0;
    for (const Sound* sound : {static_cast<const Sound*>(&to), &more}) {
        const auto own = static_cast<std::size_t>(sound->channels);
        for (std::size_t i = 0; i < sound->frames(); ++i, ++at)
            std::copy_n(sound->samples.data() + i * own, own, both.samples.data() + at * channels);
    }
    to = std::move(both);
}

} // namespace

Player::Player(bool blackWhenStopped)
    : m_blackWhenStopped(blackWhenStopped)
{
    m_layers.emplace_back();
}

const std::shared_ptr<Deck>& Player::described() const
{
    return m_next && m_next->seeks ? m_layers.back().deck : deck();
}

void Player::load(std::shared_ptr<Deck> deck, Transition transition, bool inList)
{
    replaceNext({std::move(deck), transition, inList});
    unfollow(0);
    m_news.clear();
}

void Player::seekBy(std::shared_ptr<Deck> deck)
{
    replaceNext({std::move(deck), {}, false, true});
}

/// Meanwhile what is on air neither begins again nor goes off at its end.
void Player::replaceNext(Next next)
{
    if (m_next)
        retire(std::move(m_next->deck));
    else if (onAir())
        m_endActionBefore = onAir()->endAction();
    m_next = std::move(next);
    if (onAir())
        onAir()->setEndAction(EndAction::Pause);
}

bool Player::nextFailed() const
{
    return m_next && m_next->failed;
}

bool Player::dropNext()
{
    if (!m_next)
        return false;
    if (!onAir()) { // black is all there is
        m_next->failed = m_next->inList = false;
        m_next->deck->giveUp();
        return false;
    }
    retire(std::move(m_next->deck));
    m_next.reset();
    onAir()->setEndAction(m_endActionBefore.value_or(EndAction::Pause));
    return true;
}

void Player::setState(SourcePlayState state)
{
    if (m_next && m_next->deck)
        m_next->deck->setState(state);
    const bool plays = state == SourcePlayState::Play;
    if (onAir() && (!m_next || !plays))
        onAir()->setState(state);
    if (state == SourcePlayState::Stop)
        dropBelow(m_layers.size() - 1);
    // What fades out stands still with what comes, and goes on with it; the transition runs out.
    for (std::size_t i = 0; i + 1 < m_layers.size() && (!m_next || !plays); ++i) {
        const std::shared_ptr<Deck>& deck = m_layers[i].deck;
        if (deck && deck->remaining() > 0)
            deck->setState(state);
    }
}

std::shared_ptr<Deck> Player::release()
{
    std::shared_ptr<Deck> deck;
    unfollow(0);
    m_news.clear();
    if (m_next) {
        deck = std::move(m_next->deck);
        m_next.reset();
    } else {
        deck = m_layers.back().deck;
        freeze();
    }
    return deck;
}

/// What is shown stays as it is, for want of its decks.
void Player::freeze()
{
    for (Layer& layer : m_layers) {
        const Moment::Layer seen = shown(layer);
        const bool isGivenAway = &layer == &m_layers.back();
        layer.still = seen.image;
        layer.scaling = seen.scaling;
        layer.transition.seconds = 0;
        if (std::shared_ptr<Deck> deck = std::exchange(layer.deck, nullptr); !isGivenAway)
            retire(std::move(deck));
    }
}

void Player::follow(std::shared_ptr<Deck> deck, Transition transition, bool loops)
{
    deck->hold();
    m_following.push_back({std::move(deck), transition, loops});
}

void Player::unfollow(std::size_t from)
{
    while (m_following.size() > from) {
        retire(std::move(m_following.back().deck));
        m_following.pop_back();
    }
}

bool Player::wantsFollowing() const
{
    if (m_next || !onAir() || !onAir()->landed() || m_following.size() >= followingAtMost)
        return false;
    double ahead = onAir()->endIsUnknown() ? 0 : onAir()->remaining();
    for (const Following& following : m_following)
        ahead += following.deck->length().value_or(madeAhead); // of a medium that is being opened
    return ahead < madeAhead;
}

bool Player::ended() const
{
    return !m_next && m_following.empty() && onAir() && onAir()->atEnd() &&
           onAir()->endAction() == EndAction::Next;
}

Player::Moment Player::advance(double now, double lead)
{
    m_lead = lead;
    m_before = std::exchange(m_now, now);
    Moment moment;
    if (onAir())
        onAir()->setFollowed(isFollowed());
    for (const Layer& layer : m_layers) {
        if (!layer.deck)
            continue;
        layer.deck->advance(now, lead);
        moment.late = moment.late || layer.deck->late();
        moment.missed += layer.deck->missed();
        moment.load = std::max(moment.load, layer.deck->load());
    }
    sound(moment); // of the time before this moment: what was on air
    beginNext();
    prepareFollowing();
    if (m_next && (!m_next->deck || m_next->deck->ready()) && !nextFailed()) {
        goOver(std::move(m_next->deck), m_next->transition, now);
        m_next.reset();
    }
    // One that is shorter than its transitions comes and is followed in the same moment.
    for (std::size_t i = 0; i < followingAtMost && isFollowed(); ++i) {
        const std::optional<double> ago = hasBegunBefore(m_following.front());
        if (!ago)
            break;
        handOver(*ago, moment);
    }
    std::size_t lowest = 0;
    for (std::size_t i = 0; i < m_layers.size(); ++i) {
        Layer& layer = m_layers[i];
        if (layer.transition.seconds > 0)
            layer.progress = std::clamp((now - layer.since) / layer.transition.seconds, 0.0, 1.0);
        if (layer.progress >= whole)
            lowest = i;
    }
    moment.heard = finishSound();
    dropBelow(lowest);
    for (const Layer& layer : m_layers)
        moment.layers.push_back(shown(layer));
    return moment;
}

bool Player::mayOpen() const
{
    const auto stopping = static_cast<std::size_t>(std::ranges::count_if(
        m_retired, [&](const Retired& retired) { return m_now - retired.since < hangsAfter; }));
    return stopping < stoppingAtMost && m_retired.size() < hangingAtMost;
}

void Player::beginNext()
{
    if (!m_next || !m_next->deck)
        return;
    if (mayOpen())
        m_next->deck->begin();
    const SourcePlayState wanted = m_next->deck->state(); // a failure stops it
    m_next->deck->advance(m_now, m_lead);
    if (!m_next->deck->failed())
        return;
    if (!m_next->seeks && wanted == SourcePlayState::Play) {
        m_next->failed = m_next->inList;
        if (!m_next->inList)
            m_next->deck->giveUp();
    }
    if (m_next->seeks && onAir()) {
        onAir()->setEndAction(m_next->deck->endAction());
        onAir()->seek(m_next->deck->target());
        onAir()->setState(wanted);
        retire(std::move(m_next->deck));
        m_next.reset();
    }
}

void Player::goOver(std::shared_ptr<Deck> deck, Transition transition, double since)
{
    const bool timed = transition.type != TakeTransitionType::DirectCut && transition.seconds > 0;
    if (!timed) {
        for (Layer& layer : m_layers)
            retire(std::move(layer.deck));
        m_layers.clear();
    } else if (std::ranges::count_if(m_layers, hasPicture) >= layersAtMost) {
        dropFaintest();
    }
    m_layers.push_back({.deck = std::move(deck),
                        .transition = timed ? transition : Transition(),
                        .since = since,
                        .progress = timed ? 0.0 : 1.0});
}

/// Of too many transitions at once the picture that is seen least goes, and nobody misses it.
void Player::dropFaintest()
{
    auto faintest = m_layers.begin();
    double least = 1, left = 1; // of the whole picture, for what lies below
    for (auto layer = m_layers.end(); layer-- != m_layers.begin();) {
        const MixShares shares =
            layer == m_layers.begin() ? MixShares{0, 1} : mixShares(layer->transition.type, layer->progress);
        if (hasPicture(*layer) && left * shares.to < least) {
            least = left * shares.to;
            faintest = layer;
        }
        left *= shares.from;
    }
    retire(std::exchange(faintest->deck, nullptr));
    faintest->still = nullptr;
    // The black of a dip would go with its picture.
    const bool dips = std::ranges::any_of(m_layers, [](const Layer& one) {
        return one.transition.type == TakeTransitionType::DipToColor && one.progress < whole;
    });
    if (!dips || m_layers.size() >= shadesAtMost)
        m_layers.erase(faintest);
}

bool Player::isFollowed() const
{
    return !m_next && onAir() && !m_following.empty() && m_following.front().deck->prepared();
}

void Player::prepareFollowing()
{
    for (std::size_t i = 0; i < m_following.size();) {
        Deck& deck = *m_following[i].deck;
        if (mayOpen())
            deck.begin();
        deck.advance(m_now, m_lead);
        if (!deck.failed()) {
            ++i;
            continue;
        }
        retire(std::move(m_following[i].deck));
        m_following.erase(m_following.begin() + static_cast<std::ptrdiff_t>(i));
        m_news.push_back({true, i});
    }
}

/// Seconds before the end at which the deck that follows begins: its transition is no longer than the media
/// on both sides of it.
double Player::overlap(const Following& following) const
{
    if (following.transition.type == TakeTransitionType::DirectCut)
        return 0;
    return std::min(
        {following.transition.seconds, onAir()->length().value_or(0), following.deck->length().value_or(0)});
}

/// For how many seconds the first that follows should have been on air by now; nothing while its time has not
/// come.
std::optional<double> Player::hasBegunBefore(const Following& following) const
{
    const Deck& deck = *onAir();
    if (deck.state() != SourcePlayState::Play)
        return std::nullopt;
    if (deck.atEnd())
        return deck.past();
    const double seconds = overlap(following);
    if (seconds <= 0)
        return std::nullopt; // the last picture itself tells
    const double ago = seconds - deck.remaining();
    // Who seeks into the transition's time sees it begin then.
    return ago < -PictureReader::tolerance ? std::nullopt
                                           : std::optional(std::clamp(ago, 0.0, m_now - m_before));
}

void Player::handOver(double ago, Moment& moment)
{
    Following following = std::move(m_following.front());
    m_following.pop_front();
    following.transition.seconds = overlap(following);
    following.deck->release(m_now, ago);
    following.deck->setFollowed(false);
    following.deck->advance(m_now, m_lead);
    const bool isCut = following.transition.seconds <= 0;
    Layer& top = m_layers.back();
    // What follows while a transition is under way comes in with it: the transition goes on.
    const bool isComing = isCut && m_layers.size() > 1;
    if (isCut)
        addSound(moment.sound, isComing
                                   ? mixSound({}, following.deck->sound(), top.transition.type, top.progress)
                                   : following.deck->sound());
    if (isCut)
        m_heard.append(*following.deck, isComing ? mixShares(top.transition.type, top.progress).to : 1);
    else
        m_heard.overlay(*following.deck, 0);
    std::shared_ptr<Deck> before = following.loops ? std::exchange(top.deck, nullptr) : nullptr;
    if (isComing)
        retire(std::exchange(top.deck, std::move(following.deck)));
    else
        goOver(std::move(following.deck), following.transition, m_now - ago);
    if (before) {
        before->seekInpoint();
        before->hold();
        m_following.push_back({std::move(before), following.transition, true});
    } else {
        m_news.push_back({false, 0});
    }
}

void Player::sound(Moment& moment)
{
    const std::vector<double> share = shares();
    m_heard.begin(m_before, m_now);
    for (std::size_t i = 0; i < m_layers.size(); ++i) {
        if (m_layers[i].deck)
            m_heard.add(*m_layers[i].deck, share[i]);
    }
    moment.channels = onAir() ? onAir()->channels() : std::optional(0);
    const Sound silence;
    for (const Layer& layer : m_layers) {
        const Sound& own = layer.deck ? layer.deck->sound() : silence;
        moment.sound = &layer == m_layers.data()
                           ? own
                           : mixSound(moment.sound, own, layer.transition.type, layer.progress);
        if (moment.channels && layer.deck)
            moment.channels = std::max(*moment.channels, layer.deck->channels().value_or(0));
    }
}

/// How much of each layer there is.
std::vector<double> Player::shares() const
{
    std::vector<double> result;
    for (const Layer& layer : m_layers) {
        const MixShares mix =
            &layer == m_layers.data() ? MixShares{0, 1} : mixShares(layer.transition.type, layer.progress);
        for (double& below : result)
            below *= mix.from;
        result.push_back(mix.to);
    }
    return result;
}

/// What was cut off sounds to the end of the moment as it did; the others go over to the shares of now.
HeardMoment Player::finishSound()
{
    const std::vector<double> share = shares();
    for (std::size_t i = 0; i < m_layers.size(); ++i) {
        if (m_layers[i].deck)
            m_heard.setEnd(*m_layers[i].deck, share[i]);
    }
    return m_heard.finish();
}

bool Player::inTransition() const
{
    const Transition& transition = m_next ? m_next->transition : m_layers.back().transition;
    return transition.type != TakeTransitionType::DirectCut && transition.seconds > 0 &&
           (m_next || m_layers.size() > 1);
}

double Player::progress() const
{
    return m_next || m_layers.size() < 2 ? 0 : m_layers.back().progress;
}

/// The transition into that layer is over.
void Player::dropBelow(std::size_t layer)
{
    for (std::size_t i = 0; i < layer; ++i)
        retire(std::move(m_layers[i].deck));
    m_layers.erase(m_layers.begin(), m_layers.begin() + static_cast<std::ptrdiff_t>(layer));
    m_layers.front().transition = {};
    m_layers.front().progress = 1;
}

void Player::retire(std::shared_ptr<Deck> deck)
{
    if (!deck)
        return;
    deck->retire();
    m_retired.push_back({std::move(deck), m_now});
}

std::vector<std::shared_ptr<Deck>> Player::takeRetired()
{
    std::vector<std::shared_ptr<Deck>> stopped;
    std::erase_if(m_retired, [&](Retired& retired) {
        if (retired.deck->idle())
            stopped.push_back(std::move(retired.deck));
        return !retired.deck;
    });
    return stopped;
}

Player::Moment::Layer Player::shown(const Layer& layer) const
{
    const Deck* deck = layer.deck.get();
    const bool isDark = deck && m_blackWhenStopped && deck->state() == SourcePlayState::Stop;
    return {isDark ? nullptr
            : deck ? deck->image()
                   : layer.still,
            deck ? deck->scaling() : layer.scaling, layer.transition.type, layer.progress};
}

} // namespace vantrel::ombra
