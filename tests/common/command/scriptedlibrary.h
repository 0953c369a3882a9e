#pragma once

#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "tarn/media/medialibrary.h"
#include "tarn/scene/scene.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/patience.h"

#include <QTest>
#include <QUndoStack>

namespace vantrel::test {

/// A server with the library's rules: it takes what fits its revision, and tells of it when it is told
/// to.
struct ScriptedLibrary
{
    ScriptedLibrary()
    {
        library = makeRef<MediaLibrary>();
        library->insertMediaCollection(1, MediaCollection("one"), true);
        peer.http.handler = [this, rest = peer.http.handler](const ScriptedHttp::Request& request) {
            if (!request.target.endsWith("/medialibrary"))
                return rest(request);
            return request.method == "PATCH" ? patch(request) : get();
        };
    }
    ScriptedHttp::Reply get()
    {
        if (hoardsLibrary)
            return {0, {}};
        return {isBroken ? 500 : 200, QByteArray::fromStdString(library->toJson().toString())};
    }
    ScriptedHttp::Reply patch(const ScriptedHttp::Request& request)
    {
        if (breaksMine && request.body.contains("\"mine\""))
            return {-1, {}};
        if (isMute)
            return {0, {}};
        if (refusal != 0)
            return {refusal, R"({"error":"the disk is full"})"};
        Patch patch;
        if (!Patch::parseString(request.body.toStdString(), patch) || library->applyDiff(patch) != 0)
            return {409, R"({"error":"it does not fit"})"};
        tell(patch);
        return {200, "{}"};
    }
    /// On the event stream.
    void tell(const Patch& patch) { api()->applyMediaLibraryPatch(patch); }
    /// Somebody else's edit.
    void edit(const char* text)
    {
        Patch patch;
        if (!Patch::parseString(text, patch) || library->applyDiff(patch) != 0)
            qFatal("bad patch in a test");
        tell(patch);
    }
    bool connect()
    {
        const auto isRead = [this] { return api()->isCurrent() && peer.link.socket; };
        if (!peer.connect() || !QTest::qWaitFor(isRead, longestWait))
            return false;
        // One that never says a word counts as silent after a second, and gets no more edits.
        peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        const auto isHeard = [this] {
            return peer.session->getScene()->findObject("/device/channels/0") != nullptr;
        };
        return QTest::qWaitFor(isHeard, longestWait);
    }
    template <typename Command, typename... Args>
    bool run(Args... args)
    {
        auto command = std::make_unique<Command>();
        if (!command->init(peer.session->mediaLibrary(), args...))
            return false;
        peer.session->executeCommand(command.release());
        return true;
    }
    bool isIdle() { return api()->edits()->isEmpty(); }
    MediaLibraryApi* api() const
    {
        MediaLibraryApi* const api = peer.session->getMediaLibraryApi();
        if (!api)
            qFatal("the test has lost its link");
        return api;
    }
    QString name(int collection)
    {
        const MediaCollection* found = std::as_const(*library).findCollection(collection);
        return found ? QString::fromStdString(found->getName()) : QString();
    }

    /// "1=url 2.5=url"
    QString entries(int playlist)
    {
        QStringList texts;
        for (const auto& [address, entry] : std::as_const(*library).findPlaylist(playlist)->getEntries())
            texts << QString::fromStdString(address.toString(true) + "=" + entry.getMediaUrl());
        return texts.join(u' ');
    }

    Ref<MediaLibrary> library;
    ScriptedPeer peer;
    int refusal = 0; // the status of every answer
    bool isMute = false;
    bool breaksMine = false;
    bool isBroken = false;
    bool hoardsLibrary = false; // says nothing to a request for it
};

} // namespace vantrel::test
