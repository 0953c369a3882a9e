#include "common/session/link/locatorthread.h"

#include <QMutexLocker>

namespace vantrel {

namespace {

constexpr unsigned int searchMilliseconds = 1000;
constexpr int pauseMilliseconds = 1000;
constexpr int sliceMilliseconds = 20; // how soon an interruption is noticed in the pause

} // namespace

std::vector<NetworkPeer> LocatorThread::peers() const
{
    const QMutexLocker lock(&m_mutex);
    return m_peers;
}

void LocatorThread::publish()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_peers = m_locator.currentPeers();
    }
    Q_EMIT updated();
}

void LocatorThread::run()
{
    // Who has answered is shown at once; who has gone, when the search is over.
    const auto progress = [this](bool isNews) {
        if (isNews)
            publish();
        return !isInterruptionRequested();
    };
    while (!isInterruptionRequested()) {
        if (m_locator.findPeers(searchMilliseconds, progress))
            publish();
        for (int waited = 0; waited < pauseMilliseconds && !isInterruptionRequested();
             waited += sliceMilliseconds)
            QThread::msleep(sliceMilliseconds);
    }
}

} // namespace vantrel
