#pragma once

#include "ombra/engine/deck.h"
#include "ombra/engine/soundlayers.h"
#include "tarn/media/playenums.h"

#include <deque>
#include <memory>
#include <vector>

namespace vantrel::ombra {

/// What one output shows: a deck, during transitions those below it, and the decks that wait to follow it.
/// Used under the engine's lock.
class Player
{
public:
    /// What is to be mixed for a moment.
    struct Moment
    {
        struct Layer
        {
            Ref<DecodedPicture> image; // null: nothing is there
            ScaleMode scaling = ScaleMode::Fit;
            TakeTransitionType type = TakeTransitionType::DirectCut; // over the mixture of those below
            double weight = 1;
            friend bool operator==(const Layer&, const Layer&) = default;
        };
        std::vector<Layer> layers;   // the lowest first; at least one
        Sound sound;                 // mixed, of the time since the moment before
        HeardMoment heard;           // the same, not mixed yet; without its gain and its time
        std::optional<int> channels; // of what plays; nothing while that is not known
        bool late = false;           // a picture of it was not decoded in time
        int missed = 0;              // pictures that came due and were not decoded by then
        double load = 0;             // of the deck whose decoding takes most of its time

        const Ref<DecodedPicture>& to() const { return layers.back().image; }
    };
    /// How a deck comes on air.
    struct Transition
    {
        TakeTransitionType type = TakeTransitionType::DirectCut;
        double seconds = 0;
    };
    /// What became of the decks that were to follow, in the order in which it happened.
    struct News
    {
        bool failed = false;   // it will never play and was dropped; otherwise it is on air
        std::size_t index = 0; // among those that were to follow then
    };

    /// Shows black where a deck is stopped, or else its first picture.
    explicit Player(bool blackWhenStopped);

    /// The one loaded last, also while the one before it is still on air; null where nothing is loaded.
    const std::shared_ptr<Deck>& deck() const { return m_next ? m_next->deck : m_layers.back().deck; }
    /// Of the medium that is loaded: the one that knows what it is.
    const std::shared_ptr<Deck>& described() const;
    /// Goes over to a deck, or to black, from the moment at which its first picture is there; until then what
    /// was shown and heard goes on. One that waited before it is dropped, as is what was to follow. In a list
    /// one that fails never comes: nextFailed() tells.
    void load(std::shared_ptr<Deck> deck, Transition transition, bool inList = false);
    /// Cuts to another deck of the same medium, which stands where it was sought. Where it cannot be opened,
    /// the one on air seeks itself.
    void seekBy(std::shared_ptr<Deck> deck);
    bool nextFailed() const;
    /// What was on air before a load goes on as if there had been none; false, and black, where there is
    /// nothing.
    bool dropNext();
    /// Of what is on air and of what is to follow; play is for the newest alone.
    void setState(SourcePlayState state);
    /// Gives the deck away; what was shown last stays until the next load.
    std::shared_ptr<Deck> release();

    /// Another deck to follow at the end of the last one, without a picture in between. Its transition begins
    /// so much earlier that it is over at that end. One that loops is the medium on air once more, and then
    /// the deck before it is the next to follow.
    void follow(std::shared_ptr<Deck> deck, Transition transition, bool loops);
    /// Drops all that were to follow from that one on.
    void unfollow(std::size_t from);
    /// Calls a function with each of them, from the first on.
    template <typename Visit>
    void forFollowing(Visit visit)
    {
        for (Following& following : m_following)
            visit(*following.deck, following.transition);
    }
    /// Whether the end is so near that another deck should be made to follow.
    bool wantsFollowing() const;
    std::vector<News> takeNews() { return std::exchange(m_news, {}); }
    /// Whether the end was reached, the end action Next is due, and nothing follows.
    bool ended() const;

    /// Pictures are those whose time comes by so many seconds after the moment: half of what one is shown for
    /// on a display, so that a beat that is a little off shows none twice.
    Moment advance(double now, double lead = 0);

    bool inTransition() const;
    bool waiting() const { return m_next.has_value(); }       // nothing of the deck was shown yet
    bool loading() const { return m_next && !m_next->seeks; } // and another medium is on air
    double progress() const;                                  // of the transition, 0 to 1

    /// Decks that are done with and have stopped, to be let go without the lock.
    std::vector<std::shared_ptr<Deck>> takeRetired();

private:
    struct Layer
    {
        std::shared_ptr<Deck> deck;
        Ref<DecodedPicture> still{};        // where there is no deck
        ScaleMode scaling = ScaleMode::Fit; // of that
        Transition transition{};
        double since = 0; // "now" at which the transition began
        double progress = 1;
    };
    static bool hasPicture(const Layer& layer) { return layer.deck || layer.still; }
    /// What comes on air as soon as it has a picture.
    struct Next
    {
        std::shared_ptr<Deck> deck; // null: black
        Transition transition;
        bool inList = false;
        bool seeks = false; // the medium on air, elsewhere
        bool failed = false;
    };
    struct Following
    {
        std::shared_ptr<Deck> deck;
        Transition transition;
        bool loops = false;
    };
    struct Retired
    {
        std::shared_ptr<Deck> deck;
        double since; // "now"
    };

    bool mayOpen() const;
    void beginNext();
    void replaceNext(Next next);
    void goOver(std::shared_ptr<Deck> deck, Transition transition, double since);
    void freeze();
    void dropFaintest();
    void prepareFollowing();
    bool isFollowed() const;
    double overlap(const Following& following) const;
    std::optional<double> hasBegunBefore(const Following& following) const;
    void handOver(double ago, Moment& moment);
    void sound(Moment& moment);
    std::vector<double> shares() const;
    HeardMoment finishSound();
    void dropBelow(std::size_t layer);
    void retire(std::shared_ptr<Deck> deck);
    Deck* onAir() const { return m_layers.back().deck.get(); }
    Moment::Layer shown(const Layer& layer) const;

    bool m_blackWhenStopped;
    std::vector<Layer> m_layers; // the lowest first; the last one is on air, those below it fade
    std::optional<Next> m_next;
    std::optional<EndAction> m_endActionBefore; // of what is on air, while another one is to come
    std::deque<Following> m_following;
    std::vector<News> m_news;
    double m_now = 0;
    double m_lead = 0;   // seconds after it
    double m_before = 0; // "now" of the moment before
    std::vector<Retired> m_retired;
    SoundLayers m_heard;
};

} // namespace vantrel::ombra
