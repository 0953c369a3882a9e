#pragma once

#include "common/session/settings/serverports.h"

#include <QString>

namespace vantrel::test {

/// What the server itself says of its library and its scene, and in what a window's own differ from it.
class ServerTruth
{
public:
    explicit ServerTruth(const ServerPorts& ports)
        : m_ports(ports)
    {
    }

    /// Asks the server anew; false when it does not answer.
    bool fetch();
    /// The first difference, as a sentence with its path; empty when there is none. What runs on by itself
    /// (positions, progress) does not count.
    QString libraryFault(const QString& json) const;
    QString sceneFault(const QString& json) const;
    /// Whether the library has no slot of that address.
    bool lacksSlot(const QString& address) const;

private:
    bool fetchLibrary();
    bool fetchScene();

    ServerPorts m_ports;
    std::string m_library;
    std::string m_scene;
};

} // namespace vantrel::test
