#pragma once

#include <QString>

namespace vantrel {

/// How the real screen does that an output of the server is shown on.
struct ScreenHealth
{
    double rate = 0;         // pictures a second; 0 where there is no screen
    int dropped = 0;         // pictures of the last minute that were not painted in time
    int late = 0;            // and that were not decoded in time
    double decodeLoad = 0;   // seconds of decoding for a second of pictures
    double paintLoad = 0;    // share of the time between two pictures that painting one takes
    bool bySoftware = false; // no graphics card paints them

    bool isThere() const { return rate > 0; }
    int lost() const { return dropped + late; }
    /// Little more is needed for pictures to be late, or dropped.
    bool decodesAtItsLimit() const { return decodeLoad >= 0.8; }
    bool paintsAtItsLimit() const { return paintLoad >= 0.8; }
    bool isWell() const { return lost() == 0 && !decodesAtItsLimit() && !paintsAtItsLimit(); }

    /// "59.94 Hz, painted by the processor"; empty without a screen, as the next ones.
    QString rateText() const;
    /// "none in the last minute"
    QString lostText() const;
    /// "23 % of the time there is"
    QString decodingText() const;
    QString paintingText() const;
    /// The state in a few words: "Screen: 59.94 Hz", "Screen: 12 pictures lost".
    QString summary() const;
    /// What is wrong and what helps, in sentences; where nothing is, what summary() does not say.
    QString details() const;
};

} // namespace vantrel
