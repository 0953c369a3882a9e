#include "common/session/link/locatorthread.h"

#include <QMutexLocker>

namespace vantrel {

namespace {

constexpr unsigned int searchMilliseconds = 1000;
constexpr int pauseMilliseconds = 1000;
constexpr int sliceMilliseconds = 50; // how soon an interruption is noticed in the pause

} // namespace

std::vector<NetworkPeer> LocatorThread::peers() const
{
    const QMutexLocker lock(&m_mutex);
    return m_peers;
}

void LocatorThread::run()
{
    while (!isInterruptionRequested()) {
        if (m_locator.findPeers(searchMilliseconds)) {
            const QMutexLocker lock(&m_mutex);
            m_peers = m_locator.currentPeers();
            Q_EMIT updated();
        }
        for (int waited = 0; waited < pauseMilliseconds && !isInterruptionRequested();
             waited += sliceMilliseconds)
            QThread::msleep(sliceMilliseconds);
    }
}

} // namespace vantrel
