#pragma once

#include "common/media/library/medialibraryprovider.h"
#include "common/player/channelwidget.h"
#include "common/player/playerplaybackview.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/settings/configuration.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <memory>

namespace vantrel::test {

/// A text as JSON.
inline QByteArray quoted(const char* text)
{
    return QByteArray("\"") + text + '"';
}

/// The player tab beside a scripted server with a library of one video, one still and one nameless slot.
class PlayerFixture
{
public:
    PlayerFixture()
    {
        allowWarnings(QStringLiteral("Failed due network error"));
        allowWarnings(QStringLiteral("Invalid model index, Failed to acquire media name"));
        const ScriptedHttp::Handler rest = peer.http.handler;
        peer.http.handler = [this, rest](const ScriptedHttp::Request& request) -> ScriptedHttp::Reply {
            if (request.method == "PATCH") {
                patches.append(request.body);
                return {refusal == 0 ? 204 : refusal, refusal == 0 ? QByteArray() : R"({"error":"full"})"};
            }
            if (request.target.endsWith("/medialibrary"))
                return {200, QByteArray(library).replace("STILL", stillDurationType)};
            if (request.target.contains("/metadata/"))
                return {200, request.target.contains("logo.png")
                                 ? R"({"type":"imageFile","isPlayable":true})"
                                 : R"({"type":"videoFile","isPlayable":true})"};
            return rest(request);
        };
        view = std::make_unique<PlayerPlaybackView>(peer.session);
        view->setModel(peer.session->objectTreeModel()->index(QStringLiteral("/device/channels")));
        view->resize(1400, 800);
        view->show();
    }

    /// Connects, and has the server tell of one channel.
    bool connect()
    {
        if (!peer.connect() || !QTest::qWaitFor([this] { return !peer.link.received.empty(); }))
            return false;
        peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        return QTest::qWaitFor([this] { return channel(); });
    }

    /// The same, and waits until the library is read.
    bool connectWithLibrary()
    {
        return connect() && QTest::qWaitFor([this] {
                   return peer.session->mediaLibraryProvider()->slot({1, 1}) != nullptr;
               });
    }

    /// The same, with these playlists by number in it.
    bool connectWithPlaylists(const QJsonObject& lists)
    {
        const qsizetype at = library.indexOf("\"playlists\":") + 12;
        library = library.left(at) + QJsonDocument(lists).toJson(QJsonDocument::Compact) + '}';
        return connectWithLibrary();
    }

    /// A playlist of entries that all play the first slot.
    static QJsonObject playlistOf(const char* name, const QStringList& addresses)
    {
        const QJsonObject entry{{"slotUrl", "brume://collections/1/slots/1"},
                                {"endAction", "next"},
                                {"transitionType", "crossfade"},
                                {"transitionDuration", 1.0}};
        QJsonObject entries;
        for (const QString& address : addresses)
            entries.insert(address, entry);
        return {{"name", name}, {"entries", entries}};
    }

    /// Null while it waits hidden for the server to tell of one.
    ChannelWidget* channel() const
    {
        auto* found = view->findChild<ChannelWidget*>();
        return found && !found->isHidden() ? found : nullptr;
    }

    template <typename T>
    T* part(const char* name) const
    {
        return view->findChild<T*>(QLatin1String(name));
    }

    /// The server changes a property of preview or program; the value is JSON.
    void set(const char* playback, const char* property, const QByteArray& value)
    {
        const QByteArray patch = QByteArray(R"([{"op":"replace","path":"/device/channels/0/)") + playback +
                                 "/properties/" + property + R"(","value":)" + value + "}]";
        peer.send(patch.constData());
    }

    /// What went over the link since the last call, one operation a line.
    QString takeSent()
    {
        QStringList lines;
        for (; m_seen < peer.link.received.size(); ++m_seen)
            lines.append(describe(peer.link.received[m_seen]));
        lines.removeAll(QString());
        return lines.join(u'\n');
    }

    /// The same, once there is something; empty when nothing came in time.
    QString waitForSent()
    {
        QString sent;
        return QTest::qWaitFor([&] { return !(sent = takeSent()).isEmpty(); }) ? sent : QString();
    }

    QByteArray library = R"({"collections":{"1":{"name":"Main","slots":{
        "1":{"name":"Walk-in","contentUrl":"file:///a.mp4","inpoint":1.0,"outpoint":8.0,"duration":null,
             "mediaDuration":10.0,"scaleMode":"default","isPlayable":true,"durationType":"manual",
             "imageSequence":null,"type":"videoFile"},
        "2":{"name":"Logo","contentUrl":"file:///logo.png","inpoint":0.0,"outpoint":null,"duration":12.3,
             "mediaDuration":null,"scaleMode":"default","isPlayable":true,"durationType":"STILL",
             "imageSequence":null,"type":"imageFile"},
        "3":{"name":"","contentUrl":"file:///b.mp4","inpoint":0.0,"outpoint":null,"duration":null,
             "mediaDuration":4.0,"scaleMode":"default","isPlayable":true,"durationType":"manual",
             "imageSequence":null,"type":"videoFile"}}}},
        "playlists":{"2":{"name":"Show","entries":{
        "5.1":{"slotUrl":"brume://collections/1/slots/1","endAction":"next","transitionType":"crossfade",
               "transitionDuration":1.0}}}}})";
    QByteArray stillDurationType = "manual"; // before connect()
    QList<QByteArray> patches;               // bodies that came by HTTP
    int refusal = 0;                         // the status that they are answered with
    ScriptedPeer peer;
    std::unique_ptr<PlayerPlaybackView> view;

private:
    std::size_t m_seen = 0;
};

} // namespace vantrel::test
