#pragma once

#include "common/filesystem/models/filesmodel.h"
#include "common/media/edit/implmediacollectionmanager.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/patience.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace vantrel::test {

/// A session on a live server, with an empty collection to edit. Warnings of what nobody serves here are the
/// test's to announce.
class LiveSession
{
public:
    static constexpr int collection = 7;

    /// The server is started already. False when the session does not get ready.
    bool open(const OmbraProcess& server)
    {
        Session::initializeWith(session.get(), server.ports());
        QSignalSpy loaded(session->mediaLibraryProvider(), &AbstractMediaLibraryProvider::reset);
        session->connectionHandler()->connect(server.host());
        const auto isReady = [&] {
            return session->isConnected() && session->getMediaLibraryApi() && !loaded.isEmpty() &&
                   session->serverFilesModel();
        };
        return QTest::qWaitFor(isReady, longestWait) &&
               manager.insertCollection(collection, QStringLiteral("Seven")) &&
               QTest::qWaitFor([this] { return bool(library()->collection(collection)); }, longestWait);
    }
    const MediaLibraryProvider* library() const { return session->mediaLibraryProvider(); }

    std::unique_ptr<Session> session = std::make_unique<Session>();
    ImplMediaCollectionManager manager;
};

} // namespace vantrel::test
