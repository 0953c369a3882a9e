#pragma once

#include "tarn/json/path.h"

#include <chrono>
#include <string>
#include <unordered_map>
#include <vector>

namespace vantrel::ombra {

/// Values that crossed on one client's link: what the client wrote when something else for the same property
/// was already on its way to it. The client then reads the older value after its own, and would stay with
/// it; so it is told once more what the scene holds, as soon as it has been quiet about that property for a
/// moment. At once would pull a slider back under the operator's hand.
class CrossedWrites
{
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::seconds onItsWay{5}; // at most, until a client has read it
    static constexpr std::chrono::milliseconds quiet{200};

    /// A value of this property has been put on the link.
    void sent(const Path& path, Time now);
    /// The whole scene, or a part of it.
    void sentMuch(Time now) { m_sentMuch = now; }
    /// The client wrote this property.
    void written(const Path& path, Time now);
    /// The properties that are to be told once more; each is given out once.
    std::vector<Path> takeDue(Time now);

private:
    struct Write
    {
        Path path;
        Time time;
    };

    void forgetOld(Time now);

    std::unordered_map<std::string, Time> m_sent; // by path
    std::unordered_map<std::string, Write> m_crossed;
    Time m_sentMuch = Time::min();
    std::size_t m_forgetAt = 1024;
};

} // namespace vantrel::ombra
