#pragma once

#include "tarn/discovery/networklocator.h"

#include <QMutex>
#include <QThread>

#include <vector>

namespace vantrel {

/// Searches the network for servers, again and again, until it is interrupted.
class LocatorThread : public QThread
{
    Q_OBJECT

public:
    using QThread::QThread;

    /// A copy of what the last search found. Any thread.
    std::vector<NetworkPeer> peers() const;

Q_SIGNALS:
    void updated();

protected:
    void run() override;

private:
    NetworkLocator m_locator;
    mutable QMutex m_mutex; // guards m_peers
    std::vector<NetworkPeer> m_peers;
};

} // namespace vantrel
