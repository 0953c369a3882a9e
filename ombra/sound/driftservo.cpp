#include "ombra/sound/driftservo.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

namespace {

/// How it follows: smoothed over so many seconds, by a proportional (a second) and an integral part (a second
/// squared), damped critically: what lasts leaves nothing.
struct Manner
{
    double smoothing, proportional, integral;
};
constexpr Manner calm{0.5, 0.4, 0.04};
constexpr Manner beginning{0.1, 2, 1}; // to know the device's clock before there is anything to be heard
constexpr double beginsFor = 3;        // seconds
constexpr double mostAtOnce = 0.01;    // on top of what lasts: a sixth of a semitone
constexpr double mostLasting = 0.05;
constexpr double beyond = 0.04;      // seconds, of what lasts
constexpr double beyondAtOnce = 0.2; // seconds
constexpr double longestStep = 0.2;  // seconds

} // namespace

bool DriftServo::note(double late, double elapsed)
{
    if (!m_hasBegun || !(std::abs(late) < beyondAtOnce))
        return false;
    const Manner& manner = m_age < beginsFor ? beginning : calm;
    const double step = std::clamp(elapsed, 0.0, longestStep);
    m_age += step;
    m_late += (late - m_late) * std::min(1.0, step / manner.smoothing);
    if (std::abs(m_late) > beyond)
        return false;
    m_lasting = std::clamp(m_lasting + manner.integral * m_late * step, -mostLasting, mostLasting);
    m_rate = m_lasting + std::clamp(manner.proportional * m_late, -mostAtOnce, mostAtOnce);
    return true;
}

void DriftServo::corrected()
{
    m_hasBegun = true;
    m_late = 0;
    m_rate = m_lasting;
}

} // namespace vantrel::ombra
