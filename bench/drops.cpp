// What drops of thousands of items hold up the main thread for, with the log that the application keeps and
// the MEDIA tab that shows their slots: from the drop to the request that goes out, and the longest turn
// until the slots are there. The peer is the time of one picture of a 60 Hz screen.
#include "bench/row.h"
#include "bench/turn.h"
#include "common/filesystem/operations/asyncfilesystemreader.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/import/mediaslotdrophandler.h"
#include "common/import/slotpayload.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/mimedata.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/qml/qmlmanager.h"
#include "common/ui/diagnostics/logmanager.h"
#include "common/ui/style/stylesheet.h"
#include "common/views/media/mediaview.h"
#include "tarn/media/mediaenums.h"
#include "tests/common/filesystem/fakefilesystem.h"
#include "tests/support/livesession.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QUndoStack>

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>
#include <unistd.h>
#include <vector>

using namespace vantrel;
using bench::spentMs;
using test::LiveSession;

namespace {

constexpr int rounds = 3;
constexpr int patienceMs = 20000;
constexpr double pictureMs = 16;

struct Row
{
    const char* name;
    double ms;
};

/// In milliseconds.
struct Cost
{
    double dropped = 1e9; // the turn of the drop
    double shown = 0;     // the longest one from then on until its slots are there and nothing is under way
};

void takeBack(LiveSession& live, int slot)
{
    live.session->getQUndoStack()->undo();
    const auto isGone = [&] {
        return live.session->getMediaLibraryApi()->edits()->isEmpty() &&
               !live.library()->slot({LiveSession::collection, slot});
    };
    if (!QTest::qWaitFor(isGone, patienceMs))
        qFatal("slot %d was not taken back", slot);
}

/// Of some rounds, each but the last one taken back: the first one adds slots behind the last, the others
/// fill them again.
Cost costOf(LiveSession& live, int slot, int expected, const std::function<void()>& drop)
{
    Cost cost;
    const auto isThere = [&] {
        return live.session->getMediaLibraryApi()->edits()->isEmpty() &&
               live.library()->slot({LiveSession::collection, expected});
    };
    for (int i = 0; i < rounds; ++i) {
        if (i > 0)
            takeBack(live, slot);
        const double before = spentMs();
        drop();
        cost.dropped = std::min(cost.dropped, spentMs() - before);
        const double shown = bench::longestTurn(isThere, patienceMs);
        if (shown < 0)
            qFatal("slot %d was not made", expected);
        QElapsedTimer since; // views follow in the next turns
        since.start();
        const double followed = bench::longestTurn([&since] { return since.hasExpired(300); });
        cost.shown = std::max({cost.shown, shown, followed});
    }
    return cost;
}

/// What a drop cost, as two rows.
void add(std::vector<Row>& rows, const char* name, const char* shownName, const Cost& cost)
{
    rows.push_back({name, cost.dropped});
    rows.push_back({shownName, cost.shown});
}

/// As FILES drags them.
QVariantMap mimeOf(const QList<MediaEntry>& entries)
{
    QJsonArray array;
    for (const MediaEntry& entry : entries)
        array.append(QJsonObject{{QStringLiteral("path"), entry.path},
                                 {QStringLiteral("fileSystem"), entry.fileSystem},
                                 {QStringLiteral("name"), entry.name},
                                 {QStringLiteral("duration"), entry.durationSeconds},
                                 {QStringLiteral("isDirectory"), entry.isDirectory},
                                 {QStringLiteral("isPlayable"), entry.isPlayable}});
    return {{mimeformat::type, mimeformat::mediaType},
            {mimeformat::json, QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact))}};
}

/// Of all files it is known what they hold.
class KnownFiles : public test::FakeFileSystem
{
public:
    ItemType getType(QString) override { return File; }
    bool requestMetadata(QString, FileMetadata& result) override
    {
        result.isPlayable = true;
        result.mediaType = MediaType::VideoFile;
        return true;
    }
};

/// The longest turn until all that a folder of stills and videos holds is found.
double readFolder(ImageSequenceCreator& creator)
{
    KnownFiles files;
    for (int i = 0; i < 10000; ++i)
        files.add(QStringLiteral("/in/%1 of all %2.%3")
                      .arg(QChar(u'a' + i % 26))
                      .arg(i * 13)
                      .arg(i % 2 ? QStringLiteral("png") : QStringLiteral("mp4")),
                  1);
    AsyncFileSystemReader reader;
    MediaDrop drop(&reader, &creator, LiveSession::collection, 1);
    drop.requestAsynchronously({QStringLiteral("/in/"), FileSystem::Directory}, &files);
    const double longest = bench::longestTurn([&] { return drop.isReady(); });
    if (drop.medias().size() + drop.stillImages().size() != 10000)
        qFatal("%d files were found", int(drop.medias().size() + drop.stillImages().size()));
    return longest;
}

} // namespace

int main(int argc, char** argv)
{
    QStandardPaths::setTestModeEnabled(true);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    // The log goes where that of the application goes, but for the eyes of the caller.
    const int output = dup(STDOUT_FILENO);
    if (output < 0 || !std::freopen("/dev/null", "w", stderr) || !std::freopen("/dev/null", "w", stdout))
        return 1;
    LogManager::instance().install();
    test::OmbraProcess server;
    LiveSession live;
    if (!server.start() || !live.open(server))
        qFatal("there is no server");
    StyleSheet::apply(application);
    Session* const session = live.session.get();
    auto tab = std::make_unique<MediaView>(MediaView::Sources{.library = session->mediaLibraryModel(),
                                                              .provider = session->mediaLibraryProvider(),
                                                              .playlists = session->playlistProvider(),
                                                              .session = session});
    tab->selectCollection(LiveSession::collection);
    tab->resize(1600, 900);
    tab->show();
    ImageSequenceCreator creator(session, &live.manager);
    MediaSlotDropHandler handler(&creator, session->fileSystemProvider());
    const auto save = [](MediaDrop* drop) { drop->save(); };
    QObject::connect(&handler, &MediaSlotDropHandler::mediaDropCreated, &application, save);

    std::vector<Row> rows;
    QList<MediaEntry> files;
    for (int i = 0; i < 2000; ++i) {
        MediaEntry entry;
        entry.name = QStringLiteral("%1 Interview.mp4").arg(i);
        entry.path = u'/' + entry.name;
        entry.fileSystem = QStringLiteral("server");
        entry.durationSeconds = 10;
        entry.isPlayable = true;
        files.append(entry);
    }
    // What views cost the first time counts elsewhere.
    const QVariantMap some = mimeOf(files.first(100));
    costOf(live, 1, 100, [&] { handler.dropMimeData(some, LiveSession::collection, 1); });
    takeBack(live, 1);
    const QVariantMap mime = mimeOf(files);
    add(rows, "drops/2000-server-files", "drops/2000-server-files-shown",
        costOf(live, 1, 2000, [&] { handler.dropMimeData(mime, LiveSession::collection, 1); }));

    QList<images::ImagesResult> stills;
    for (int i = 0; i < 5000; ++i) {
        images::ImagesResult result;
        result.setStillImages({images::StillImage{QStringLiteral("/Stills/Plate %1 of all.png").arg(i)}});
        stills.append(result);
    }
    AsyncFileSystemReader reader;
    add(rows, "drops/5000-stills", "drops/5000-stills-shown", costOf(live, 2501, 7500, [&] {
            MediaDrop drop(&reader, &creator, LiveSession::collection, 2501);
            drop.setImageResults(stills);
            drop.save();
        }));

    QList<int> moved(2000);
    std::iota(moved.begin(), moved.end(), 1);
    add(rows, "drops/2000-slots-moved", "drops/2000-slots-moved-shown", costOf(live, 7501, 9500, [&] {
            MediaDrop drop(&reader, &creator, LiveSession::collection, 7501);
            drop.setCollectionSlots(moved);
            drop.save();
        }));
    rows.push_back({"drops/folder-of-10000", readFolder(creator)});
    tab.reset();
    QMLManager::instance()->deinitialize();
    std::fflush(stdout);
    dup2(output, STDOUT_FILENO);
    LogManager::instance().setLogToStdOut(false);
    for (const Row& row : rows)
        bench::row(row.name, "one picture of a 60 Hz screen", row.ms, pictureMs, "ms", 1);
    return 0;
}
