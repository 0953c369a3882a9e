#include "tests/ombra/display/virtualscreen.h"
#include "tests/ombra/linkpeer.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"
#include "tests/support/testmedia.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace vantrel::ombra::test;
using namespace vantrel::test;

namespace {

constexpr QSize screenSize(640, 360);
constexpr int patience = 8000; // milliseconds

/// Whether nothing changes in the picture around there: across an edge its colour is a matter of scaling.
bool isFlat(const QImage& picture, int x, int y)
{
    constexpr int reach = 4;
    const QRgb here = picture.pixel(x, y);
    for (const QPoint at : {QPoint(-reach, 0), QPoint(reach, 0), QPoint(0, -reach), QPoint(0, reach)}) {
        if (picture.valid(QPoint(x, y) + at) && picture.pixel(QPoint(x, y) + at) != here)
            return false;
    }
    return true;
}

int apart(QRgb a, QRgb b)
{
    return std::max(
        {std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

/// The largest difference of a channel where the expected picture is flat; 255 for pictures of other sizes.
int furthest(const QImage& seen, const QImage& expected)
{
    if (seen.size() != expected.size())
        return 255;
    int result = 0;
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x) {
            if (isFlat(expected, x, y))
                result = std::max(result, apart(seen.pixel(x, y), expected.pixel(x, y)));
        }
    }
    return result;
}

/// What holds all pixels that are nearer to the one colour than to the other.
QRect extent(const QImage& picture, QRgb color, QRgb other)
{
    QRect all;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb here = picture.pixel(x, y);
            if (apart(here, color) < apart(here, other))
                all |= QRect(x, y, 1, 1);
        }
    }
    return all;
}

} // namespace

/// What an audience sees: the pixels of a screen that a server of its own process has.
class DisplayTest : public QObject
{
    Q_OBJECT

private:
    void play(const QString& file, const char* side = "program")
    {
        const int slot = int(m_files.indexOf(file)) + 1;
        QVERIFY(slot > 0);
        invoke("/device/channels/0/" + std::string(side) + "/methods/playMedia",
               R"({"mediaUrl":"brume://collections/1/slots/)" + std::to_string(slot) + "\"}");
    }
    /// Whether the newest that the server's disk says of program is that file.
    bool isKept(const QString& file) const
    {
        const QDir folder(m_ombra->stateFolder());
        QByteArray written;
        for (const QString& name : folder.entryList({QStringLiteral("journal-*")}, QDir::Files, QDir::Name)) {
            QFile journal(folder.filePath(name));
            if (journal.open(QIODevice::ReadOnly))
                written += journal.readAll();
        }
        const QByteArray property = "/device/channels/0/program/properties/media\":\"";
        const QByteArray slot =
            "brume://collections/1/slots/" + QByteArray::number(m_files.indexOf(file) + 1) + '"';
        const qsizetype at = written.lastIndexOf(property);
        return at >= 0 && written.mid(at + property.size()).startsWith(slot);
    }
    void invoke(const std::string& method, const std::string& arguments)
    {
        send(R"({"op":"invoke","path":")" + method + R"(","value":)" + arguments + "}");
    }
    void write(const std::string& property, const std::string& value)
    {
        send(R"({"op":"replace","path":"/device/channels/0/)" + property + R"(","value":")" + value + "\"}");
    }
    void send(const std::string& operation)
    {
        m_peer->send("[" + operation + "]");
        QVERIFY(m_peer->socket.waitForBytesWritten(patience));
    }

    const QTemporaryDir m_folder;
    QStringList m_files; // in the order of their slots
    std::unique_ptr<VirtualScreen> m_screen;
    std::unique_ptr<OmbraProcess> m_ombra;
    std::unique_ptr<LinkPeer> m_peer;

    bool make(const QString& file, const QString& source, const QStringList& options)
    {
        m_files << file;
        return runFfmpeg(
            QStringList{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), source} +
            options + QStringList{m_folder.filePath(file)});
    }
    /// Bars without loss, in that format, matrix and range.
    bool makeBars(const QString& file, const char* format, const char* matrix, const char* range,
                  const char* codec = "ffv1")
    {
        return make(
            file,
            QStringLiteral("smptehdbars=s=640x360:r=25:d=0.4,format=%1,setparams=colorspace=%2:range=%3")
                .arg(QLatin1String(format), QLatin1String(matrix), QLatin1String(range)),
            {QStringLiteral("-c:v"), QLatin1String(codec)});
    }
    /// The file's picture as the tool sees it.
    QImage expected(const QString& file) const
    {
        const QTemporaryDir folder;
        const QString picture = folder.filePath(QStringLiteral("expected.png"));
        const bool isMade = runFfmpeg(
            {QStringLiteral("-i"), m_folder.filePath(file), QStringLiteral("-frames:v"), QStringLiteral("1"),
             QStringLiteral("-sws_flags"), QStringLiteral("bicubic+accurate_rnd+full_chroma_int"),
             QStringLiteral("-pix_fmt"), QStringLiteral("rgb24"), picture});
        return isMade ? QImage(picture).convertToFormat(QImage::Format_RGB32) : QImage();
    }

    void makeMedia()
    {
        QVERIFY(makeBars(QStringLiteral("bars601.mkv"), "yuv420p", "smpte170m", "tv"));
        QVERIFY(makeBars(QStringLiteral("bars601full.mkv"), "yuv420p", "smpte170m", "pc"));
        QVERIFY(makeBars(QStringLiteral("bars709.mkv"), "yuv420p", "bt709", "tv"));
        QVERIFY(makeBars(QStringLiteral("bars709deep.mkv"), "yuv422p10le", "bt709", "tv"));
        QVERIFY(makeBars(QStringLiteral("bars709full.mkv"), "yuv444p", "bt709", "pc"));
        QVERIFY(makeBars(QStringLiteral("bars709packed.mov"), "uyvy422", "bt709", "tv", "rawvideo"));
        QVERIFY(make(QStringLiteral("block.png"),
                     QStringLiteral("color=white:s=100x60:d=0.04,format=rgb24,drawbox=40:24:20:12:red:fill"),
                     {QStringLiteral("-frames:v"), QStringLiteral("1")}));
        QVERIFY(make(QStringLiteral("glass.png"),
                     QStringLiteral("color=white@0.5:s=640x360:d=0.04,format=rgba"),
                     {QStringLiteral("-frames:v"), QStringLiteral("1")}));
        QVERIFY(make(QStringLiteral("green.png"),
                     QStringLiteral("color=0x00ff00:s=640x360:d=0.04,format=rgb24"),
                     {QStringLiteral("-frames:v"), QStringLiteral("1")}));
    }

    void startServer(const QStringList& options)
    {
        m_ombra = std::make_unique<OmbraProcess>();
        m_ombra->setMediaFolder(m_folder.path());
        m_ombra->setOptions(options);
        QVERIFY(m_ombra->start());
        connectPeer();
    }
    void connectPeer()
    {
        m_peer = std::make_unique<LinkPeer>(m_ombra->ports().link);
        QVERIFY(m_peer->socket.waitForConnected(patience));
        m_peer->send(R"([{"op":"get","path":""}])");
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with the server");
        qputenv("SDL_VIDEODRIVER", "x11"); // never the console of whoever tests
        makeMedia();
        m_screen = std::make_unique<VirtualScreen>(screenSize);
        QVERIFY(m_screen->start());
        qputenv("DISPLAY", m_screen->name().toLatin1());
        startServer({QStringLiteral("--display")});
    }

    void colors_data()
    {
        QTest::addColumn<QString>("file");
        for (const QString& file : m_files) {
            if (file.startsWith(u"bars"))
                QTest::newRow(qPrintable(file)) << file;
        }
    }

    void colors()
    {
        QFETCH(QString, file);
        const QImage wanted = expected(file);
        play(file);
        QTRY_VERIFY2_WITH_TIMEOUT(
            furthest(m_screen->grab(), wanted) <= 2,
            qPrintable(QString::number(furthest(m_screen->grab(), wanted)) + QStringLiteral(" apart")),
            patience);
    }

    void places_data()
    {
        QTest::addColumn<QRect>("picture");
        QTest::addColumn<QRect>("block"); // of the medium: 20 x 12 in the middle of 100 x 60
        QTest::addColumn<int>("slack"); // where a picture is cut the renderer begins with a whole pixel of it
        QTest::newRow("fit") << QRect(20, 0, 600, 360) << QRect(260, 144, 120, 72) << 0;
        QTest::newRow("clip") << QRect(0, 0, 640, 360) << QRect(256, 142, 128, 76) << 7;
        QTest::newRow("stretch") << QRect(0, 0, 640, 360) << QRect(256, 144, 128, 72) << 0;
        QTest::newRow("centered") << QRect(270, 150, 100, 60) << QRect(310, 174, 20, 12) << 0;
        QTest::newRow("topLeft") << QRect(0, 0, 100, 60) << QRect(40, 24, 20, 12) << 0;
        QTest::newRow("topRight") << QRect(540, 0, 100, 60) << QRect(580, 24, 20, 12) << 0;
        QTest::newRow("bottomLeft") << QRect(0, 300, 100, 60) << QRect(40, 324, 20, 12) << 0;
        QTest::newRow("bottomRight") << QRect(540, 300, 100, 60) << QRect(580, 324, 20, 12) << 0;
    }

    void places()
    {
        QFETCH(QRect, picture);
        QFETCH(QRect, block);
        QFETCH(int, slack);
        constexpr QRgb ground = 0xff0000ff, white = 0xffffffff, red = 0xffff0000;
        write("mappings/1/properties/backgroundColor", "#0000ff");
        write("mappings/1/properties/defaultScaleMode", QTest::currentDataTag());
        play(QStringLiteral("block.png"));
        const auto isPlaced = [&] {
            const QRect seen =
                extent(m_screen->grab().copy(picture), red, white).translated(picture.topLeft());
            return std::abs(seen.width() - block.width()) <= (slack ? 1 : 0) &&
                   std::abs(seen.height() - block.height()) <= (slack ? 1 : 0) &&
                   (seen.topLeft() - block.topLeft()).manhattanLength() <= slack;
        };
        QTRY_VERIFY_WITH_TIMEOUT(isPlaced(), patience);
        const QImage seen = m_screen->grab();
        QCOMPARE(extent(seen, white, ground) | extent(seen, red, ground), picture);
    }

    void standsOnTheGround()
    {
        write("mappings/1/properties/defaultScaleMode", "fit");
        write("mappings/1/properties/backgroundColor", "#0000ff");
        play(QStringLiteral("glass.png"));
        QImage wanted(screenSize, QImage::Format_RGB32);
        wanted.fill(QColor(128, 128, 255));
        QTRY_VERIFY_WITH_TIMEOUT(furthest(m_screen->grab(), wanted) <= 2, patience);
    }

    void crossfades_data()
    {
        QTest::addColumn<bool>("isOfLight");
        QTest::newRow("values") << false;
        QTest::newRow("light") << true;
    }

    void crossfades()
    {
        QFETCH(bool, isOfLight);
        invoke("/device/channels/0/mappings/1/methods/selectLinearTransitions",
               isOfLight ? R"({"on":true})" : R"({"on":false})");
        const auto middle = [this] { return m_screen->grab().pixel(320, 180); };
        write("mappings/1/properties/backgroundColor", "#000000");
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(middle(), 0xff00ff00, patience);
        play(QStringLiteral("block.png"), "preview");
        invoke("/device/channels/0/methods/take", R"({"transitionType":"crossfade","transitionDuration":2})");
        // Half of the green, and as much of the red block as there is less of it: of their values, or of the
        // light that a screen makes of them.
        const auto share = [isOfLight](int value) { return std::pow(value / 255.0, isOfLight ? 2.4 : 1); };
        QTRY_VERIFY_WITH_TIMEOUT(std::abs(share(qGreen(middle())) - 0.5) < 0.2, patience);
        const QRgb mixed = middle();
        QVERIFY2(std::abs(share(qGreen(mixed)) + share(qRed(mixed)) - 1) <= 0.02 && qBlue(mixed) == 0,
                 qPrintable(QColor(mixed).name()));
        QTRY_COMPARE_WITH_TIMEOUT(middle(), 0xffff0000, patience);
    }

    void standsInTheScene()
    {
        const std::string program = "/device/system/gpus/0/outputs/0/properties/"; // the only screen there is
        QTRY_COMPARE_WITH_TIMEOUT((m_peer->read(), m_peer->value(program + "softwareRenderer")),
                                  std::string("true"), patience);
        QVERIFY(std::stod(m_peer->value(program + "screenRate")) > 20);
        QCOMPARE(m_peer->value(program + "width"), std::to_string(screenSize.width()));
        QCOMPARE(m_peer->value(program + "connected"), std::string("true"));
        QCOMPARE(m_peer->value("/device/system/gpus/0/outputs/1/properties/connected"), std::string("false"));
    }

    /// Before pictures are lost by it, and no more once nothing moves.
    void tellsWhatPaintingTakes()
    {
        const auto load = [this] {
            m_peer->read();
            return std::atof(m_peer->value("/device/system/gpus/0/outputs/0/properties/paintLoad").c_str());
        };
        write("program/properties/endAction", "repeat");
        play(QStringLiteral("bars709.mkv"));
        QTRY_VERIFY_WITH_TIMEOUT(load() > 0, patience);
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(load(), 0.0, patience);
    }

    /// On a screen without a program alone, and not again after it.
    void showsWhichOutputItIs()
    {
        const std::string output = "/device/system/gpus/0/outputs/0";
        const auto identify = [&](const char* on) {
            invoke(output + "/methods/identify", std::string(R"({"on":)") + on + "}");
        };
        const auto isIdentified = [&] {
            m_peer->read();
            return m_peer->value(output + "/properties/identified") == "true";
        };
        // The outermost pixels, and between the bars of colour and those of grey.
        const auto isCard = [this] {
            const QImage seen = m_screen->grab();
            return seen.pixel(0, 0) == 0xffffffff && seen.pixel(639, 359) == 0xffffffff &&
                   seen.pixel(4, 290) == 0xffffffff && seen.pixel(120, 290) == 0xffffff00 &&
                   seen.pixel(4, 340) == 0xff000000;
        };
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff00ff00, patience);
        identify("true");
        play(QStringLiteral("block.png")); // by then that has been answered
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xffff0000, patience);
        QVERIFY(!isIdentified() && !isCard());
        write("program/properties/media", "");
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff000000, patience);
        identify("true");
        QTRY_VERIFY_WITH_TIMEOUT(isCard() && isIdentified(), patience);
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff00ff00, patience);
        QTRY_VERIFY_WITH_TIMEOUT(!isIdentified(), patience);
        write("program/properties/media", "");
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff000000, patience);
        identify("true");
        QTRY_VERIFY_WITH_TIMEOUT(isCard(), patience);
        identify("false");
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff000000, patience);
    }

    /// Killed and started again; its service makes a pause between the two.
    void comesBackWithinTwoSeconds()
    {
        constexpr QRgb green = 0xff00ff00;
        constexpr int pause = 200; // milliseconds
        const auto middle = [this] { return m_screen->grab().pixel(320, 180); };
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(middle(), green, patience);
        QTRY_VERIFY_WITH_TIMEOUT(isKept(QStringLiteral("green.png")), patience);
        QElapsedTimer clock;
        clock.start();
        m_ombra->kill();
        QTRY_VERIFY_WITH_TIMEOUT(middle() != green, patience);
        QVERIFY(m_ombra->start());
        QTRY_COMPARE_WITH_TIMEOUT(middle(), green, patience);
        const qint64 taken = clock.elapsed() + pause;
        qInfo("program is back after %lld ms", taken);
        QVERIFY(taken < 2000 * vantrel::test::slowness);
        connectPeer();
    }

    /// The end of the desktop is not the end of the server, which goes on and ends when it is told to.
    void survivesTheDesktop()
    {
        m_screen->end();
        QTRY_VERIFY_WITH_TIMEOUT(m_ombra->output().contains("the desktop is gone"), patience);
        QVERIFY(m_ombra->isRunning());
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(
            (m_peer->read(), m_peer->value("/device/channels/0/program/properties/media")),
            "brume://collections/1/slots/" + std::to_string(m_files.indexOf(QStringLiteral("green.png")) + 1),
            patience);
        QElapsedTimer clock;
        clock.start();
        m_ombra->stop(10000);
        QVERIFY(clock.elapsed() < 9000); // and was not killed
    }

    /// Without a screen the log says so once, and the first that comes is taken.
    void takesTheScreenThatComes()
    {
        startServer({QStringLiteral("--display")});
        QTRY_VERIFY_WITH_TIMEOUT(m_ombra->output().contains("no display: "), patience);
        play(QStringLiteral("green.png"));
        QVERIFY(m_screen->start());
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff00ff00, patience);
        m_ombra->stop();
        QCOMPARE(m_ombra->output().count("no display: "), 1);
    }
};

HALCYRA_TEST(DisplayTest)
#include "displaytest.moc"
