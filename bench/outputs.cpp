// What a display that is plugged in or pulled out holds the running application
// up for: in the OUTPUTS tab, which shows everything of it, and in the PLAYER
// tab, where an operator is on a show night.
#include "bench/row.h"
#include "tests/support/appprocess.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace vantrel;
using namespace vantrel::test;
using vantrel::bench::row;

namespace {

constexpr int rounds = 10;
constexpr int settling = 300; // milliseconds in which everything that comes of it has been drawn

/// A hand at a connector, and the longest stall that comes of it in
/// milliseconds; below 0 where the server does not take it.
double stallOf(const OmbraProcess& ombra, RobotClient& robot, int output, bool connected)
{
    static QNetworkAccessManager network;
    QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/simulate/outputs/%2")
                                     .arg(ombra.ports().http)
                                     .arg(output)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    robot.figures(true);
    const std::unique_ptr<QNetworkReply> reply(
        network.post(request, connected ? "{\"connected\":true}" : "{\"connected\":false}"));
    if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 10000) || reply->error())
        return -1;
    QTest::qWait(settling);
    return robot.figures()["longestOwnStallMs"].toDouble();
}

/// The middle one of the stalls at which a display goes or comes, whichever
/// holds up longer.
double measure(const OmbraProcess& ombra, RobotClient& robot)
{
    std::vector<double> pulled, plugged;
    for (int i = 0; i < rounds; ++i) {
        pulled.push_back(stallOf(ombra, robot, 1, false));
        plugged.push_back(stallOf(ombra, robot, 1, true));
    }
    std::ranges::sort(pulled);
    std::ranges::sort(plugged);
    std::fprintf(stderr, "pulled %.2f to %.2f ms, plugged %.2f to %.2f ms\n", pulled.front(), pulled.back(),
                 plugged.front(), plugged.back());
    return std::min(pulled.front(), plugged.front()) < 0 ? -1
                                                         : std::max(pulled[rounds / 2], plugged[rounds / 2]);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    OmbraProcess ombra;
    ombra.setOptions({QStringLiteral("--simulate-outputs")});
    AppProcess app;
    RobotClient robot;
    if (!ombra.start() || !app.start(AppProcess::connectTo(ombra.ports())) ||
        !robot.connectTo(app.uiTestPort()) ||
        robot.waitFor(QStringLiteral("TakeControls-Take-Button")).isEmpty())
        return 1;
    const double neverShown = measure(ombra, robot);
    if (!robot.click(QStringLiteral("MainNavigationBar-outputs-button")) ||
        robot.waitFor(QStringLiteral("Mapping-output1-target")).isEmpty())
        return 1;
    const double shown = measure(ombra, robot);
    if (!robot.click(QStringLiteral("MainNavigationBar-player-button")) ||
        robot.waitFor(QStringLiteral("TakeControls-Take-Button")).isEmpty())
        return 1;
    const double hidden = measure(ombra, robot);
    if (std::min({neverShown, shown, hidden}) < 0)
        return 1;
    row("outputs/display-in-sight", "half a picture of a 60 Hz screen", shown, 8, "ms", 1);
    row("outputs/display-out-of-sight", "an eighth of a picture of a 60 Hz screen",
        std::max(neverShown, hidden), 2, "ms", 1);
    return 0;
}
