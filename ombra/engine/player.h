#pragma once

#include "ombra/engine/deck.h"
#include "tarn/media/playenums.h"

#include <memory>
#include <vector>

namespace vantrel::ombra {

/// What one output shows: a deck, and during a transition the one before it. Used under the engine's lock.
class Player
{
public:
    /// What is to be mixed for a moment.
    struct Moment
    {
        Ref<Surface> from; // null without a transition
        Ref<Surface> to;
        TakeTransitionType type = TakeTransitionType::DirectCut;
        double weight = 1;
        Sound sound;                 // mixed, of the time since the moment before
        std::optional<int> channels; // of what plays; nothing while that is not known
        bool late = false;           // a picture of it was not decoded in time
    };

    /// Shows black where a deck is stopped, or else its first picture.
    Player(Ref<Surface> black, bool blackWhenStopped)
        : m_black(std::move(black))
        , m_shown(m_black)
        , m_blackWhenStopped(blackWhenStopped)
    {
    }

    const std::shared_ptr<Deck>& deck() const { return m_deck; } // null: nothing is loaded
    /// Goes over to a deck, or to black, in so many seconds from the moment at which its first picture is
    /// there; until then what was shown goes on.
    void load(std::shared_ptr<Deck> deck, TakeTransitionType type, double seconds);
    /// Gives the deck away; what it showed last stays until the next load.
    std::shared_ptr<Deck> release();

    Moment advance(double now);
    /// What became of the moment: the picture from which a transition starts when there is no deck to go on.
    void setShown(Ref<Surface> surface) { m_shown = std::move(surface); }

    bool inTransition() const { return m_type != TakeTransitionType::DirectCut; }
    bool waiting() const { return m_waiting; }     // nothing of the deck was shown yet
    double progress() const { return m_progress; } // of the transition, 0 to 1

    /// Decks that are done with, to be let go where waiting for their threads holds nobody up.
    std::vector<std::shared_ptr<Deck>> takeRetired() { return std::exchange(m_retired, {}); }

private:
    void sound(Moment& moment) const;
    void endTransition();
    Ref<Surface> surfaceOf(const Deck& deck) const;

    Ref<Surface> m_black;
    Ref<Surface> m_shown;
    bool m_blackWhenStopped;
    std::shared_ptr<Deck> m_deck;
    std::shared_ptr<Deck> m_outgoing; // null: m_from stands still
    Ref<Surface> m_from;
    bool m_waiting = false; // for the deck's first picture
    TakeTransitionType m_type = TakeTransitionType::DirectCut;
    double m_seconds = 0;
    double m_startedAt = 0;
    double m_progress = 0;
    std::vector<std::shared_ptr<Deck>> m_retired;
};

} // namespace vantrel::ombra
