#include "tarn/media/mediaenums.h"
#include "tarn/media/mediametadata.h"
#include "tests/support/testmain.h"

#include <QTest>

using namespace vantrel;

namespace {

Json parsed(const QByteArray& text)
{
    Json json;
    Json::parseString(text.toStdString(), json);
    return json;
}

} // namespace

class TestMetadata : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatItWrites()
    {
        MediaMetadata metadata(MediaType::VideoFile, true);
        metadata.addCaveat(MediaCaveat::UnsupportedAudio);
        metadata.addCaveat(MediaCaveat::CutOff, "The file ends at 4.2 s.");
        metadata.setStartTimecode("10:00:00:00");
        metadata.setMissingPictures(3);
        metadata.setDuration(12.5);
        metadata.setVideo(MediaMetadata::Pictures{1920, 1080, Rational<int>{16, 15}, "h264",
                                                  ColorSpace::Bt2020, "yuv420p10le", "High 10", 50.0,
                                                  40'000'000'000, "top field first"});
        metadata.setAudio(MediaMetadata::Audio{"AAC", "LC", 6});
        metadata.setFileSize(5'000'000'000);
        metadata.setImported(DateTime(-1));
        metadata.setModified(DateTime(4'000'000'000));
        MediaMetadata read;
        QVERIFY(read.parseJson(metadata.toJson()));
        QCOMPARE(read.toJson().toString(), metadata.toJson().toString());
        QCOMPARE(read.getCaveats().size(), std::size_t(2));
        QCOMPARE(read.getCaveatText(MediaCaveat::CutOff), std::string("The file ends at 4.2 s."));
        QCOMPARE(read.getVideo()->bitRate.value_or(0), std::int64_t(40'000'000'000));
        QCOMPARE(read.getVideo()->pixelAspect->toString(), std::string("16:15"));
        QVERIFY(*read.getImported() < *read.getModified());
    }

    void refusesWhatIsMistyped_data()
    {
        QTest::addColumn<QByteArray>("member");
        QTest::addColumn<bool>("good");
        const auto row = [](const char* member, bool good) {
            QTest::newRow(member) << QByteArray(member) << good;
        };
        row(R"("video":null)", true);
        row(R"("video":{})", true);
        row(R"("later":[1,2])", true);
        row(R"("video":[])", false);
        row(R"("video":{"width":"1920"})", false);
        row(R"("video":{"width":-1})", false);
        row(R"("video":{"width":99999999999})", false);
        row(R"("video":{"pixelAspect":[1]})", false);
        row(R"("video":{"pixelAspect":[1,0]})", false);
        row(R"("video":{"pixelAspect":["1","1"]})", false);
        row(R"("video":{"bitRate":1.5})", false);
        row(R"("image":{"codec":5})", false);
        row(R"("audio":{"channels":null})", true);
        row(R"("audio":{"channels":true})", false);
        row(R"("fileSize":-1)", false);
        row(R"("caveats":["later"],"caveatTexts":{"later":"x"})", true);
        row(R"("caveatTexts":{"cutOff":5})", false);
        row(R"("missingPictures":"3")", false);
        row(R"("imported":"2024-05-17")", false);
        row(R"("isPlayable":1)", false);
    }

    void refusesWhatIsMistyped()
    {
        QFETCH(QByteArray, member);
        QFETCH(bool, good);
        const QByteArray playable = member.contains("isPlayable") ? "" : R"("isPlayable":true,)";
        MediaMetadata metadata(MediaType::AudioFile, true);
        QCOMPARE(metadata.parseJson(parsed(R"({"type":"imageFile",)" + playable + member + '}')), good);
        QCOMPARE(metadata.getMediaType(), good ? MediaType::ImageFile : MediaType::AudioFile);
    }
};

HALCYRA_TEST(TestMetadata)
#include "test_metadata.moc"
