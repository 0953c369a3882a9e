// Scrolling a collection of 1,000 slots from its first to its last row and back at speed, against a live
// server: what the application asks for, and how long its main thread stands still.
#include "bench/row.h"
#include "common/media/address/resourceurl.h"
#include "common/media/net/thumbnailprovider.h"
#include "tests/support/appprocess.h"
#include "tests/support/countingproxy.h"
#include "tests/support/mocknetworkaccessmanager.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <map>
#include <optional>
#include <set>

using namespace vantrel;
using namespace vantrel::test;
using vantrel::bench::row;

namespace {

constexpr int slotCount = 1000;
constexpr int soundEach = 20; // one of so many has no picture
const QString view = QStringLiteral("MediaPanel-slots-view");

/// A name without a figure, in the order of the number: numbered stills would be one image sequence.
QString nameOf(int number)
{
    QString name;
    for (int i = 0; i < 3; ++i, number /= 26)
        name.prepend(QChar('a' + number % 26));
    return QStringLiteral("slot %1").arg(name);
}

bool makeMedia(const QDir& folder)
{
    QImage picture(960, 540, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int i = 0; i < slotCount; ++i) {
        if (i % soundEach == soundEach - 1) {
            QFile sound(folder.filePath(nameOf(i) + ".wav"));
            const QByteArray head =
                QByteArray::fromHex("52494646240400005741564566" // RIFF, WAVE, one channel
                                    "6d74201000000001000100401f0000803e0000020010006461746100040000");
            if (!sound.open(QIODevice::WriteOnly) || sound.write(head + QByteArray(1024, 0)) < 0)
                return false;
            continue;
        }
        QPainter painter(&picture); // detail that a JPEG keeps, other in each picture
        for (int box = 0; box < 200; ++box)
            painter.fillRect(random.bounded(picture.width()), random.bounded(picture.height()), 40, 30,
                             QColor::fromRgb(random.generate()));
        painter.end();
        if (!picture.save(folder.filePath(nameOf(i) + ".jpg"), "JPG", 80))
            return false;
    }
    return true;
}

/// The rows that can be seen, the first being 0; the slots stand in the order of their files.
std::set<int> rowsOnScreen(RobotClient& robot)
{
    std::set<int> rows;
    int number = 0;
    for (const QJsonValue& cell : robot.cells(view)) {
        if (cell["visible"].toBool())
            rows.insert(number);
        ++number;
    }
    return rows;
}

struct Wheel
{
    RobotClient& robot;
    QJsonObject target = robot.find(view);

    void turn(int angle)
    {
        QJsonObject request{{"operation", "scroll_vertical"}, {"scroll", angle}};
        for (const char* key : {"global_x", "global_y", "local_x", "local_y"})
            request.insert(QLatin1String(key), target[QLatin1String(key)]);
        robot.ask(request);
    }

    /// A page a turn, which is as far as a wheel goes; at rest after every tenth.
    template <typename F>
    void topToBottomAndBack(F&& afterTurn)
    {
        for (const int direction : {-1, 1}) {
            for (int i = 1; i <= 60; ++i) {
                turn(direction * 120 * 24);
                afterTurn(i % 10 == 0);
            }
        }
    }
};

std::map<QString, int> requestsByFile(const QList<QByteArray>& targets)
{
    std::map<QString, int> counts;
    for (const QByteArray& target : targets) {
        if (target.contains("/thumbnails/"))
            ++counts[QUrl::fromPercentEncoding(target.mid(target.indexOf("file=") + 5))];
    }
    return counts;
}

int numberOf(const QString& file)
{
    const QString name = file.section(QStringLiteral("slot"), 1).section('.', 0, 0).right(3);
    return name.size() < 3
               ? -1
               : ((name[0].unicode() - 'a') * 26 + name[1].unicode() - 'a') * 26 + name[2].unicode() - 'a';
}

/// The longest that one answer takes on the main thread, in milliseconds: the provider is given the server's
/// own pictures. Negative when they could not be had.
double longestDecode(const ServerPorts& ports, const std::map<QString, int>& files)
{
    MockNetworkAccessManager manager;
    ThumbnailProvider provider(QStringLiteral("127.0.0.1"), &manager, 0);
    QNetworkAccessManager network;
    double longest = 0;
    for (const auto& [file, count] : files) {
        const QUrl media(file);
        const QUrl url = resourceUrl(QStringLiteral("127.0.0.1"), ports.http,
                                     QStringLiteral("/api/brume/v1/thumbnails/"), media);
        const std::unique_ptr<QNetworkReply> fetched(network.get(QNetworkRequest(url)));
        if (!QTest::qWaitFor([&] { return fetched->isFinished(); }))
            return -1;
        if (fetched->error() != QNetworkReply::NoError)
            continue; // a sound
        const auto reply =
            MockNetworkAccessManager::ReplyPtr::create(fetched->readAll(), QNetworkReply::NoError);
        manager.addGetReply(
            resourceUrl(QStringLiteral("127.0.0.1"), 80, QStringLiteral("/api/brume/v1/thumbnails/"), media),
            reply);
        provider.getThumbnail(media);
        QElapsedTimer clock;
        clock.start();
        manager.emitFinished(reply);
        longest = std::max(longest, double(clock.nsecsElapsed()) / 1e6);
    }
    return longest;
}

/// What one application did on its way through the list.
struct Scroll
{
    double stall = 0;                // milliseconds
    std::map<QString, int> first;    // requests on the first way, by file
    std::map<QString, int> inTheEnd; // after a second way
    std::set<int> seen;              // rows on which the list came to rest
};

/// Waits until nothing more is asked for.
bool settle(const CountingProxy& proxy)
{
    qsizetype before = -1;
    const auto rests = [&] {
        QTest::qWait(300);
        const qsizetype now = proxy.targets().size();
        return now == std::exchange(before, now);
    };
    return QTest::qWaitFor(rests, 30000);
}

std::optional<Scroll> scroll(ServerPorts ports)
{
    const CountingProxy proxy(ports.http);
    ports.http = proxy.port();
    AppProcess app;
    RobotClient robot;
    if (!app.start(AppProcess::connectTo(ports)) || !robot.connectTo(app.uiTestPort()) ||
        robot.waitFor("TakeControls-Take-Button").isEmpty() ||
        !QTest::qWaitFor([&] { return robot.cells(view).size() == slotCount; }, 30000))
        return std::nullopt;
    Scroll done;
    Wheel wheel{robot};
    done.seen = rowsOnScreen(robot);
    robot.figures(true);
    wheel.topToBottomAndBack([&](bool rests) {
        if (rests)
            settle(proxy);
    });
    done.stall = robot.figures()["longestOwnStallMs"].toDouble();
    done.first = requestsByFile(proxy.targets());
    // The same way again, looking where it rests.
    wheel.topToBottomAndBack([&](bool rests) {
        if (rests)
            done.seen.merge(rowsOnScreen(robot));
    });
    settle(proxy);
    done.inTheEnd = requestsByFile(proxy.targets());
    return done;
}

bool measure()
{
    QTemporaryDir folder;
    OmbraProcess ombra;
    ombra.setMediaFolder(folder.path());
    if (!makeMedia(QDir(folder.path())) || !ombra.start(60000))
        return false;
    double stall = 1e9;
    int total = 0, ofSeen = 0, most = 0;
    std::map<QString, int> files;
    // The painter shares its work among threads and waits for all of them: what else runs beside them counts.
    for (int round = 0; round < 3 && stall > 16; ++round) {
        const std::optional<Scroll> done = scroll(ombra.ports());
        if (!done)
            return false;
        stall = std::min(stall, done->stall);
        std::set<int> asked;
        for (const auto& [file, count] : done->first) {
            total += count;
            ofSeen += done->seen.contains(numberOf(file)) ? count : 0;
            asked.insert(numberOf(file));
        }
        for (const auto& [file, count] : done->inTheEnd)
            most = std::max(most, count);
        files = done->first;
        // The list went from end to end, and what it showed was asked for.
        if (!done->seen.contains(0) || !done->seen.contains(slotCount - 1) ||
            !std::ranges::includes(asked, done->seen))
            return false;
    }
    const double decode = longestDecode(ombra.ports(), files);
    row("thumbnails/requests-a-url", "one", most, 1, "", 1);
    row("thumbnails/requests", "those for rows on which the list came to rest", total, ofSeen, "", 1);
    row("thumbnails/main-thread-decode", "the limit of 4 ms", decode, 4, "ms", 1);
    row("thumbnails/longest-stall", "the limit of 16 ms, best of three", stall, 16, "ms", 1);
    return decode > 0;
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    if (!measure()) {
        std::fprintf(stderr, "a measurement could not be made\n");
        return 1;
    }
    return 0;
}
