#pragma once

namespace vantrel::ombra {

/// Keeps a device's clock and that of the mixture together: says how much faster than its own time sound is
/// to be played, from how late it is. One thread.
class DriftServo
{
public:
    /// Of sound that is heard so late (seconds; below 0: early), such a time (seconds) after the call before.
    /// False where that is beyond catching up unheard: what is missing or too much is to be put in or left
    /// out at once, and corrected() called; at the beginning as well.
    bool note(double late, double elapsed);
    void corrected();
    double rate() const { return m_rate; } // 0.001: a thousandth faster

private:
    bool m_hasBegun = false;
    double m_age = 0;  // seconds
    double m_late = 0; // without the jitter of threads
    double m_lasting = 0;
    double m_rate = 0;
};

} // namespace vantrel::ombra
