#pragma once

#include "common/session/settings/serverports.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QNetworkAccessManager>

namespace vantrel::test {

/// Asks a live server itself what it holds, past the application. Blocking, with a limit.
class ServerProbe
{
public:
    void setPorts(const ServerPorts& ports) { m_ports = ports; }

    /// The media library as it is served; empty when no answer came.
    QJsonObject library();
    QJsonObject slot(int collection, int slot);
    /// A property of the scene, as "/device/channels/0/program/properties/muted"; undefined without an
    /// answer.
    QJsonValue property(const QString& path) const;

private:
    ServerPorts m_ports;
    QNetworkAccessManager m_network;
};

} // namespace vantrel::test
