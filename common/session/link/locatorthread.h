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
    explicit LocatorThread(quint16 port = discovery::port, QObject* parent = nullptr)
        : QThread(parent)
        , m_locator(port)
    {
    }

    /// A copy of what has been found. Any thread.
    std::vector<NetworkPeer> peers() const;

Q_SIGNALS:
    void updated();

protected:
    void run() override;

private:
    void publish();

    NetworkLocator m_locator;
    mutable QMutex m_mutex; // guards m_peers
    std::vector<NetworkPeer> m_peers;
};

} // namespace vantrel
