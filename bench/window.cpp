// What the running application costs: time to its window, stalls while a large scene loads, a preview
// picture.
#include "bench/row.h"
#include "tarn/net/linkframe.h"
#include "tests/support/appprocess.h"
#include "tests/support/fakelink.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmedia.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace vantrel;
using namespace vantrel::test;
using vantrel::bench::row;

namespace {

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

/// Milliseconds from the start of a program to the line "painted" on its standard output; negative on
/// failure.
double msToPaint(const QString& program, const QStringList& arguments)
{
    QProcess process;
    QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", home.path());
    environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
    environment.insert("XDG_DATA_HOME", home.filePath("data"));
    process.setProcessEnvironment(environment);
    QElapsedTimer clock;
    clock.start();
    process.start(program, arguments);
    QByteArray output;
    while (!output.contains("painted") && process.waitForReadyRead(15000))
        output += process.readAllStandardOutput();
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    process.kill();
    process.waitForFinished();
    return output.contains("painted") ? ms : -1;
}

bool measureWindow()
{
    const QString bin = qEnvironmentVariable("HALCYRA_BIN");
    std::vector<double> ours, theirs;
    for (int i = 0; i < 7; ++i) {
        theirs.push_back(msToPaint(bin + "/bench_emptywindow", {}));
        ours.push_back(msToPaint(bin + "/halcyra", QStringList{"--ui-test", "--ui-test-port", "0"} +
                                                       AppProcess::connectTo(ServerPorts{0, 0, 0, 0, 0})));
    }
    if (*std::min_element(ours.begin(), ours.end()) < 0 ||
        *std::min_element(theirs.begin(), theirs.end()) < 0)
        return false;
    row("window/on-screen", "an empty Qt window with one QQuickWidget", median(ours), median(theirs), "ms",
        0.5);
    return true;
}

bool measureLoad()
{
    constexpr int operations = 100000;
    FakeLink link(QByteArray::fromStdString(linkframe::encode(largeScene(operations))));
    if (!link.listen(QHostAddress::LocalHost))
        return false;
    AppProcess app;
    RobotClient robot;
    ServerPorts ports{0, link.serverPort(), 0, 0, 0};
    if (!app.start(AppProcess::connectTo(ports)) || !robot.connectTo(app.uiTestPort()))
        return false;
    if (!QTest::qWaitFor([&] { return link.answered() > 0; }, 15000))
        return false;
    robot.figures(true);
    const bool loaded =
        QTest::qWaitFor([&] { return robot.figures()["sceneSurfaces"].toInt() >= operations / 2; }, 30000);
    const double stall = robot.figures()["longestStallMs"].toDouble();
    row("load/longest-stall", "the limit of 50 ms", stall, 50, "ms", 1);
    return loaded;
}

/// What a stretch of time cost the main thread, in milliseconds a second, and how many pictures came in it.
struct Stretch
{
    double msASecond = 0;
    int pictures = 0;
};

/// Undisturbed: a robot that asks all the time would be measured too.
Stretch watch(RobotClient& robot, int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    const QJsonObject before = robot.figures(true);
    QTest::qWait(milliseconds);
    const QJsonObject after = robot.figures();
    const double spent = after["mainThreadCpuMs"].toDouble() - before["mainThreadCpuMs"].toDouble();
    return {spent * 1000 / double(clock.elapsed()), after["previewPictures"].toInt()};
}

bool measurePreview()
{
    QTemporaryDir folder;
    QDir(folder.path()).mkpath("media");
    const Quadrants colours{Qt::red, Qt::green, Qt::blue, Qt::gray};
    OmbraProcess ombra;
    ombra.setMediaFolder(folder.filePath("media"));
    AppProcess app;
    RobotClient robot;
    if (!makeClip(folder.filePath("media/1.mp4"), colours, 60) ||
        !makeClip(folder.filePath("media/2.mp4"), colours, 60) || !ombra.start() ||
        !app.start(AppProcess::connectTo(ombra.ports())) || !robot.connectTo(app.uiTestPort()) ||
        robot.waitFor("TakeControls-Take-Button").isEmpty())
        return false;
    const Stretch idle = watch(robot, 4000); // the window and its figures alone
    if (!robot.doubleClickCell("MediaPanel-slots-view", 0, 0) || !robot.click("TakeControls-Take-Button") ||
        !robot.doubleClickCell("MediaPanel-slots-view", 1, 0))
        return false;
    if (!QTest::qWaitFor([&] { return robot.figures()["previewPictures"].toInt() > 100; }, 20000))
        return false;
    constexpr int length = 6000;
    const Stretch playing = watch(robot, length);
    const double cost = (playing.msASecond - idle.msASecond) * length / 1000 / playing.pictures;
    row("preview/main-thread-per-picture", "the limit of 2 ms", cost, 2, "ms", 1);
    return playing.pictures > 200;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (!measureWindow() || !measureLoad() || !measurePreview()) {
        std::fprintf(stderr, "a measurement could not be made\n");
        return 1;
    }
    return 0;
}
