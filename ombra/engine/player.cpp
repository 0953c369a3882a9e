#include "ombra/engine/player.h"

#include "ombra/engine/levelgauge.h"
#include "tarn/media/playenums.h"

#include <algorithm>

namespace vantrel::ombra {

namespace {

// How many decks may still be stopping when another one opens its file: whoever loads faster than files close
// gets the newest alone. A disk that hangs holds up no more than the first few for long.
constexpr std::size_t stoppingAtMost = 3;
constexpr std::size_t hangingAtMost = 30;
constexpr double hangsAfter = 2; // seconds

} // namespace

void Player::load(std::shared_ptr<Deck> deck, TakeTransitionType type, double seconds)
{
    const bool timed = type != TakeTransitionType::DirectCut && seconds > 0;
    replaceNext({std::move(deck), timed ? type : TakeTransitionType::DirectCut, timed ? seconds : 0});
    if (m_deck)
        m_deck->setEndAction(EndAction::Pause); // its list goes on with the new one
}

void Player::seekBy(std::shared_ptr<Deck> deck)
{
    replaceNext({std::move(deck), TakeTransitionType::DirectCut, 0, true});
    m_deck->setEndAction(EndAction::Pause); // it ends for the other one
}

void Player::replaceNext(Next next)
{
    if (m_next)
        retire(std::move(m_next->deck));
    m_next = std::move(next);
}

void Player::setState(SourcePlayState state)
{
    if (m_next && m_next->deck)
        m_next->deck->setState(state);
    if (m_deck && (!m_next || state != SourcePlayState::Play))
        m_deck->setState(state);
}

std::shared_ptr<Deck> Player::release()
{
    m_still = m_shown;
    if (!m_next)
        return std::exchange(m_deck, nullptr);
    std::shared_ptr<Deck> deck = std::move(m_next->deck);
    m_next.reset();
    return deck;
}

Player::Moment Player::advance(double now)
{
    m_now = now;
    if (m_deck)
        m_deck->advance(now);
    if (m_outgoing)
        m_outgoing->advance(now);
    Moment moment;
    moment.late = (m_deck && m_deck->late()) || (m_outgoing && m_outgoing->late());
    sound(moment); // of the time before this moment: what was on air
    beginNext(now);
    if (m_next && (!m_next->deck || m_next->deck->ready()))
        goOver(now);
    moment.to = shownNow();
    if (m_type != TakeTransitionType::DirectCut) {
        moment.from = m_outgoing ? surfaceOf(*m_outgoing) : m_from;
        moment.type = m_type;
        moment.weight = m_progress = std::clamp((now - m_startedAt) / m_seconds, 0.0, 1.0);
    }
    if (m_progress >= 1)
        endTransition();
    return moment;
}

void Player::beginNext(double now)
{
    if (!m_next || !m_next->deck)
        return;
    const auto stopping = static_cast<std::size_t>(std::ranges::count_if(
        m_retired, [&](const Retired& retired) { return now - retired.since < hangsAfter; }));
    if (stopping < stoppingAtMost && m_retired.size() < hangingAtMost)
        m_next->deck->begin();
    const SourcePlayState wanted = m_next->deck->state(); // a failure stops it
    m_next->deck->advance(now);
    if (m_next->seeks && m_next->deck->failed() && m_deck) {
        m_deck->setEndAction(m_next->deck->endAction());
        m_deck->seek(m_next->deck->target());
        m_deck->setState(wanted);
        retire(std::move(m_next->deck));
        m_next.reset();
    }
}

/// The first picture is there.
void Player::goOver(double now)
{
    // A second transition starts from the mixture that is on air; only a whole deck can play on.
    const bool mixing = m_type != TakeTransitionType::DirectCut;
    const bool timed = m_next->type != TakeTransitionType::DirectCut;
    endTransition();
    if (timed && m_deck && !mixing)
        m_outgoing = std::move(m_deck);
    else if (timed)
        m_from = m_shown;
    if (m_deck)
        retire(std::move(m_deck));
    m_deck = std::move(m_next->deck);
    m_type = m_next->type;
    m_seconds = m_next->seconds;
    m_startedAt = now;
    m_next.reset();
    m_still = m_black;
}

void Player::sound(Moment& moment) const
{
    const Sound silence;
    const Sound& to = m_deck ? m_deck->sound() : silence;
    moment.channels = m_deck ? m_deck->channels() : std::optional(0);
    if (m_type == TakeTransitionType::DirectCut) {
        moment.sound = to;
        return;
    }
    moment.sound = mixSound(m_outgoing ? m_outgoing->sound() : silence, to, m_type, m_progress);
    if (moment.channels && m_outgoing)
        moment.channels = std::max(*moment.channels, m_outgoing->channels().value_or(0));
}

void Player::endTransition()
{
    if (m_outgoing)
        retire(std::move(m_outgoing));
    m_outgoing = nullptr;
    m_from = nullptr;
    m_type = TakeTransitionType::DirectCut;
    m_progress = 0;
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

Ref<Surface> Player::shownNow() const
{
    return m_deck ? surfaceOf(*m_deck) : m_still;
}

Ref<Surface> Player::surfaceOf(const Deck& deck) const
{
    const bool hidden = m_blackWhenStopped && deck.state() == SourcePlayState::Stop;
    return hidden || !deck.surface() ? m_black : deck.surface();
}

} // namespace vantrel::ombra
