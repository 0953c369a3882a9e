#include "ombra/link/crossedwrites.h"

#include <algorithm>

namespace vantrel::ombra {

void CrossedWrites::sent(const Path& path, Time now)
{
    m_sent[path.toString()] = now;
    if (m_sent.size() > m_forgetAt)
        forgetOld(now);
}

void CrossedWrites::forgetOld(Time now)
{
    std::erase_if(m_sent, [now](const auto& item) { return item.second + onItsWay < now; });
    m_forgetAt = std::max<std::size_t>(1024, 2 * m_sent.size());
}

void CrossedWrites::written(const Path& path, Time now)
{
    const std::string key = path.toString();
    const auto sent = m_sent.find(key);
    const bool crossed = (sent != m_sent.end() && sent->second + onItsWay >= now) ||
                         (m_sentMuch != Time::min() && m_sentMuch + onItsWay >= now);
    if (crossed)
        m_crossed[key] = {path, now};
}

std::vector<Path> CrossedWrites::takeDue(Time now)
{
    std::vector<Path> due;
    std::erase_if(m_crossed, [&](const auto& item) {
        if (item.second.time + quiet > now)
            return false;
        due.push_back(item.second.path);
        return true;
    });
    return due;
}

} // namespace vantrel::ombra
