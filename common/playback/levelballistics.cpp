#include "common/playback/levelballistics.h"

#include <algorithm>

namespace vantrel {

void LevelBallistics::feed(double peakDb, double nowMs)
{
    advance(nowMs);
    const double peak = peakDb > floorDb ? std::min(peakDb, 0.0) : floorDb; // also for what is no number
    m_level = std::max(m_level, peak);
    if (peak >= m_held) {
        m_held = peak;
        m_heldAt = nowMs;
    }
}

void LevelBallistics::advance(double nowMs)
{
    const double passed = std::max(0.0, nowMs - m_now);
    m_level = std::max(floorDb, m_level - fallPerSecond * passed / 1000.0);
    // Of the time that passed, only what lies behind the rest lets the mark fall.
    const double falling = std::clamp(nowMs - (m_heldAt + holdMs), 0.0, passed);
    m_held = std::max({floorDb, m_level, m_held - fallPerSecond * falling / 1000.0});
    m_now = std::max(m_now, nowMs);
}

} // namespace vantrel
