#pragma once

namespace vantrel {

/// How the bar of one channel moves: up at once, down steadily by time, with a mark that rests at the highest
/// peak before it falls as well. Plain value; levels in dBFS, times in milliseconds of any clock.
class LevelBallistics
{
public:
    static constexpr double floorDb = -60.0;      // what is shown as nothing
    static constexpr double fallPerSecond = 26.0; // dB, so that speech is followed and music is calm
    static constexpr double holdMs = 1500.0;

    /// A new peak at this moment; silence is minus infinity.
    void feed(double peakDb, double nowMs);
    /// Moves on to this moment.
    void advance(double nowMs);

    double level() const { return m_level; } // floorDb to 0
    double held() const { return m_held; }   // never below the level
    bool isResting() const { return m_level <= floorDb && m_held <= floorDb; }

private:
    double m_level = floorDb;
    double m_held = floorDb;
    double m_heldAt = 0;
    double m_now = 0;
};

} // namespace vantrel
