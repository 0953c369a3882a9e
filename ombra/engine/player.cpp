#include "ombra/engine/player.h"

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
    const Ref<Surface> from = m_outgoing ? surfaceOf(*m_outgoing) : m_from;
    if (m_waiting)
        return {nullptr, from, TakeTransitionType::DirectCut, 1};
    const Ref<Surface> to = m_deck ? surfaceOf(*m_deck) : m_black;
    if (!inTransition())
        return {nullptr, to, TakeTransitionType::DirectCut, 1};
    m_progress = std::clamp((now - m_startedAt) / m_seconds, 0.0, 1.0);
    const Moment moment{from, to, m_type, m_progress};
    if (m_progress >= 1)
        endTransition();
    return moment;
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
