#pragma once

#include <optional>

namespace vantrel::ombra {

/// Tells whether decoding keeps up with the clock: constrained after about a second of late pictures, and not
/// any more after two seconds without. One thread.
class LateWatch
{
public:
    /// What a picture of the mixing clock (seconds) was.
    void note(bool late, double now)
    {
        if (late) {
            m_calmSince.reset();
            if (!m_lateSince)
                m_lateSince = now;
            m_constrained = m_constrained || now - *m_lateSince >= raisedAfter;
            return;
        }
        if (!m_calmSince)
            m_calmSince = now;
        if (now - *m_calmSince >= forgivenAfter)
            m_lateSince.reset();
        if (now - *m_calmSince >= clearedAfter)
            m_constrained = false;
    }
    bool constrained() const { return m_constrained; }

private:
    static constexpr double raisedAfter = 1; // seconds
    static constexpr double forgivenAfter =
        0.2; // a picture in time now and then does not mean that it keeps up
    static constexpr double clearedAfter = 2;

    std::optional<double> m_lateSince;
    std::optional<double> m_calmSince;
    bool m_constrained = false;
};

} // namespace vantrel::ombra
