#pragma once

#include "ombra/engine/heardmoment.h"

namespace vantrel::ombra {

class Deck;

/// Puts together what the decks of a player sound like, moment after moment, and knows where that breaks off.
/// One thread.
class SoundLayers
{
public:
    /// Another moment begins, from and to a time of the mixing clock, seconds.
    void begin(double from, double to);
    /// What a deck has played since the moment before, by its share at the beginning.
    void add(const Deck& deck, double share);
    void append(const Deck& deck, double share);  // from the end of the others on
    void overlay(const Deck& deck, double share); // begun within the moment, over what goes on
    /// The deck has this share at the end of the moment.
    void setEnd(const Deck& deck, double share);
    HeardMoment finish();

private:
    struct Source
    {
        const Deck* deck;
        bool goesOn;
    };

    void add(const Deck& deck, double share, std::size_t at);
    std::size_t filled() const;

    HeardMoment m_moment;
    std::vector<Source> m_sources;            // of its layers
    std::vector<const Deck*> m_sounding;      // to the end of the moment before; never asked anything
    std::int64_t m_expected = 0, m_ahead = 0; // frames of the moment, of those that came in the one before
};

} // namespace vantrel::ombra
