#include "ombra/decode/mediaprobe.h"
#include "ombra/decode/mediaurl.h"
#include "ombra/decode/thumbnail.h"
#include "tarn/media/mediaenums.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QImage>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

class ProbeTest : public QObject
{
    Q_OBJECT

private:
    void write(const char* name, const QByteArray& bytes)
    {
        QFile file(QString::fromStdString(m_media.file(name)));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    TestMedia m_media;

private Q_SLOTS:
    void initTestCase()
    {
        const QStringList tone{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                               QStringLiteral("sine=d=2:r=48000")};
        QVERIFY(m_media.make(TestMedia::numbered(2, QStringLiteral("320x180")) + tone + TestMedia::h264(12) +
                                 QStringList{QStringLiteral("-c:a"), QStringLiteral("aac"),
                                             QStringLiteral("-ac"), QStringLiteral("2"),
                                             QStringLiteral("-colorspace"), QStringLiteral("bt709")},
                             QStringLiteral("clip.mp4")));
        QVERIFY(m_media.make(TestMedia::colour(QStringLiteral("red"), 1) + TestMedia::h264(12) +
                                 QStringList{QStringLiteral("-aspect"), QStringLiteral("64:27")},
                             QStringLiteral("wide.mp4")));
        QVERIFY(m_media.make(tone, QStringLiteral("tone.wav")));
        QVERIFY(m_media.make(TestMedia::colour(QStringLiteral("red"), 1) +
                                 QStringList{QStringLiteral("-frames:v"), QStringLiteral("1")},
                             QStringLiteral("still.png")));
        QVERIFY(m_media.make(TestMedia::numbered(0.4), QStringLiteral("seq_%04d.png")));
        QFile clip(QString::fromStdString(m_media.file("clip.mp4")));
        QVERIFY(clip.open(QIODevice::ReadOnly));
        write("cut.mp4", clip.readAll().left(clip.size() / 4));
        write("noise.mp4", QByteArray(5000, 'x'));
        write("empty.mov", {});
    }

    void tellsWhatAFileHolds_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("duration");
        QTest::addColumn<int>("frames");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QByteArray>("codecs");
        QTest::addColumn<QByteArray>("pictures");
        QTest::newRow("video") << QByteArray("clip.mp4") << int(MediaType::VideoFile) << 2.0 << 50
                               << QSize(320, 180) << QByteArray("h264 aac 2 48000")
                               << QByteArray("Main LC yuv420p BT.709 1:1");
        QTest::newRow("wide pixels") << QByteArray("wide.mp4") << int(MediaType::VideoFile) << 1.0 << 25
                                     << QSize(160, 90) << QByteArray("h264  0 0")
                                     << QByteArray("Main  yuv420p unknown 4:3");
        QTest::newRow("sound") << QByteArray("tone.wav") << int(MediaType::AudioFile) << 2.0 << 0
                               << QSize(0, 0) << QByteArray("pcm_s16le pcm_s16le 1 48000")
                               << QByteArray("   unknown 1:1");
        QTest::newRow("still") << QByteArray("still.png") << int(MediaType::ImageFile) << 0.0 << 1
                               << QSize(160, 90) << QByteArray("png  0 0") << QByteArray("  rgb24 RGB 1:1");
        QTest::newRow("sequence") << QByteArray("seq_%04d.png") << int(MediaType::ImageSequence) << 0.4 << 10
                                  << QSize(160, 90) << QByteArray("png  0 0")
                                  << QByteArray("  rgb24 RGB 1:1");
    }

    void tellsWhatAFileHolds()
    {
        QFETCH(QByteArray, name);
        std::string error;
        const auto info = probeMedia(m_media.file(name.constData()), &error);
        QVERIFY2(info, error.c_str());
        QVERIFY(info->playable);
        QVERIFY(!info->unsupportedAudio);
        QTEST(int(info->type), "type");
        QTEST(info->duration, "duration");
        QTEST(int(info->frames), "frames");
        QTEST(QSize(info->width, info->height), "size");
        const QByteArray codecs = QByteArray::fromStdString(info->codec + " " + info->audioCodec) + ' ' +
                                  QByteArray::number(info->audioChannels) + ' ' +
                                  QByteArray::number(info->sampleRate);
        QTEST(codecs, "codecs");
        const QByteArray pictures =
            QByteArray::fromStdString(info->profile + " " + info->audioProfile + " " + info->pixelFormat +
                                      " " + toStr(info->colorSpace) + " " + info->pixelAspect.toString());
        QTEST(pictures, "pictures");
        QVERIFY((info->bitRate > 1000) == (info->type == MediaType::VideoFile));
    }

    void damagedFilesAreNotPlayable()
    {
        for (const char* name : {"cut.mp4", "noise.mp4", "empty.mov"}) {
            std::string error;
            const auto info = probeMedia(m_media.file(name), &error);
            QVERIFY2(info, name);
            QVERIFY2(!info->playable, name);
            QVERIFY2(!error.empty(), name);
            QVERIFY(renderThumbnail(m_media.file(name), 0, 320, &error).empty());
        }
        std::string error;
        QVERIFY(!probeMedia(m_media.file("missing.mp4"), &error));
        QVERIFY(!error.empty());
        QVERIFY(!probeMedia(m_media.file("missing_%04d.png"), &error));
        QVERIFY(!probeMedia(m_media.folder(), &error));
    }

    void soundOfAnUnknownKindIsACaveat()
    {
        QVERIFY(m_media.make(TestMedia::numbered(0.4) + TestMedia::sound(QStringLiteral("0.1"), 0.4) +
                                 TestMedia::h264(12) +
                                 QStringList{QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")},
                             QStringLiteral("pcm.mov")));
        QVERIFY(m_media.spoilSound("pcm.mov", "spoilt.mov"));
        for (const bool spoilt : {false, true}) {
            const auto info = probeMedia(m_media.file(spoilt ? "spoilt.mov" : "pcm.mov"), nullptr);
            QVERIFY(info && info->playable);
            QCOMPARE(info->unsupportedAudio, spoilt);
            QCOMPARE(info->type, MediaType::VideoFile);
        }
    }

    void soundLongerThanThePicturesCounts()
    {
        for (const double sound : {1.0, 0.44}) { // the second no longer than a codec's padding
            QVERIFY(
                m_media.make(TestMedia::numbered(0.4) + TestMedia::sound(QStringLiteral("0.1|0.1"), sound) +
                                 TestMedia::sound(QStringLiteral("0.1|0.1"), sound) + TestMedia::h264(12) +
                                 QStringList{"-map", "0", "-map", "1", "-map", "2", "-c:a", "pcm_s16le"},
                             QStringLiteral("tail.mov")));
            const auto info = probeMedia(m_media.file("tail.mov"), nullptr);
            QVERIFY(info && info->playable);
            QVERIFY(info->unsupportedAudio); // of two that are no programme one is heard
            QCOMPARE(info->duration, sound > 0.5 ? 1.0 : 0.4);
            QCOMPARE(info->frames, 10);
        }
    }

    void thumbnailsAreJpegs()
    {
        std::string error;
        const auto bytes = renderThumbnail(m_media.file("clip.mp4"), 1.0, 160, &error);
        QVERIFY2(!bytes.empty(), error.c_str());
        const QImage image = QImage::fromData(bytes.data(), int(bytes.size()), "JPG");
        QCOMPARE(image.size(), QSize(160, 90));
        int number = 0;
        for (int bit = 0; bit < 8; ++bit)
            number |= (qGreen(image.pixel(bit * 20 + 10, 45)) > 128) << bit;
        QCOMPARE(number, 25);
        QVERIFY(qGreen(image.pixel(10, 45)) > 240); // full range: white stays white

        const auto small = renderThumbnail(m_media.file("still.png"), 0, 1920, &error);
        QCOMPARE(QImage::fromData(small.data(), int(small.size()), "JPG").size(), QSize(160, 90));
        QVERIFY(!renderThumbnail(m_media.file("seq_%04d.png"), 0, 320, &error).empty());
        QVERIFY(renderThumbnail(m_media.file("tone.wav"), 0, 320, &error).empty());
    }

    void urlsStayBelowTheFolder_data()
    {
        QTest::addColumn<QByteArray>("url");
        QTest::addColumn<QByteArray>("path"); // below the folder; empty where it is refused
        QTest::newRow("plain") << QByteArray("file:///clips/a.mp4") << QByteArray("clips/a.mp4");
        QTest::newRow("escaped") << QByteArray("file:///a%20%c3%a4.mp4") << QByteArray("a \xc3\xa4.mp4");
        QTest::newRow("pattern") << QByteArray("file:///seq/f_%2505d.png") << QByteArray("seq/f_%05d.png");
        QTest::newRow("dots in a name") << QByteArray("file:///a..b.mp4") << QByteArray("a..b.mp4");
        QTest::newRow("up") << QByteArray("file:///../a.mp4") << QByteArray();
        QTest::newRow("up, escaped") << QByteArray("file:///x/%2e%2e/%2e%2e/a.mp4") << QByteArray();
        QTest::newRow("absolute") << QByteArray("file:////etc/passwd") << QByteArray();
        QTest::newRow("through a link") << QByteArray("file:///out/passwd") << QByteArray();
        QTest::newRow("the folder") << QByteArray("file:///") << QByteArray();
        QTest::newRow("this folder") << QByteArray("file:///.") << QByteArray();
        QTest::newRow("a NUL") << QByteArray("file:///a%00.mp4") << QByteArray();
        QTest::newRow("half an escape") << QByteArray("file:///a%2") << QByteArray();
        QTest::newRow("no hexadecimal") << QByteArray("file:///a%zz") << QByteArray();
        QTest::newRow("host") << QByteArray("file://host/a.mp4") << QByteArray();
        QTest::newRow("scheme") << QByteArray("http:///a.mp4") << QByteArray();
    }

    void urlsStayBelowTheFolder()
    {
        QFETCH(QByteArray, url);
        QFETCH(QByteArray, path);
        std::error_code code;
        std::filesystem::create_directory_symlink("/etc", m_media.file("out"), code);
        const auto resolved = resolveMediaUrl(m_media.folder(), url.toStdString());
        QCOMPARE(resolved.has_value(), !path.isEmpty());
        if (resolved)
            QCOMPARE(resolved->string(),
                     (std::filesystem::canonical(m_media.folder()) / path.toStdString()).string());
    }
};

HALCYRA_TEST(ProbeTest)
#include "probetest.moc"
