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
        , m_still(m_black)
        , m_blackWhenStopped(blackWhenStopped)
    {
    }

    /// The one loaded last, also while the one before it is still on air; null where nothing is loaded.
    const std::shared_ptr<Deck>& deck() const { return m_next ? m_next->deck : m_deck; }
    /// Of the medium that is loaded: the one that knows what it is.
    const std::shared_ptr<Deck>& described() const { return m_next && m_next->seeks ? m_deck : deck(); }
    /// Goes over to a deck, or to black, in so many seconds from the moment at which its first picture is
    /// there; until then what was shown and heard goes on. One that waited before it is dropped.
    void load(std::shared_ptr<Deck> deck, TakeTransitionType type, double seconds);
    /// Cuts to another deck of the same medium, which stands where it was sought. Where it cannot be opened,
    /// the one on air seeks itself.
    void seekBy(std::shared_ptr<Deck> deck);
    /// Of what is on air and of what is to follow; play is for the newest alone.
    void setState(SourcePlayState state);
    /// Gives the deck away; what was shown last stays until the next load.
    std::shared_ptr<Deck> release();

    Moment advance(double now);
    /// What became of the moment: the picture from which a transition starts when there is no deck to go on.
    void setShown(Ref<Surface> surface) { m_shown = std::move(surface); }

    bool inTransition() const { return (m_next ? m_next->type : m_type) != TakeTransitionType::DirectCut; }
    bool waiting() const { return m_next.has_value(); }         // nothing of the deck was shown yet
    double progress() const { return m_next ? 0 : m_progress; } // of the transition, 0 to 1

    /// Decks that are done with and have stopped, to be let go without the lock.
    std::vector<std::shared_ptr<Deck>> takeRetired();

private:
    /// What comes on air as soon as it has a picture.
    struct Next
    {
        std::shared_ptr<Deck> deck; // null: black
        TakeTransitionType type = TakeTransitionType::DirectCut;
        double seconds = 0;
        bool seeks = false; // the medium on air, elsewhere
    };
    struct Retired
    {
        std::shared_ptr<Deck> deck;
        double since; // "now"
    };

    void beginNext(double now);
    void replaceNext(Next next);
    void goOver(double now);
    void sound(Moment& moment) const;
    void endTransition();
    void retire(std::shared_ptr<Deck> deck);
    Ref<Surface> shownNow() const;
    Ref<Surface> surfaceOf(const Deck& deck) const;

    Ref<Surface> m_black;
    Ref<Surface> m_shown;
    Ref<Surface> m_still; // where there is no deck
    bool m_blackWhenStopped;
    std::shared_ptr<Deck> m_deck; // on air
    std::optional<Next> m_next;
    std::shared_ptr<Deck> m_outgoing; // null: m_from stands still
    Ref<Surface> m_from;
    TakeTransitionType m_type = TakeTransitionType::DirectCut;
    double m_seconds = 0;
    double m_startedAt = 0;
    double m_progress = 0;
    double m_now = 0;
    std::vector<Retired> m_retired;
};

} // namespace vantrel::ombra
