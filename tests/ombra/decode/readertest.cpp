#include "ombra/decode/avhandles.h"
#include "ombra/decode/graphicscard.h"
#include "ombra/decode/picturereader.h"
#include "tarn/log/log.h"
#include "tarn/media/mediaenums.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QRect>
#include <QScopeGuard>

#include <sys/stat.h>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

namespace {

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

/// Decodes so many pictures, and gives so many of them out.
class FailingDevice : public DecodingDevice
{
public:
    FailingDevice(int decoded, int given)
        : m_given(given)
    {
        left() = decoded;
    }
    void offerTo(AVCodecContext& decoder) override
    {
        ++m_offers;
        decoder.get_buffer2 = [](AVCodecContext* of, AVFrame* frame, int flags) {
            return left()-- > 0 ? avcodec_default_get_buffer2(of, frame, flags) : AVERROR(EIO);
        };
        GraphicsCard::note(decoder, true);
    }
    int fetch(AVFrame& /*frame*/) override { return m_given-- > 0 ? 0 : AVERROR(EIO); }
    int offers() const { return m_offers; }

private:
    static std::atomic<int>& left()
    {
        static std::atomic<int> pictures;
        return pictures;
    }
    int m_given, m_offers = 0;
};

} // namespace

class ReaderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PictureReader> open(const char* name, std::optional<SequenceRun> run = std::nullopt)
    {
        return openReader({m_media.file(name), run}, m_stop, &m_error);
    }

    TestMedia m_media;
    std::atomic<bool> m_stop{false};
    std::string m_error;

    /// The smallest rectangle that holds every pixel of this kind.
    static QRect extentOf(const Surface& surface, const std::function<bool(Rgb)>& test)
    {
        QRect extent;
        for (int y = 0; y < surface.height; ++y) {
            for (int x = 0; x < surface.width; ++x) {
                if (test(pixelAt(surface, x, y)))
                    extent |= QRect(x, y, 1, 1);
            }
        }
        return extent;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_media.make(TestMedia::numbered(2) + TestMedia::h264(12), QStringLiteral("gop.mp4")));
        QVERIFY(m_media.make(TestMedia::numbered(2) + TestMedia::h264(250), QStringLiteral("long.mkv")));
        QVERIFY(m_media.make(TestMedia::numbered(2) + TestMedia::h264(12), QStringLiteral("stream.ts")));
        QVERIFY(
            m_media.make(TestMedia::numbered(2) + words("-c:v mpeg4 -bf 2 -q:v 2"), QStringLiteral("b.avi")));
        QVERIFY(
            m_media.make(TestMedia::numbered(2) + words("-c:v mjpeg -q:v 2"), QStringLiteral("intra.mov")));
        QVERIFY(m_media.make(TestMedia::numbered(2) + TestMedia::h264(12), QStringLiteral("raw.h264")));
    }

    void standsInTheOutputAsItIsScaled_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QSize>("output");
        QTest::addColumn<QRect>("all"); // of the picture, on a canvas of 480 x 270
        QTest::addColumn<QRect>("top"); // of its upper quarter, which is red
        const auto row = [](ScaleMode mode, QRect all, QRect top, QSize output = {1920, 1080}) {
            QTest::addRow("%s in %dx%d", toStr(mode), output.width(), output.height())
                << int(mode) << output << all << top;
        };
        row(ScaleMode::Default, {60, 0, 360, 270}, {60, 0, 360, 67});
        row(ScaleMode::Fit, {60, 0, 360, 270}, {60, 0, 360, 67});
        row(ScaleMode::Clip, {0, 0, 480, 270}, {0, 0, 480, 45});
        row(ScaleMode::Stretch, {0, 0, 480, 270}, {0, 0, 480, 67});
        row(ScaleMode::Centered, {160, 75, 160, 120}, {160, 75, 160, 30});
        row(ScaleMode::TopLeft, {0, 0, 160, 120}, {0, 0, 160, 30});
        row(ScaleMode::TopRight, {320, 0, 160, 120}, {320, 0, 160, 30});
        row(ScaleMode::BottomLeft, {0, 150, 160, 120}, {0, 150, 160, 30});
        row(ScaleMode::BottomRight, {320, 150, 160, 120}, {320, 150, 160, 30});
        row(ScaleMode::Centered, {80, 15, 320, 240}, {80, 15, 320, 60}, {960, 540});
        row(ScaleMode::Centered, {0, 0, 480, 270}, {}, {320, 180});    // larger than the output
        row(ScaleMode::BottomRight, {0, 0, 480, 270}, {}, {320, 180}); // what is above is cut
        row(ScaleMode::TopLeft, {0, 0, 480, 270}, {0, 0, 480, 180}, {320, 180});
        row(ScaleMode::Stretch, {60, 0, 360, 270}, {60, 0, 360, 67}, {800, 600}); // an output of 4:3
        row(ScaleMode::TopRight, {132, 0, 288, 216}, {132, 0, 288, 54}, {800, 600});
    }

    void standsInTheOutputAsItIsScaled()
    {
        QFETCH(int, mode);
        QFETCH(QSize, output);
        QFETCH(QRect, all);
        QFETCH(QRect, top);
        if (!std::filesystem::exists(m_media.file("card.png")))
            QVERIFY(m_media.make(words("-f lavfi -i color=white:s=640x480,drawbox=c=red:t=fill:w=640:h=120 "
                                       "-frames:v 1"),
                                 QStringLiteral("card.png")));
        const auto reader = open("card.png");
        QVERIFY2(reader, m_error.c_str());
        Picture picture;
        QVERIFY(reader->seek(0, picture));
        const Ref<Surface> surface =
            drawn(picture.image, {480, 270, ScaleMode(mode), output.width(), output.height()});
        const auto near = [](QRect a, QRect b) { // a pixel more or less where colours meet
            return std::abs(a.left() - b.left()) < 2 && std::abs(a.right() - b.right()) < 2 &&
                   std::abs(a.top() - b.top()) < 2 && std::abs(a.bottom() - b.bottom()) < 2;
        };
        const QRect seen = extentOf(*surface, [](Rgb c) { return c.red > 120; });
        QVERIFY2(near(seen, all), qPrintable(QDebug::toString(seen)));
        const QRect red = extentOf(*surface, [](Rgb c) { return c.red > 120 && c.green < 100; });
        QVERIFY2(near(red, top), qPrintable(QDebug::toString(red)));
    }

    void findsEveryPictureExactly_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const char* name : {"gop.mp4", "long.mkv", "stream.ts", "b.avi", "intra.mov", "raw.h264"})
            QTest::newRow(name) << QByteArray(name);
    }

    void findsEveryPictureExactly()
    {
        QFETCH(QByteArray, name);
        const auto reader = open(name.constData());
        QVERIFY2(reader, m_error.c_str());
        QCOMPARE(reader->type(), MediaType::VideoFile);
        QCOMPARE(reader->fps(), 25.0);
        Picture picture;
        // In an order that goes forth and back, so that no seek profits from the one before it.
        for (int i = 0; i < 50; ++i) {
            const int frame = i * 17 % 50;
            QVERIFY(reader->seek(frame / 25.0, picture));
            QCOMPARE(numberOn(picture.image), frame);
            QVERIFY(std::abs(picture.time - frame / 25.0) < 0.002);
            QVERIFY(reader->seek(frame / 25.0 + 0.035, picture));
            QCOMPARE(numberOn(picture.image), frame);
        }
        QVERIFY(reader->seek(99, picture));
        QCOMPARE(numberOn(picture.image), 49);
        QVERIFY(!reader->next(picture));
        QVERIFY(reader->seek(0, picture));
        for (int frame = 1; frame < 50; ++frame) {
            QVERIFY(reader->next(picture));
            QCOMPARE(numberOn(picture.image), frame);
        }
        QVERIFY(!reader->next(picture));
    }

    void keepsTheGridOfEveryRate_data()
    {
        QTest::addColumn<QString>("rate");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QStringList>("how");
        for (const char* rate : {"24000/1001", "24", "30000/1001", "30", "50", "60000/1001", "60"}) {
            for (const char* suffix : {"mp4", "mkv"}) // the second has times in whole milliseconds
                QTest::addRow("%s.%s", rate, suffix)
                    << QString::fromLatin1(rate) << QByteArray("rate.") + suffix << QStringList();
        }
        const QStringList later = words("-output_ts_offset 5.017");
        QTest::newRow("late start") << QStringLiteral("30000/1001") << QByteArray("late.ts") << later;
        QTest::newRow("late start in milliseconds")
            << QStringLiteral("60000/1001") << QByteArray("late.mkv") << later;
        QTest::newRow("no duration") << QStringLiteral("30000/1001") << QByteArray("live.mkv")
                                     << words("-live 1");
    }

    void keepsTheGridOfEveryRate()
    {
        QFETCH(QString, rate);
        QFETCH(QByteArray, name);
        QFETCH(QStringList, how);
        QVERIFY(m_media.make(TestMedia::numbered(1.2, QStringLiteral("160x90"), rate) + TestMedia::h264(999) +
                                 how,
                             QString::fromLatin1(name)));
        const auto reader = open(name.constData());
        QVERIFY2(reader, m_error.c_str());
        const QStringList parts = rate.split(u'/');
        const double fps = parts[0].toDouble() / (parts.size() > 1 ? parts[1].toDouble() : 1.0);
        QVERIFY(std::abs(reader->fps() - fps) < 1e-9);
        Picture picture;
        for (int i = 0; i < 28; ++i) {
            const int frame = i * 11 % 28;
            QVERIFY(reader->seek(frame / fps, picture));
            QCOMPARE(numberOn(picture.image), frame);
            QCOMPARE(picture.time, frame / fps);
            QVERIFY(reader->next(picture));
            QCOMPARE(numberOn(picture.image), frame + 1);
            QVERIFY(std::abs(picture.duration - 1 / fps) < 1e-9);
        }
    }

    void passesOverPicturesToCatchUp_data() { findsEveryPictureExactly_data(); }
    void passesOverPicturesToCatchUp()
    {
        QFETCH(QByteArray, name);
        const auto reader = open(name.constData());
        QVERIFY2(reader, m_error.c_str());
        Picture picture;
        QVERIFY(reader->seek(0.2, picture));
        QVERIFY(reader->catchUp(0.4, picture));
        QVERIFY2(numberOn(picture.image) > 7, "pictures that nobody waits for were shown");
        QVERIFY(picture.time < 0.402);
        // A long way goes in steps, each of them at least a picture, and never past the end.
        int shown = 1;
        double before = picture.time;
        for (; reader->catchUp(99, picture); ++shown, before = picture.time) {
            QVERIFY(picture.time > before && picture.time < before + 0.55);
            QVERIFY(std::abs(picture.time - numberOn(picture.image) / 25.0) < 0.002);
        }
        QCOMPARE(numberOn(picture.image), 49);
        QVERIFY2(shown < 6, qPrintable(QString::number(shown)));
        QVERIFY(reader->seek(0.6, picture)); // exact as ever
        QCOMPARE(numberOn(picture.image), 15);
        QVERIFY(reader->next(picture));
        QCOMPARE(numberOn(picture.image), 16);
    }

    void findsPicturesFarFromAKeyAndThoseThatStandLong()
    {
        // Ten seconds, one key picture, B pictures; then one in which a picture stands for four seconds.
        QVERIFY(m_media.make(TestMedia::numbered(10) + TestMedia::h264(999), QStringLiteral("far.mp4")));
        QVERIFY(
            m_media.make(QStringList{QStringLiteral("-i"), QString::fromStdString(m_media.file("far.mp4")),
                                     QStringLiteral("-vf"), QStringLiteral("select='lt(n,76)+gt(n,175)'"),
                                     QStringLiteral("-vsync"), QStringLiteral("vfr")} +
                             TestMedia::h264(999),
                         QStringLiteral("gap.mp4")));
        for (const char* name : {"far.mp4", "gap.mp4"}) {
            const auto reader = open(name);
            QVERIFY2(reader, m_error.c_str());
            for (const int frame : {249, 100, 77, 74, 75, 173, 230, 60, 190, 9}) {
                const bool gone = name == QByteArray("gap.mp4") && frame > 75 && frame < 176;
                Picture picture;
                QVERIFY(reader->seek(frame / 25.0, picture));
                QCOMPARE(numberOn(picture.image), gone ? 75 : frame);
            }
        }
    }

    void fitsThePictureIntoTheCanvas_data()
    {
        QTest::addColumn<QStringList>("how");
        QTest::addColumn<QRect>("shown");
        QTest::newRow("wide") << words("-vf scale=160:45,setsar=1") << QRect(0, 68, 480, 135);
        QTest::newRow("odd and tall") << words("-vf scale=45:135,setsar=1") << QRect(195, 0, 90, 270);
        QTest::newRow("narrow pixels") << words("-vf scale=160:90,setsar=1/2") << QRect(120, 0, 240, 270);
    }

    void fitsThePictureIntoTheCanvas()
    {
        QFETCH(QStringList, how);
        QFETCH(QRect, shown);
        const QStringList red = TestMedia::colour(QStringLiteral("red"), 0.2) + how;
        QVERIFY(m_media.make(red + words("-c:v ffv1"), QStringLiteral("shape.mkv")));
        const auto reader = open("shape.mkv");
        QVERIFY2(reader, m_error.c_str());
        Picture picture;
        QVERIFY(reader->seek(0, picture));
        const Ref<Surface> surface = drawn(picture.image);
        QCOMPARE(QSize(surface->width, surface->height), QSize(480, 270));
        const auto isRed = [&](QPoint at) { return pixelAt(*surface, at.x(), at.y()).red > 200; };
        const QRect inside = shown.adjusted(2, 2, -2, -2);
        QVERIFY(isRed(inside.topLeft()) && isRed(inside.bottomRight()));
        const QRect outside = shown.adjusted(-3, -3, 3, 3) & QRect(0, 0, 480, 270);
        QVERIFY(!isRed(outside.topLeft()) && !isRed(outside.bottomRight()));
    }

    void turnsThePictureUpright()
    {
        const QStringList input = TestMedia::numbered(0.4) + TestMedia::h264(5);
        QVERIFY(m_media.make(input, QStringLiteral("flat.mp4")));
        QVERIFY(m_media.make({QStringLiteral("-i"), QString::fromStdString(m_media.file("flat.mp4")),
                              QStringLiteral("-c"), QStringLiteral("copy"), QStringLiteral("-metadata:s:v"),
                              QStringLiteral("rotate=90")},
                             QStringLiteral("turned.mp4")));
        const auto reader = open("turned.mp4");
        QVERIFY2(reader, m_error.c_str());
        Picture picture;
        QVERIFY(reader->seek(1 / 25.0, picture));
        const Ref<Surface> surface = drawn(picture.image, {480, 0});
        QCOMPARE(QSize(surface->width, surface->height), QSize(90, 160));
        // The tool's sense is against the clock: the leftmost stripe, white in picture 1, is the lowest.
        QVERIFY(pixelAt(*surface, 45, 150).green > 176);
        QVERIFY(pixelAt(*surface, 45, 8).green < 80);
    }

    void showsTransparentStillsOnBlack()
    {
        QVERIFY(m_media.make(words("-f lavfi -i color=white@0.5:s=32x18,format=rgba -frames:v 1"),
                             QStringLiteral("half %d.png")));
        const auto reader = open("half %d.png");
        QVERIFY2(!reader, "the tool numbers its files");
        QVERIFY(QFile::rename(QString::fromStdString(m_media.file("half 1.png")),
                              QString::fromStdString(m_media.file("half %d.png"))));
        const auto still = open("half %d.png");
        QVERIFY2(still, m_error.c_str());
        QCOMPARE(still->type(), MediaType::ImageFile);
        Picture picture;
        QVERIFY(still->seek(1000.02, picture));
        QCOMPARE(picture.time, 1000.0);
        QVERIFY(std::abs(pixelAt(*drawn(picture.image), 240, 135).red - 128) < 4);
    }

    void readsSequencesByNumber()
    {
        QVERIFY(m_media.make(TestMedia::numbered(0.4) + words("-start_number 7"),
                             QStringLiteral("seq_%03d.png")));
        QVERIFY(QFile::remove(QString::fromStdString(m_media.file("seq_012.png"))));
        const auto reader = open("seq_%03d.png", SequenceRun{10, 8, 14});
        QVERIFY2(reader, m_error.c_str());
        QCOMPARE(reader->duration(), 0.7);
        Picture picture;
        QVERIFY(reader->seek(0.25, picture));
        QCOMPARE(numberOn(picture.image), 3);
        QCOMPARE(picture.time, 0.2);
        for (const int number : {4, 4, 6, 7}) { // the missing one repeats what came before it
            QVERIFY(reader->next(picture));
            QCOMPARE(numberOn(picture.image), number);
        }
        QVERIFY(!reader->next(picture));
        QVERIFY(!reader->catchUp(9, picture));
        QVERIFY(reader->seek(0, picture) && reader->catchUp(0.5, picture));
        QCOMPARE(numberOn(picture.image), 6);
        QVERIFY(reader->catchUp(0.1, picture)); // never back
        QCOMPARE(numberOn(picture.image), 7);
        QVERIFY(reader->seek(0.4, picture)); // after a later one as well
        QCOMPARE(numberOn(picture.image), 4);
        QVERIFY(!open("seq_%03d.png", SequenceRun{10, 90, 99}));
        QVERIFY(!m_error.empty());
    }

    void readsSoundAsBlack()
    {
        QVERIFY(m_media.make(words("-f lavfi -i sine=d=1"), QStringLiteral("tone.wav")));
        const auto reader = open("tone.wav");
        QVERIFY2(reader, m_error.c_str());
        QCOMPARE(reader->type(), MediaType::AudioFile);
        Picture picture;
        QVERIFY(reader->seek(0.96, picture));
        QCOMPARE(picture.time, 0.96);
        QCOMPARE(numberOn(picture.image), 0);
        QVERIFY(!reader->next(picture));
    }

    void survivesDamage()
    {
        QFile file(QString::fromStdString(m_media.file("stream.ts")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray bytes = file.readAll();
        for (qsizetype i = bytes.size() / 3; i < bytes.size() * 2 / 3; i += 7)
            bytes[i] = char(bytes[i] ^ 0x5a);
        QFile damaged(QString::fromStdString(m_media.file("damaged.ts")));
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write(bytes) == bytes.size());
        damaged.close();
        const auto reader = open("damaged.ts");
        QVERIFY2(reader, m_error.c_str());
        Picture picture;
        QVERIFY(reader->seek(0, picture));
        QCOMPARE(numberOn(picture.image), 0);
        double last = picture.time;
        while (reader->next(picture)) {
            QVERIFY(picture.time > last);
            last = picture.time;
        }
        QVERIFY(reader->seek(1.9, picture));
    }

    void goesBackToTheProcessor_data()
    {
        QTest::addColumn<int>("decoded");
        QTest::addColumn<int>("given");
        QTest::newRow("decodes nothing") << 0 << 0;
        QTest::newRow("fails in decoding") << 24 << 1000;
        QTest::newRow("gives nothing out") << 1000 << 0;
        QTest::newRow("fails in giving out") << 1000 << 24;
    }

    /// Wherever a card fails, no picture is missing or doubled, and that medium is not offered to it again.
    void goesBackToTheProcessor()
    {
        QFETCH(int, decoded);
        QFETCH(int, given);
        std::atomic<int> lines{0};
        Log::setSink([&](LogLevel level, const LogLoc&, std::string_view, std::string_view) {
            lines += level == LogLevel::Warning;
        });
        const auto asBefore = qScopeGuard([] {
            GraphicsCard::allow(nullptr);
            Log::setSink({});
        });
        auto device = std::make_unique<FailingDevice>(decoded, given);
        const FailingDevice& card = *device;
        GraphicsCard::allow(std::move(device));
        const QByteArray name = QByteArray(QTest::currentDataTag()).replace(' ', '-') + ".mp4";
        QVERIFY(QFile::copy(QString::fromStdString(m_media.file("gop.mp4")),
                            QString::fromStdString(m_media.file(name.constData()))));
        for (int opened = 0; opened < 2; ++opened) {
            const auto reader = open(name.constData());
            QVERIFY2(reader, m_error.c_str());
            Picture picture;
            for (const int number : {0, 1, 10}) {
                QVERIFY(reader->seek(number / 25.0, picture));
                QCOMPARE(numberOn(picture.image), number);
            }
            for (int number = 11; number < 50; ++number) {
                QVERIFY(reader->next(picture));
                QCOMPARE(numberOn(picture.image), number);
                QVERIFY(qAbs(picture.time - number / 25.0) < 1e-6 && qAbs(picture.duration - 0.04) < 1e-6);
            }
            QVERIFY(!reader->next(picture));
        }
        QCOMPARE(card.offers(), 1);
        QCOMPARE(lines.load(), 1);
    }

    void opensNoOtherFile()
    {
        QFile list(QString::fromStdString(m_media.file("list.mp4")));
        QVERIFY(list.open(QIODevice::WriteOnly));
        list.write("#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXTINF:2,\nstream.ts\n#EXT-X-ENDLIST\n");
        list.close();
        QVERIFY(!open("list.mp4"));
        QVERIFY(!open("missing.mp4"));
        QCOMPARE(mkfifo(m_media.file("pipe.mp4").c_str(), 0600), 0);
        QVERIFY(!open("pipe.mp4")); // and does not wait for a writer
        QVERIFY(!m_error.empty());
    }

    void endsEarlyWhenStopped()
    {
        const auto reader = open("long.mkv");
        QVERIFY(reader);
        Picture picture;
        m_stop = true;
        QVERIFY(!reader->seek(1.9, picture));
        m_stop = false;
        QVERIFY(reader->seek(1.9, picture));
        QCOMPARE(numberOn(picture.image), 47);
    }
};

HALCYRA_TEST(ReaderTest)
#include "readertest.moc"
