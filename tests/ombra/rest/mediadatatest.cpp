#include "ombra/rest/mediadata.h"

#include "tarn/media/mediaenums.h"
#include "tarn/media/mediametadata.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/support/testmain.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <boost/asio/io_context.hpp>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

/// What is told of media files: what an operator reads when one cannot be played, or not all of it.
class MediaDataTest : public QObject
{
    Q_OBJECT

private:
    QString path(const QString& name) const { return QString::fromStdString(m_media.file(qPrintable(name))); }

    void write(const QString& name, const QByteArray& bytes)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    QByteArray read(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::optional<HttpReply> answerOf(void (MediaData::*route)(const std::string&, HttpAnswer,
                                                               MediaData::Wanted),
                                      const QByteArray& name)
    {
        std::optional<HttpReply> reply;
        std::invoke(
            route, *m_data, "file:///" + name.toStdString(),
            [&](HttpReply answer) { reply = std::move(answer); }, MediaData::Wanted());
        QElapsedTimer timer;
        for (timer.start(); !reply && timer.elapsed() < 20000;) {
            m_io.restart();
            m_io.run_one_for(std::chrono::milliseconds(5));
        }
        return reply;
    }

    MediaMetadata ask(const QByteArray& name)
    {
        const std::optional<HttpReply> reply = answerOf(&MediaData::metadata, name);
        MediaMetadata metadata;
        Json json;
        if (!reply || reply->status != 200 || !Json::parseString(reply->body, json) ||
            !metadata.parseJson(json))
            qCritical("no metadata of %s", name.constData());
        return metadata;
    }

    boost::asio::io_context m_io;
    TestMedia m_media;
    std::unique_ptr<MediaData> m_data;

private Q_SLOTS:
    void initTestCase()
    {
        const auto with = [](const QStringList& input, const char* options) {
            return input + QString::fromLatin1(options).split(u' ');
        };
        const QStringList clip = TestMedia::numbered(10);
        QVERIFY(
            m_media.make(with(clip, "-c:v libx264 -g 25 -movflags faststart"), QStringLiteral("whole.mp4")));
        QVERIFY(m_media.make(with(clip, "-c:v libx264 -g 25"), QStringLiteral("whole.mkv")));
        QVERIFY(m_media.make(TestMedia::sound(QStringLiteral("0.1"), 4), QStringLiteral("whole.wav")));
        QVERIFY(m_media.make(with(TestMedia::numbered(1, QStringLiteral("720x576")),
                                  "-c:v mpeg2video -flags +ildct -top 0 -field_order bb -vf setfield=bff "
                                  "-timecode 10:00:00:00"),
                             QStringLiteral("fields.mxf")));
        const QByteArray mp4 = read(QStringLiteral("whole.mp4"));
        const qsizetype data = mp4.indexOf("mdat");
        write(QStringLiteral("early.mp4"), mp4.left(data + (mp4.size() - data) / 4));
        write(QStringLiteral("late.mp4"), QByteArray("\0\0\0\x10"
                                                     "ftypisom\0\0\2\0",
                                                     16) +
                                              mp4.mid(data - 4, 3000));
        QVERIFY(m_media.make(with(clip, "-c:v mpeg2video -g 12"), QStringLiteral("whole.mxf")));
        const QByteArray mxf = read(QStringLiteral("whole.mxf"));
        write(QStringLiteral("early.mxf"), mxf.left(mxf.size() / 2));
        const QByteArray mkv = read(QStringLiteral("whole.mkv"));
        write(QStringLiteral("early.mkv"), mkv.left(mkv.size() / 2));
        QVERIFY(m_media.make(with(clip, "-c:v mpeg4 -g 25"), QStringLiteral("whole.avi")));
        const QByteArray avi = read(QStringLiteral("whole.avi"));
        write(QStringLiteral("early.avi"), avi.left(avi.size() / 2));
        write(QStringLiteral("early.wav"), read(QStringLiteral("whole.wav")).left(78 + 96000));
        write(QStringLiteral("empty.mov"), {});
        write(QStringLiteral("notes.txt"), "Act 1: the lights go down.\r\n");
        write(QStringLiteral("noise.mov"), QByteArray(5000, '\xb7'));
        QImage picture(32, 18, QImage::Format_RGB32);
        picture.fill(Qt::red);
        for (const char* name : {"s_0001.png", "s_0002.png", "s_0005.png", "s_0006.png"})
            QVERIFY(picture.save(path(QString::fromLatin1(name))));
        QVERIFY(QFile::link(QStringLiteral("s_0001.png"), path(QStringLiteral("h_0001.png"))));
        QVERIFY(QFile::link(QStringLiteral("/etc/passwd"), path(QStringLiteral("l_0001.png"))));
        QVERIFY(QFile::link(QStringLiteral("/etc"), path(QStringLiteral("out"))));
        m_data = std::make_unique<MediaData>(m_io, m_media.folder());
    }

    void saysWhatIsWrong_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("playable");
        QTest::addColumn<QByteArray>("sentence");
        const auto row = [](const char* file, bool playable, const char* sentence) {
            QTest::newRow(file) << QByteArray(file) << playable << QByteArray(sentence);
        };
        row("whole.mp4", true, "");
        row("whole.mkv", true, "");
        row("whole.avi", true, "");
        row("whole.wav", true, "");
        row("fields.mxf", true, "");
        row("whole.mxf", true, "");
        row("early.mxf", true, "The file is cut off at ");
        row("empty.mov", false, "The file is empty. Copy it again.");
        row("notes.txt", false, "The file holds text, neither pictures nor sound.");
        row("noise.mov", false, "The file is damaged or of a kind that is not known here (");
        row("late.mp4", false, "The file is cut off before the part that describes it.");
        row("early.mp4", true, "The file is cut off at 2.");
        row("early.mkv", true, "The file is cut off at ");
        row("early.avi", true, "The file is cut off at ");
        row("early.wav", true, "The file is cut off at 1.0 s of 4.0 s. Copy it again.");
        row("s_%2504d.png", true, "2 of 6 pictures of the sequence are missing, the first is number 3.");
        row("h_%2504d.png", true, "");
        row("none.mp4", false,
            "The media folder has no none.mp4. Copy it there or give the slot another file.");
        row("none_%2504d.png", false, "The media folder has no pictures named none_%04d.png.");
        row("l_%2504d.png", false, "The media folder has no pictures named l_%04d.png.");
        row("../../etc/passwd", false, "This is no file of the media folder.");
        row("out/passwd", false, "This is no file of the media folder.");
    }

    void saysWhatIsWrong()
    {
        QFETCH(QByteArray, file);
        QFETCH(bool, playable);
        QFETCH(QByteArray, sentence);
        const MediaMetadata metadata = ask(file);
        QCOMPARE(metadata.getIsPlayable(), playable);
        std::string said = metadata.getError();
        for (const MediaCaveat caveat : metadata.getCaveats())
            said += metadata.getCaveatText(caveat);
        QVERIFY2(said.starts_with(sentence.toStdString()) && said.empty() == sentence.isEmpty(),
                 said.c_str());
    }

    /// What is kept shows when a file has other bytes under the same stamp.
    void keepsTheNewestPicturesAlone()
    {
        const auto paintAll = [this](Qt::GlobalColor colour) {
            for (int i = 0; i < 12; ++i) {
                QByteArray bytes;
                QBuffer buffer(&bytes);
                QImage picture(32, 18, QImage::Format_RGB32);
                picture.fill(colour);
                QVERIFY(picture.save(&buffer, "PNG") && bytes.size() < 1000);
                const QString name = QStringLiteral("kept %1.png").arg(i);
                write(name, bytes.leftJustified(1000, '\0'));
                QFile file(path(name));
                QVERIFY(file.open(QIODevice::ReadWrite));
                QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(1700000000),
                                         QFileDevice::FileModificationTime));
            }
        };
        const auto ask = [this](int i) {
            const auto reply = answerOf(&MediaData::thumbnail, "kept%20" + QByteArray::number(i) + ".png");
            return QByteArray::fromStdString(reply ? reply->body : std::string());
        };
        const auto isRed = [&](int i) {
            const QImage picture = QImage::fromData(ask(i), "JPG");
            return !picture.isNull() && picture.pixelColor(10, 10).red() > 128;
        };
        QCOMPARE(m_data->keptAtMost(), std::size_t(64) << 20); // of one made as the server makes it
        paintAll(Qt::red);
        const std::size_t bytes = 4 * std::size_t(ask(0).size() + 200);
        m_data = std::make_unique<MediaData>(m_io, m_media.folder(), bytes);
        for (int i = 0; i < 12; ++i)
            QVERIFY(isRed(i));
        paintAll(Qt::blue);
        QVERIFY(isRed(11) && isRed(10));
        QVERIFY(!isRed(0) && !isRed(1));
        m_data = std::make_unique<MediaData>(m_io, m_media.folder());
    }

    /// What is there and holds no picture is no error, which would be asked for again and again.
    void picturesOfSounds()
    {
        for (const char* file : {"whole.wav", "notes.txt", "noise.mov"}) {
            const auto reply = answerOf(&MediaData::thumbnail, file);
            QVERIFY2(reply && reply->status == 200 && reply->body.empty(), file);
        }
        QCOMPARE(answerOf(&MediaData::thumbnail, "none.wav").value().status, 404U);
        QVERIFY(QByteArray::fromStdString(answerOf(&MediaData::thumbnail, "whole.mp4").value().body)
                    .startsWith("\xff\xd8"));
    }

    void tellsPicturesThatAreCut_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("options");
        const auto row = [](const char* kind, const char* options) {
            QTest::addRow("%s %s", kind, options) << QString::fromLatin1(kind) << QByteArray(options);
        };
        for (const char* kind : {"png", "jpg", "bmp", "tif", "dpx", "webp", "gif"})
            row(kind, "");
        row("tif", "-compression_algo deflate");
        row("exr", "-compression zip16 -format half");
        row("exr", "-compression none -format float");
    }

    /// Noise, so that no kind makes nothing of it.
    void tellsPicturesThatAreCut()
    {
        QFETCH(QString, kind);
        QFETCH(QByteArray, options);
        const QString format = kind == QStringLiteral("exr") ? QStringLiteral("gbrpf32le") : QString();
        QStringList input{"-f",        "lavfi", "-i", "nullsrc=s=640x360,geq=random(1)*255:128:128",
                          "-frames:v", "1"};
        if (!format.isEmpty())
            input += {"-pix_fmt", format};
        for (const QByteArray& option : options.split(' '))
            if (!option.isEmpty())
                input += QString::fromLatin1(option);
        const QString whole = QStringLiteral("picture.") + kind, cut = QStringLiteral("cut.") + kind;
        QVERIFY(m_media.make(input, whole));
        const auto said = [&](const QString& name) {
            const MediaMetadata metadata = ask(name.toLatin1());
            std::string text = metadata.getError();
            for (const MediaCaveat caveat : metadata.getCaveats())
                text += metadata.getCaveatText(caveat);
            return text;
        };
        QCOMPARE(said(whole), std::string());
        const QByteArray bytes = read(whole);
        for (const double share : {0.98, 0.6, 0.1}) {
            QFile::remove(path(cut));
            write(cut, bytes.left(static_cast<qsizetype>(share * double(bytes.size()))));
            const std::string text = said(cut);
            QVERIFY2(text.starts_with("The file is cut off"), (std::to_string(share) + ": " + text).c_str());
        }
    }

    void tellsFieldsAndTimecode()
    {
        const MediaMetadata metadata = ask("fields.mxf");
        QCOMPARE(metadata.getStartTimecode(), std::string("10:00:00:00"));
        QVERIFY(metadata.getVideo());
        QCOMPARE(metadata.getVideo()->fieldOrder, std::string("bottom field first"));
        QCOMPARE(ask("whole.mp4").getVideo()->fieldOrder, std::string("progressive"));
        QCOMPARE(ask("s_%2504d.png").getMissingPictures().value_or(-1), std::int64_t(2));
    }
};

HALCYRA_TEST(MediaDataTest)
#include "mediadatatest.moc"
