#pragma once

#include <QElapsedTimer>

#include <algorithm>

namespace vantrel {

/// How many bytes may go by now when no more than so many may go in a second. A value of the data connection.
class RateLimit
{
public:
    /// 0: no limit.
    void set(qint64 bytesPerSecond)
    {
        m_bytesPerSecond = bytesPerSecond;
        m_spent = 0;
        m_clock.start();
    }
    bool isOn() const { return m_bytesPerSecond > 0; }

    /// Of the wanted bytes those that may go now; 0: come again in waitMs.
    qint64 allowed(qint64 wanted)
    {
        if (!isOn())
            return wanted;
        // What was not used for a while is not kept for later.
        const qint64 earned = m_bytesPerSecond * m_clock.elapsed() / 1000;
        const qint64 burst = std::max<qint64>(1, m_bytesPerSecond / 10);
        if (earned - m_spent > burst)
            m_spent = earned - burst;
        return std::clamp<qint64>(earned - m_spent, 0, wanted);
    }
    void spend(qint64 bytes) { m_spent += bytes; }

    static constexpr int waitMs = 20;

private:
    qint64 m_bytesPerSecond = 0;
    qint64 m_spent = 0; // since the clock began
    QElapsedTimer m_clock;
};

} // namespace vantrel
