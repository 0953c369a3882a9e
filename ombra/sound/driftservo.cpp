#include "ombra/sound/driftservo.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

namespace {

constexpr double smoothing = 0.5; // seconds
// A proportional and an integral part, damped critically: a step is caught up within some ten seconds, and a
// clock that differs for ever leaves nothing.
constexpr double proportional = 0.4; // a second
constexpr double integral = 0.04;    // a second squared
constexpr double beyond = 0.04;      // seconds, of what lasts
constexpr double beyondAtOnce = 0.2; // seconds
constexpr double longestStep = 0.2;  // seconds

} // namespace

bool DriftServo::note(double late, double elapsed)
{
    if (!m_hasBegun || !(std::abs(late) < beyondAtOnce))
        return false;
    const double step = std::clamp(elapsed, 0.0, longestStep);
    m_late += (late - m_late) * std::min(1.0, step / smoothing);
    if (std::abs(m_late) > beyond)
        return false;
    m_lasting = std::clamp(m_lasting + integral * m_late * step, -fastest, fastest);
    m_rate = std::clamp(proportional * m_late + m_lasting, -fastest, fastest);
    return true;
}

void DriftServo::corrected()
{
    m_hasBegun = true;
    m_late = 0;
    m_rate = m_lasting;
}

} // namespace vantrel::ombra
