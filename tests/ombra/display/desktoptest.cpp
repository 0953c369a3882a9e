#include "ombra/outputs/displayedid.h"
#include "tests/ombra/display/virtualdesktop.h"
#include "tests/ombra/linkpeer.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"
#include "tests/support/testmedia.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTest>

#include <functional>

using namespace vantrel::ombra::test;
using namespace vantrel::test;

namespace {

constexpr int patience = 8000; // milliseconds
constexpr QRgb green = 0xff00ff00, red = 0xffff0000, black = 0xff000000;
constexpr QPoint left{0, 0}, right{640, 0};
const std::string outputs = "/device/system/gpus/0/outputs/";

QByteArray projector()
{
    return QByteArray::fromHex(
        QByteArray::fromStdString(vantrel::ombra::makeEdid({.product = "Projector",
                                                            .serial = "P-1",
                                                            .maxRate = 120,
                                                            .maxLineRate = 80,
                                                            .maxDotClock = 150'000'000,
                                                            .preferred = *vantrel::findDmt(0x1c),
                                                            .videoCodes = {19, 4}})));
}

} // namespace

/// A desktop with two screens: the machine's outputs, and what is seen on each of them.
class DesktopTest : public QObject
{
    Q_OBJECT

private:
    const QTemporaryDir m_folder;
    VirtualDesktop m_desktop;
    std::unique_ptr<OmbraProcess> m_ombra;
    std::unique_ptr<LinkPeer> m_peer;

    void send(const std::string& operation)
    {
        m_peer->send("[" + operation + "]");
        QVERIFY(m_peer->socket.waitForBytesWritten(patience));
    }
    void invoke(const std::string& method, const std::string& arguments)
    {
        send(R"({"op":"invoke","path":")" + method + R"(","value":)" + arguments + "}");
    }
    void play(const char* side, int slot)
    {
        invoke("/device/channels/0/" + std::string(side) + "/methods/playMedia",
               R"({"mediaUrl":"brume://collections/1/slots/)" + std::to_string(slot) + "\"}");
    }
    void target(const char* preview, const char* program)
    {
        const std::string rest = R"(","mode1":"fit","bg1":"#000000","mode2":"fit","bg2":"#000000","target)";
        invoke("/device/channels/0/methods/configure",
               R"({"target1":")" + std::string(preview) + rest + R"(2":")" + program + "\"}");
    }
    std::string value(const std::string& path)
    {
        m_peer->read();
        return m_peer->value(path);
    }
    std::string of(int output, const char* property)
    {
        return value(outputs + std::to_string(output) + "/properties/" + property);
    }
    QRgb at(QPoint corner) const
    {
        return m_desktop.grab(QRect(corner + QPoint(320, 90), QSize(1, 1))).pixel(0, 0);
    }

    /// Looked at until it is so, and then no more: while a screen is opened anew it is black for a moment.
    static bool soon(const std::function<bool()>& is) { return QTest::qWaitFor(is, patience); }
    int timesLogged(const char* what) const { return int(m_ombra->output().count(what)); }

    void startServer(const QStringList& options)
    {
        m_ombra = std::make_unique<OmbraProcess>();
        m_ombra->setMediaFolder(m_folder.path());
        m_ombra->setOptions(options + QStringList{QStringLiteral("--no-sound")});
        QVERIFY(m_ombra->start());
        meetServer();
    }
    void meetServer()
    {
        m_peer = std::make_unique<LinkPeer>(m_ombra->ports().link);
        QVERIFY(m_peer->socket.waitForConnected(patience));
        m_peer->send(R"([{"op":"get","path":""}])");
        play("preview", 1);
        play("program", 2);
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with the server");
        qputenv("SDL_VIDEODRIVER", "x11");              // never the console of whoever tests
        for (const char* color : {"0x00ff00", "red"}) { // by name: green is first
            const QString source =
                QStringLiteral("color=%1:s=640x360:d=0.04,format=rgb24").arg(QLatin1String(color));
            const QString file =
                color == QByteArray("red") ? QStringLiteral("red.png") : QStringLiteral("green.png");
            QVERIFY(runFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), source,
                               QStringLiteral("-frames:v"), QStringLiteral("1"), m_folder.filePath(file)}));
        }
        if (!m_desktop.start()) // who is not root may have none
            QSKIP(qPrintable(m_desktop.trouble()));
        QVERIFY(m_desktop.light(1, "640x360", right));
        m_desktop.setEdid(1, projector());
        qputenv("DISPLAY", m_desktop.name().toLatin1());
        startServer({QStringLiteral("--display"), QStringLiteral("--display-preview")});
    }

    void hasTheMachinesOutputs()
    {
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "name"), std::string("DUMMY1"), patience);
        QCOMPARE(of(0, "name"), std::string("DUMMY0"));
        QCOMPARE(of(0, "edid"), std::string());
        QCOMPARE(of(1, "edid"), projector().toHex().toStdString());
        QCOMPARE(of(1, "product"), std::string("Projector"));
        QCOMPARE(of(1, "width") + " " + of(1, "hTotal") + " " + of(1, "dotClock"),
                 std::string("640 752 17190000"));
        QVERIFY(soon([&] { return std::abs(std::stod(of(1, "screenRate")) - 60) < 0.1; }));
    }

    /// Each mapping is seen on its own output, and no other one, before and after a swap.
    void showsEachWhereItBelongs()
    {
        QVERIFY(soon([&] { return at(left) == green && at(right) == red; }));
        target("DUMMY1", "DUMMY0");
        QVERIFY(soon([&] { return at(left) == red && at(right) == green; }));
        target("DUMMY0", "DUMMY1");
        QVERIFY(soon([&] { return at(left) == green && at(right) == red; }));
        QVERIFY(!m_ombra->output().contains("no display: "));
    }

    /// What is typed beside an output never goes there.
    void takesNoKeys()
    {
        QVERIFY(soon([&] { return at(left) == green && at(right) == red; }));
        QVERIFY(!m_desktop.takesKeys(left) && !m_desktop.takesKeys(right));
    }

    void identifiesEach()
    {
        const auto isCard = [this](QPoint corner) {
            return m_desktop.grab(QRect(corner, QSize(1, 1))).pixel(0, 0) == 0xffffffff;
        };
        send(R"({"op":"replace","path":"/device/channels/0/preview/properties/media","value":""})");
        QVERIFY(soon([&] { return at(left) == black; }));
        QTRY_VERIFY_WITH_TIMEOUT(std::stod(of(0, "screenRate")) > 1, patience);
        invoke(outputs + "0/methods/identify", R"({"on":true})");
        QVERIFY(soon([&] { return isCard(left); }));
        QCOMPARE(at(right), red);
        invoke(outputs + "1/methods/identify", R"({"on":true})"); // program is there
        play("preview", 1);
        QVERIFY(soon([&] { return at(left) == green; }));
        QCOMPARE(of(0, "identified") + of(1, "identified"), std::string("falsefalse"));
    }

    /// What the desktop does with a screen is seen in the scene, and program comes back to where it was.
    void followsTheDesktop()
    {
        const std::string notice = "/device/system/properties/notice";
        QVERIFY(m_desktop.light(1, "", right));
        QVERIFY(soon([&] { return value(notice).find("DUMMY1 is switched off") != std::string::npos; }));
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "screenRate"), std::string("0"), patience);
        QCOMPARE(at(left), green);
        QVERIFY(m_desktop.light(1, "480x270", right));
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "width"), std::string("480"), patience);
        QVERIFY(soon([&] { return m_desktop.grab(QRect(right, QSize(1, 1))).pixel(0, 0) == red; }));
        QVERIFY(soon([&] { return value(notice).empty(); }));
        QVERIFY(m_desktop.light(1, "640x360", right));
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "width"), std::string("640"), patience);
        QVERIFY(soon([&] { return at(left) == green && at(right) == red; }));
    }

    /// A mode of the OUTPUTS tab is the screen's, also one that its driver does not list, until the server
    /// ends.
    void setsRealModes()
    {
        const auto shows = [this](const char* logged, int times, QSize size) {
            if (timesLogged(logged) < times)
                return false;
            const QImage seen = m_desktop.grab(QRect(right, size));
            return m_desktop.modeOf(1) == QStringLiteral("%1x%2+640").arg(size.width()).arg(size.height()) &&
                   seen.pixel(size.width() / 2, size.height() / 2) == red;
        };
        const std::string select = outputs + "1/methods/selectModeline";
        QTRY_VERIFY_WITH_TIMEOUT(timesLogged("DUMMY0 shows") > 0, patience);
        const int otherOpened = timesLogged("DUMMY0 shows");
        invoke(select, R"({"modelineId":"edid-1280x720p59.86"})");
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "width"), std::string("1280"), patience);
        QCOMPARE(of(1, "confirmSeconds") + " " + of(1, "modelineId"), std::string("15 edid-1280x720p59.86"));
        QVERIFY(soon([&] { return shows("DUMMY1 shows 1280 x 720 at 59.86 Hz", 1, {1280, 720}); }));
        QVERIFY(soon([&] { return at(left) == green; }));
        const int before = timesLogged("DUMMY1 shows 640 x 360");
        invoke(outputs + "1/methods/revertMode", "{}");
        QVERIFY(soon([&] { return shows("DUMMY1 shows 640 x 360", before + 1, {640, 360}); }));
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "width"), std::string("640"), patience);
        invoke(select, R"({"modelineId":"1280x720p50"})");
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "modelineId"), std::string("1280x720p50"), patience);
        QVERIFY(soon([&] { return shows("DUMMY1 shows 1280 x 720 at 50 Hz", 1, {1280, 720}); }));
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "screenRate"), std::string("50"), patience);
        QCOMPARE(timesLogged("DUMMY0 shows"), otherOpened); // it stood
        invoke(outputs + "1/methods/keepMode", "{}");
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "confirmSeconds"), std::string("0"), patience);
        m_ombra->kill();
        QCOMPARE(m_desktop.modeOf(1), QStringLiteral("1280x720+640"));
        QVERIFY(m_ombra->restart());
        QTRY_COMPARE_WITH_TIMEOUT(m_desktop.modeOf(1), QStringLiteral("640x360+640"), patience);
        meetServer();
        invoke(select, R"({"modelineId":"edid-1280x720p59.86"})");
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "width"), std::string("1280"), patience);
        m_ombra->stop();
        QTRY_COMPARE_WITH_TIMEOUT(m_desktop.modeOf(1), QStringLiteral("640x360+640"), patience);
    }

    /// Without preview the operator's screen is the operator's, until program is sent there.
    void movesProgramAlone()
    {
        m_ombra->stop();
        startServer({QStringLiteral("--display")});
        QVERIFY(soon([&] { return at(right) == red; }));
        QCOMPARE(at(left), black);
        for (int times = 0; times < 10; ++times) {
            const bool isBack = times % 2;
            const QPoint from = isBack ? left : right, to = isBack ? right : left;
            isBack ? target("DUMMY0", "DUMMY1") : target("DUMMY1", "DUMMY0");
            for (const QDeadlineTimer limit(patience); at(to) != red;) // it is somewhere all the time
                QVERIFY((at(from) == red || at(to) == red) && !limit.hasExpired());
            QVERIFY(soon([&] { return at(from) == black; }));
        }
    }

    /// A window that is moved to another screen goes by that one's beat.
    void goesByTheRateOfItsScreen()
    {
        m_ombra->stop();
        QVERIFY(m_desktop.light(1, "480x270", right));
        startServer({QStringLiteral("--display"), QStringLiteral("window")});
        QVERIFY(soon([&] { return at(left) == red && std::stod(of(1, "screenRate")) == 60; }));
        m_desktop.moveWindow(left + QPoint(320, 90), right - QPoint(200, 150)); // its middle counts
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "screenRate"), std::string("50"), patience);
        QVERIFY(soon([&] { return at(right) == red; }));
        m_ombra->stop();
        QVERIFY(m_desktop.light(1, "640x360", right));
    }

    /// A desktop that hangs holds up nobody, and is told as no screen.
    void survivesAHangingDesktop()
    {
        m_ombra->stop();
        startServer({QStringLiteral("--display"), QStringLiteral("--display-preview")});
        QVERIFY(soon([&] { return at(left) == green && at(right) == red; }));
        QVERIFY(soon([&] { return std::stod(of(1, "screenRate")) > 1; }));
        m_desktop.hang(true);
        play("program", 1);
        play("preview", 2);
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "screenRate"), std::string("0"), 2 * patience);
        QElapsedTimer clock;
        clock.start();
        m_ombra->stop(10000);
        const bool isInTime = clock.elapsed() < 9000; // and was not killed
        m_desktop.hang(false);
        QVERIFY(isInTime);
    }

    void survivesTheDesktop()
    {
        startServer({QStringLiteral("--display"), QStringLiteral("--display-preview")});
        QVERIFY(soon([&] { return at(left) == green && at(right) == red; }));
        m_desktop.end();
        QTRY_COMPARE_WITH_TIMEOUT(of(1, "screenRate") + of(0, "screenRate"), std::string("00"), patience);
        QTRY_VERIFY_WITH_TIMEOUT(value("/device/system/properties/notice").find("The desktop") == 0,
                                 patience);
        QCOMPARE(m_ombra->output().count("the desktop is gone"), 1);
        QVERIFY(!m_ombra->output().contains("is switched off"));
        QVERIFY(m_ombra->isRunning());
        QElapsedTimer clock;
        clock.start();
        m_ombra->stop(10000);
        QVERIFY(clock.elapsed() < 9000);
    }
};

HALCYRA_TEST(DesktopTest)
#include "desktoptest.moc"
