#include "ombra/engine/player.h"

#include "ombra/engine/levelgauge.h"
#include "tarn/media/playenums.h"

#include <algorithm>

namespace vantrel::ombra {

void Player::load(std::shared_ptr<Deck> deck, TakeTransitionType type, double seconds)
{
    const bool timed = type != TakeTransitionType::DirectCut && seconds > 0;
    std::shared_ptr<Deck> before = std::move(m_deck);
    // A second transition starts from the mixture that is on air; only a whole deck can play on.
    const bool playsOn = timed && before && !inTransition() && !m_waiting;
    endTransition();
    if (playsOn)
        m_outgoing = before;
    else if (before)
        m_retired.push_back(before);
    if (m_outgoing)
        m_outgoing->setEndAction(EndAction::Pause); // its list goes on with the new one
    m_from = m_shown;
    m_deck = std::move(deck);
    m_waiting = true;
    m_type = timed ? type : TakeTransitionType::DirectCut;
    m_seconds = timed ? seconds : 0;
    m_progress = 0;
}

std::shared_ptr<Deck> Player::release()
{
    std::shared_ptr<Deck> deck = std::move(m_deck);
    m_deck = nullptr;
    return deck;
}

Player::Moment Player::advance(double now)
{
    if (m_deck)
        m_deck->advance(now);
    if (m_outgoing)
        m_outgoing->advance(now);
    if (m_waiting && (!m_deck || m_deck->landed())) {
        m_waiting = false;
        m_startedAt = now;
    }
    Moment moment;
    moment.late = (m_deck && m_deck->late()) || (m_outgoing && m_outgoing->late());
    const Ref<Surface> from = m_outgoing ? surfaceOf(*m_outgoing) : m_from;
    if (m_waiting) {
        moment.to = from;
        sound(moment);
        return moment;
    }
    moment.to = m_deck ? surfaceOf(*m_deck) : m_black;
    if (inTransition()) {
        moment.from = from;
        moment.type = m_type;
        moment.weight = m_progress = std::clamp((now - m_startedAt) / m_seconds, 0.0, 1.0);
    }
    sound(moment);
    if (m_progress >= 1)
        endTransition();
    return moment;
}

/// What is heard of both decks; before the first picture of the new one that is the old one alone.
void Player::sound(Moment& moment) const
{
    const Sound silence;
    const Sound& to = m_deck ? m_deck->sound() : silence;
    const Sound& from = m_outgoing ? m_outgoing->sound() : silence;
    if (m_waiting) {
        moment.sound = from;
        moment.channels = m_outgoing ? m_outgoing->channels() : std::nullopt;
        return;
    }
    moment.channels = m_deck ? m_deck->channels() : std::optional(0);
    if (!moment.from) {
        moment.sound = to;
        return;
    }
    moment.sound = mixSound(from, to, moment.type, moment.weight);
    if (moment.channels && m_outgoing)
        moment.channels = std::max(*moment.channels, m_outgoing->channels().value_or(0));
}

void Player::endTransition()
{
    if (m_outgoing)
        m_retired.push_back(std::move(m_outgoing));
    m_outgoing = nullptr;
    m_from = nullptr;
    m_type = TakeTransitionType::DirectCut;
    m_progress = 0;
}

Ref<Surface> Player::surfaceOf(const Deck& deck) const
{
    const bool hidden = m_blackWhenStopped && deck.state() == SourcePlayState::Stop;
    return hidden || !deck.surface() ? m_black : deck.surface();
}

} // namespace vantrel::ombra
