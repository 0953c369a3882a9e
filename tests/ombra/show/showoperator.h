#pragma once

#include "tests/ombra/linkpeer.h"
#include "tests/ombra/liveserver.h"

#include <QObject>
#include <QTest>

#include <algorithm>
#include <memory>
#include <string>

namespace vantrel::ombra::test {

inline const std::string program = "/device/channels/0/program";
inline const std::string configuration = "/device/showConfiguration";

/// A server, and a client that works at its show. For tests to build on.
class ShowOperator : public QObject
{
protected:
    void connectPeer()
    {
        m_peer = std::make_unique<LinkPeer>(m_live->server().linkPort());
        m_peer->send("[{\"op\":\"get\",\"path\":\"\"}]");
        QVERIFY(m_live->waitFor([&] {
            m_peer->read();
            return m_peer->scene.findObject(program) != nullptr;
        }));
    }
    /// As the application does: in the own scene first, since the server tells only the others.
    void write(const std::string& path, const std::string& value)
    {
        const std::string text = "[{\"op\":\"replace\",\"path\":\"" + path + "\",\"value\":" + value + "}]";
        Patch patch;
        QVERIFY(Patch::parseString(text, patch) && m_peer->scene.apply(patch, true));
        m_peer->send(text);
    }
    void invoke(const std::string& path, const std::string& args)
    {
        m_peer->send("[{\"op\":\"invoke\",\"path\":\"" + path + "\",\"value\":" + args + "}]");
    }
    std::string value(const std::string& path) { return m_peer->value(path); }
    std::string notice()
    {
        m_peer->read();
        return value("/device/system/properties/notice");
    }
    double position() { return std::stod(value(program + "/properties/mediaPosition")); }
    bool waitForState(const std::string& state)
    {
        return m_live->waitFor([&] {
            m_peer->read();
            return value(program + "/properties/state") == state;
        });
    }

    /// Whether all that was sent has been handled: the answer to a last question came.
    bool settled()
    {
        const std::string last = configuration + "/properties/autoSave";
        const std::size_t before = m_peer->operations.size();
        m_peer->send("[{\"op\":\"get\",\"path\":\"" + last + "\"}]");
        return m_live->waitFor([&] {
            m_peer->read();
            return std::any_of(m_peer->operations.begin() + std::ptrdiff_t(before), m_peer->operations.end(),
                               [&](const PatchOp& op) { return op.path.toString() == last; });
        });
    }

    std::unique_ptr<LiveServer> m_live;
    std::unique_ptr<LinkPeer> m_peer;
};

} // namespace vantrel::ombra::test
