#pragma once

#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "tests/support/scriptedhttp.h"
#include "tests/tarn/net/scriptedserver.h"

#include <QTest>

namespace vantrel::test {

/// A session beside a scripted server: link and web are the test's to play, nobody serves previews.
class ScriptedPeer
{
public:
    explicit ScriptedPeer(quint16 ftpPort = 0)
    {
        http.handler = [](const ScriptedHttp::Request& request) -> ScriptedHttp::Reply {
            if (request.target.endsWith("/medialibrary"))
                return {200, R"({"collections":{},"playlists":{}})"};
            if (request.target.endsWith("/system"))
                return {200, R"({"hostname":"stage","firmwareVersion":{"major":1,"minor":"2","patch":3}})"};
            if (request.target.contains("/sse"))
                return {200, {}, "text/event-stream", false}; // the library's first fetch waits for it
            return {404, {}};
        };
        ServerPorts ports;
        ports.http = http.port();
        ports.link = link.port();
        ports.ftp = ftpPort;
        ports.preview = 1;
        session = new Session;
        Session::initializeWith(session, ports);
    }
    ~ScriptedPeer() { delete session; }

    bool connect()
    {
        session->connectionHandler()->connect(QStringLiteral("127.0.0.1"));
        return QTest::qWaitFor([this] { return session->isConnected() && session->getMediaLibraryApi(); });
    }

    /// The server speaks.
    void send(const Patch& patch)
    {
        const std::string frame = linkframe::encode(patch);
        link.socket->write(frame.data(), qint64(frame.size()));
    }
    void send(const char* patchText)
    {
        Patch patch;
        if (!Patch::parseString(patchText, patch))
            qFatal("bad patch in a test: %s", patchText);
        send(patch);
    }

    /// What the application sent last; empty before anything came.
    Patch lastReceived() const { return link.received.empty() ? Patch() : link.received.back(); }

    ScriptedServer link;
    ScriptedHttp http;
    Session* session = nullptr;
};

/// One operation as text, for comparisons: "replace /a/b 1".
inline QString describe(const Patch& patch)
{
    QStringList parts;
    for (const PatchOp& op : patch) {
        static const QHash<PatchOpType, QString> names = {{PatchOpType::Add, QStringLiteral("add")},
                                                          {PatchOpType::Replace, QStringLiteral("replace")},
                                                          {PatchOpType::Remove, QStringLiteral("remove")},
                                                          {PatchOpType::Get, QStringLiteral("get")},
                                                          {PatchOpType::Invoke, QStringLiteral("invoke")}};
        QString part =
            names.value(op.op, QStringLiteral("?")) + u' ' + QString::fromStdString(op.path.toString());
        if (op.op != PatchOpType::Remove && op.op != PatchOpType::Get)
            part += u' ' + QString::fromStdString(op.value.toString());
        parts.append(part);
    }
    return parts.join(QStringLiteral("; "));
}

} // namespace vantrel::test
