// What the whole application takes of the processor while two previews run in a window that nobody touches,
// beside a bare Qt program that paints the same pictures. The server is a process of its own and not counted.
#include "bench/row.h"
#include "tests/support/appprocess.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmedia.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <unistd.h>

using namespace vantrel;
using namespace vantrel::test;

namespace {

constexpr int rounds = 2;          // each way in turn, so that a busy moment of the machine meets both
constexpr int roundLength = 10000; // milliseconds
const QString windowRect = QStringLiteral("0,0,1920,1080");

/// Processor time of all threads of a process, in milliseconds; negative when there is no such process.
double cpuMs(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    return fields.size() < 13
               ? -1
               : (fields[11].toDouble() + fields[12].toDouble()) * 1000 / double(sysconf(_SC_CLK_TCK));
}

/// Per cent of one core that the process takes while nobody asks it anything.
double watch(qint64 pid)
{
    QElapsedTimer clock;
    clock.start();
    const double before = cpuMs(pid);
    QTest::qWait(roundLength);
    return (cpuMs(pid) - before) * 100 / double(clock.elapsed());
}

struct Shares
{
    double playing = 0, peer = 0; // per cent of a core
    bool complete = true;         // all pictures came
};

bool isMost(double pictures)
{
    return pictures > 0.9 * 2 * 25 * roundLength / 1000;
}

void watchBoth(const OmbraProcess& ombra, const AppProcess& app, RobotClient& robot, Shares& shares)
{
    robot.figures(true);
    robot.restFigures();
    shares.playing += watch(app.pid()) / rounds;
    shares.complete = shares.complete && isMost(robot.figures()["previewPictures"].toInt());

    const auto place = [&](const char* channel) {
        return robot
            .find(QStringLiteral("%1-PlaybackWidget-PreviewWidget").arg(QLatin1String(channel)))["rect"]
            .toString();
    };
    QProcess peer;
    peer.start(OmbraProcess::binary(QStringLiteral("bench_twopreviews")),
               {QString::number(ombra.ports().preview), windowRect, place("Preview"), place("Program")});
    const auto painted = [&, count = 0]() mutable {
        for (const QByteArray& line : peer.readAllStandardOutput().split('\n'))
            count = std::max(count, line.mid(8).toInt());
        return count;
    };
    auto counted = painted;
    shares.complete = shares.complete && QTest::qWaitFor([&] { return counted() > 0; }, 10000);
    const int before = counted();
    shares.peer += watch(peer.processId()) / rounds;
    shares.complete = shares.complete && isMost(counted() - before + 50);
    peer.terminate();
    peer.waitForFinished();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QTemporaryDir folder;
    QDir(folder.path()).mkpath("media");
    OmbraProcess ombra;
    ombra.setMediaFolder(folder.filePath("media"));
    AppProcess app;
    RobotClient robot;
    if (!makeMovingClip(folder.filePath("media/1.mp4"), 120) ||
        !makeMovingClip(folder.filePath("media/2.mp4"), 120) || !ombra.start() ||
        !app.start(AppProcess::connectTo(ombra.ports()) + QStringList{"-geometry", "1920x1080+0+0"}) ||
        !robot.connectTo(app.uiTestPort()) || robot.waitFor("TakeControls-Take-Button").isEmpty())
        return 1;
    if (robot.find("MainWindow")["rect"].toString() != windowRect)
        return 1;
    robot.restFigures();
    QTest::qWait(2000); // what a start still does behind its window
    const double idle = watch(app.pid());
    if (!robot.doubleClickCell("MediaPanel-slots-view", 0, 0) || !robot.click("TakeControls-Take-Button") ||
        !robot.doubleClickCell("MediaPanel-slots-view", 1, 0))
        return 1;
    QTest::qWait(2000); // the take, and the hover of its button
    Shares shares;
    for (int i = 0; i < rounds; ++i)
        watchBoth(ombra, app, robot, shares);
    if (!shares.complete) {
        std::fprintf(stderr, "pictures are missing\n");
        return 1;
    }
    bench::row("player/cpu-idle", "the limit of 2 % of a core", std::max(idle, 0.1), 2, "%", 1);
    bench::row("player/cpu-two-previews", "the limit of 25 % of a core", shares.playing, 25, "%", 1);
    bench::row("player/cpu-two-previews-bare", "a bare Qt program that only paints them", shares.playing,
               shares.peer, "%", 0.4);
    return 0;
}
