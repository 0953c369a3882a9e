// The first fetch of a large library from a live server, by a session as the application makes it: how long
// until a view can show it, how long the main thread stands still, and what the session holds for a slot.
#include "bench/json_library.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/library/aside.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/models/sortedlibrarymodel.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"
#include "tests/support/ombraprocess.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <cmath>
#include <utility>

using namespace vantrel;
using namespace vantrel::bench;
using vantrel::test::OmbraProcess;

namespace {

const LibraryShape shape{100000, 100};

/// The longest time between two turns of the event loop.
class Heartbeat : public QObject
{
public:
    Heartbeat()
    {
        m_clock.start();
        connect(&m_timer, &QTimer::timeout, this, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            m_longest = std::max(m_longest, now - m_last);
            m_last = now;
        });
        m_timer.start(0);
    }
    double longestMs() const { return static_cast<double>(m_longest) / 1e6; }
    double elapsedMs() const { return static_cast<double>(m_clock.nsecsElapsed()) / 1e6; }

private:
    QElapsedTimer m_clock;
    QTimer m_timer;
    qint64 m_last = 0;
    qint64 m_longest = 0;
};

bool post(const OmbraProcess& server, const std::string& text)
{
    QNetworkAccessManager manager;
    QNetworkRequest request(
        QUrl(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(server.ports().http)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QNetworkReply* reply = manager.post(request, QByteArray::fromStdString(text));
    return QTest::qWaitFor([&] { return reply->isFinished(); }, 60000) &&
           reply->error() == QNetworkReply::NoError;
}

/// On the heap, once nothing is under way: the session before this one is freed on threads, and so is the
/// text of a library that has been read.
double settledBytes()
{
    constexpr double steady = 64 * 1024;
    constexpr int looks = 100;
    double before = 0, now = heapBytes();
    for (int look = 0; look < looks; ++look, before = std::exchange(now, heapBytes())) {
        if (std::abs(now - before) < steady)
            return now;
        QTest::qWait(200);
        for (QThreadPool* pool : {&aside::pool(), &aside::remover(), QThreadPool::globalInstance()})
            pool->waitForDone();
    }
    qFatal("the session does not come to rest");
}

struct Fetch
{
    double ms = 0;
    double pauseMs = 0;
    double bytes = 0;   // on the heap, more than before
    double visited = 0; // the same, when every slot has been looked at
};

void lookAtAll(const Session& session)
{
    const MediaLibraryModel* model = session.mediaLibraryModel();
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex collection = model->index(row, 0);
        for (int slot = 1; slot < model->rowCount(collection); ++slot) {
            for (const int role : {MediaLibraryModel::NameRole, MediaLibraryModel::DurationRole})
                model->index(slot, 0, collection).data(role);
        }
        session.mediaLibraryProvider()->slots_(MediaLibraryModel::getCollectionIndexNumber(collection));
    }
}

bool fetch(const OmbraProcess& server, Fetch& result)
{
    const double before = settledBytes();
    auto session = std::make_unique<Session>();
    Session::initializeWith(session.get(), server.ports());
    Heartbeat heart;
    bool filled = false;
    QObject::connect(session.get(), &Session::connected, &heart, [&] {
        QObject::connect(session->getMediaLibraryApi(), &MediaLibraryApi::mediaLibraryChanged, &heart,
                         [&] { filled = true; });
    });
    session->connectionHandler()->connect(server.host());
    if (!QTest::qWaitFor([&] { return filled; }, 30000))
        return false;
    SortedLibraryModel sorted(session->mediaLibraryModel());
    const QModelIndex collection = sorted.index(0, 0);
    for (int slot = 0; slot < sorted.rowCount(collection); ++slot)
        sorted.index(slot, 0, collection).data(MediaLibraryModel::NameRole);
    result.ms = heart.elapsedMs();
    QTest::qWait(200); // what is left to do would show as a pause
    result.pauseMs = heart.longestMs();
    result.bytes = settledBytes() - before;
    if (session->mediaLibrary()->getCollections().size() != 1000)
        return false;
    lookAtAll(*session);
    result.visited = settledBytes() - before;
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    OmbraProcess server;
    const std::string text = LibraryText(shape).make();
    if (!server.start() || !post(server, text)) {
        std::fprintf(stderr, "no server with the library\n");
        return 1;
    }
    const double empty = settledBytes();
    double json = 0;
    {
        Json document;
        if (!Json::parseString(text, document))
            return 1;
        json = heapBytes() - empty;
    }
    Fetch best{1e9, 1e9, 1e18, 1e18};
    for (int i = 0; i < 3; ++i) {
        Fetch one;
        if (!fetch(server, one)) {
            std::fprintf(stderr, "the library did not come\n");
            return 1;
        }
        std::fprintf(
            stderr, "fetch: %.0f ms, pause %.1f ms, %.0f bytes a slot, %.0f when looked at, JSON %.0f\n",
            one.ms, one.pauseMs, one.bytes / shape.slots, one.visited / shape.slots, json / shape.slots);
        // The last one finds what is made once, and nothing of the request that brought the library.
        best = {std::min(best.ms, one.ms), std::min(best.pauseMs, one.pauseMs), one.bytes, one.visited};
    }
    report("library/first-fetch", "the limit of 1 s", best.ms, 1000, "ms", 1000 / best.ms, 1);
    report("library/first-fetch-longest-pause", "the limit of 100 ms", best.pauseMs, 100, "ms",
           100 / best.pauseMs, 1);
    const double atFirst = (best.bytes - json) / shape.slots;
    const double atMost = (best.visited - json) / shape.slots;
    report("library/bytes-a-slot/fetched", "1,200 bytes beyond the JSON", atFirst, 1200, "bytes",
           1200 / atFirst, 1);
    report("library/bytes-a-slot/all-looked-at", "1,200 bytes beyond the JSON", atMost, 1200, "bytes",
           1200 / atMost, 1);
    return 0;
}
