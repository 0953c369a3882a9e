#include "tests/ombra/display/displayprobe.h"
#include "tests/support/testmain.h"

#include <cmath>

using namespace vantrel::test;

namespace {

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

/// The pixels that an audience sees, by each of those who paint them.
class PaintingTest : public QObject, private DisplayProbe
{
    Q_OBJECT

private:
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

    QString m_painter; // of the server that runs

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("painter");
        for (const char* painter : {"card", "processor"})
            QTest::newRow(painter) << QString::fromLatin1(painter);
    }
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with the server");
        startScreen();
    }
    void init()
    {
        QFETCH_GLOBAL(QString, painter);
        if (painter != m_painter)
            startServer({QStringLiteral("--display"), QStringLiteral("--paint-by"), painter});
        m_painter = painter;
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

    void brightPictures_data()
    {
        QTest::addColumn<QList<int>>("greys");
        QTest::newRow("arib-std-b67") << QList<int>{0, 34, 68, 102, 136, 175, 219, 247};
        QTest::newRow("smpte2084") << QList<int>{0, 21, 51, 97, 154, 203, 235, 251};
    }

    /// Of a larger range than the screen's: greys are those of BT.2100, with the curve of BT.2390 down to a
    /// white of 203 cd/m² and the gamma of BT.1886, whoever paints them; colours are of their hue.
    void brightPictures()
    {
        QFETCH(QList<int>, greys);
        const QString file = QStringLiteral("bright-%1.mkv").arg(QLatin1String(QTest::currentDataTag()));
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(600, 90), 0xff00ff00, patience);
        play(file);
        QTRY_VERIFY_WITH_TIMEOUT(qRed(m_screen->grab().pixel(600, 90)) > 150, patience);
        const QImage seen = m_screen->grab();
        for (int step = 0; step < 8; ++step) {
            const QColor grey = seen.pixel(40 + 80 * step, 90), red = seen.pixel(40 + 80 * step, 270);
            const int wanted = greys[step];
            QVERIFY2(apart(grey.rgb(), qRgb(wanted, wanted, wanted)) <= 2,
                     qPrintable(QStringLiteral("%1 for %2").arg(grey.name()).arg(wanted)));
            QVERIFY(red.red() > std::max(red.green(), red.blue()) + 40);
        }
    }

    /// Of light: its values are those of IEC 61966-2-1.
    void linearPictures()
    {
        play(QStringLiteral("light.exr"));
        QImage wanted(screenSize, QImage::Format_RGB32);
        wanted.fill(QColor(118, 188, 48));
        QTRY_VERIFY2_WITH_TIMEOUT(furthest(m_screen->grab(), wanted) <= 2,
                                  qPrintable(QColor(m_screen->grab().pixel(320, 180)).name()), patience);
    }

    void places_data()
    {
        QTest::addColumn<QRect>("picture");
        QTest::addColumn<QRect>("block"); // of the medium: 20 x 12 in the middle of 100 x 60
        QTest::newRow("fit") << QRect(20, 0, 600, 360) << QRect(260, 144, 120, 72);
        QTest::newRow("clip") << QRect(0, 0, 640, 360) << QRect(256, 142, 128, 76);
        QTest::newRow("stretch") << QRect(0, 0, 640, 360) << QRect(256, 144, 128, 72);
        QTest::newRow("centered") << QRect(270, 150, 100, 60) << QRect(310, 174, 20, 12);
        QTest::newRow("topLeft") << QRect(0, 0, 100, 60) << QRect(40, 24, 20, 12);
        QTest::newRow("topRight") << QRect(540, 0, 100, 60) << QRect(580, 24, 20, 12);
        QTest::newRow("bottomLeft") << QRect(0, 300, 100, 60) << QRect(40, 324, 20, 12);
        QTest::newRow("bottomRight") << QRect(540, 300, 100, 60) << QRect(580, 324, 20, 12);
    }

    void places()
    {
        QFETCH(QRect, picture);
        QFETCH(QRect, block);
        constexpr QRgb ground = 0xff0000ff, white = 0xffffffff, red = 0xffff0000;
        write("mappings/1/properties/backgroundColor", "#0000ff");
        write("mappings/1/properties/defaultScaleMode", QTest::currentDataTag());
        play(QStringLiteral("block.png"));
        const auto isPlaced = [&] {
            const QRect seen =
                extent(m_screen->grab().copy(picture), red, white).translated(picture.topLeft());
            return seen == block;
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
};

HALCYRA_TEST(PaintingTest)
#include "paintingtest.moc"
