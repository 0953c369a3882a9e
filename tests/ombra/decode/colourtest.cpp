#include "ombra/decode/picturereader.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/support/testmain.h"

#include <QColor>

#include <atomic>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

/// The colours that a picture has on the screen, by what its file says of them or leaves out.
class ColourTest : public QObject
{
    Q_OBJECT

private:
    TestMedia m_media;
    const std::atomic<bool> m_stop{false};

private Q_SLOTS:
    void middle_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QColor>("expected");
        const auto row = [](const char* name, const QString& source, const char* options, const char* file,
                            const QColor& expected) {
            QTest::newRow(name) << source << QString::fromLatin1(options) << QString::fromLatin1(file)
                                << expected;
        };
        // 46/255 of the light of white is the grey of a grey card, 118; 128/255 is 188, 8/255 is 48.
        row("linear", QStringLiteral("color=0x2e8008:s=192x108:d=0.04,format=gbrpf32le"), "-frames:v 1",
            "light.exr", {118, 188, 48});
        row("linear, large", QStringLiteral("color=0x2e8008:s=1920x1080:d=0.04,format=gbrpf32le"),
            "-frames:v 1", "large.exr", {118, 188, 48});
        row("linear, 4K, half floats", QStringLiteral("color=0x2e8008:s=4096x2160:d=0.04,format=gbrpf32le"),
            "-frames:v 1 -compression zip16 -format half", "4k.exr", {118, 188, 48});
        row("linear, half transparent",
            QStringLiteral("color=0x2e8008@0.5:s=192x108:d=0.04,format=gbrapf32le"), "-frames:v 1",
            "alpha.exr", {118, 188, 48});
        row("linear grey", QStringLiteral("color=0x2e2e2e:s=192x108:d=0.04,format=grayf32le"), "-frames:v 1",
            "light.pfm", {118, 118, 118});
        row("plain", QStringLiteral("color=0x2e8008:s=1920x1080:d=0.04,format=rgb24"), "-frames:v 1",
            "plain.png", {46, 128, 8});
        // Red by BT.601 has 24 of green when BT.709 is meant.
        const auto red = [&](const char* size, int green) {
            row(size, QStringLiteral("color=red:s=%1:d=0.2").arg(QLatin1String(size)),
                "-c:v libx264 -preset ultrafast -qp 1 -pix_fmt yuv420p",
                (QByteArray(size) + ".mp4").constData(), {255, green, 0});
        };
        red("720x576", 0);
        red("1024x576", 0);
        red("480x854", 0);
        red("1280x536", 24);
        red("608x1080", 24);
        red("960x640", 24);
        row("transparent film", QStringLiteral("color=white@0.5:s=192x108:d=0.2,format=yuva420p"),
            "-c:v libvpx-vp9 -auto-alt-ref 0 -lossless 1", "half.webm", {128, 128, 128});
    }

    void middle()
    {
        QFETCH(QString, source);
        QFETCH(QString, options);
        QFETCH(QString, file);
        QFETCH(QColor, expected);
        QVERIFY(m_media.make(
            QStringList{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), source} +
                options.split(u' '),
            file));
        std::string error;
        const auto reader = openReader({m_media.file(qPrintable(file)), std::nullopt}, m_stop, &error);
        QVERIFY2(reader, error.c_str());
        Picture picture;
        QVERIFY(reader->seek(0, picture));
        const Ref<Surface> surface = drawn(picture.image, {160, 0});
        const Rgb seen = pixelAt(*surface, surface->width / 2, surface->height / 2);
        const auto near = [](int a, int b) { return qAbs(a - b) <= 3; };
        QVERIFY2(near(seen.red, expected.red()) && near(seen.green, expected.green()) &&
                     near(seen.blue, expected.blue()),
                 qPrintable(QStringLiteral("%1 %2 %3").arg(seen.red).arg(seen.green).arg(seen.blue)));
    }
};

HALCYRA_TEST(ColourTest)
#include "colourtest.moc"
