#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaitemfactory.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/mediaslot.h"
#include "tarn/media/playenums.h"
#include "tarn/media/playlistentry.h"
#include "tests/support/testmain.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <limits>

using namespace vantrel;

namespace {

GuiMediaSlot fullSlot()
{
    GuiMediaSlot slot;
    slot.setAddress({2, 7});
    slot.setName(QStringLiteral("Opening"));
    slot.setContentUrl(QUrl(QStringLiteral("file:///seq/a%5B1%5D_%2505d.png")));
    slot.setInpoint(1.5);
    slot.setOutpoint(4.0);
    slot.setDuration(8.0);
    slot.setScaleMode(ScaleMode::Stretch);
    slot.setIsPlayable(true);
    slot.setDurationType(MediaDurationType::Infinite);
    return slot;
}

} // namespace

class TestGuiMediaItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slotReadsBack();
    void typeIsRefusedWhenKnown();
    void badSlots_data();
    void badSlots();
    void durationGoesByType();
    void entriesAndPlaylists();
    void entryNeedsEveryKey_data();
    void entryNeedsEveryKey();
    void factory();
};

void TestGuiMediaItems::slotReadsBack()
{
    const GuiMediaSlot slot = fullSlot();
    GuiMediaSlot read;
    QVERIFY(read.fromJson(slot.toJson()));
    QVERIFY(read == slot);
    QVERIFY(slot.toJson().value(QStringLiteral("imageSequence")).isNull());

    GuiMediaSlot noOutpoint = slot;
    noOutpoint.setOutpoint(std::nullopt);
    QVERIFY(read.fromJson(noOutpoint.toJson()));
    QVERIFY(!read.outpoint());
}

void TestGuiMediaItems::typeIsRefusedWhenKnown()
{
    GuiMediaSlot slot = fullSlot();
    slot.setFrameRate(25);
    slot.setFirstFrame(3);
    slot.setLastFrame(9);
    slot.setMediaType(MediaType::ImageSequence);
    QJsonObject json = slot.toJson();
    QCOMPARE(
        json.value(QStringLiteral("imageSequence")).toObject().value(QStringLiteral("firstFrame")).toInt(),
        3);

    GuiMediaSlot read;
    QVERIFY(!read.fromJson(json));
    QVERIFY(read == GuiMediaSlot());
    for (const QJsonValue& unknown : {QJsonValue(QStringLiteral("hologram")), QJsonValue(4), QJsonValue()}) {
        json.insert(QStringLiteral("type"), unknown);
        QVERIFY(read.fromJson(json));
        QVERIFY(!read.mediaType());
        QCOMPARE(read.lastFrame(), std::optional(9));
    }
}

void TestGuiMediaItems::badSlots_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    const auto row = [](const char* key, const QJsonValue& value) {
        QTest::addRow("%s %d", key, value.type()) << QString::fromLatin1(key) << value;
    };
    for (const char* key :
         {"address", "name", "contentUrl", "inpoint", "outpoint", "duration", "isPlayable", "durationType"}) {
        row(key, QJsonValue(QJsonValue::Undefined));
        row(key, QJsonValue(QJsonObject()));
    }
    row("address", QStringLiteral("brume://playlists/1/entries/1"));
    row("durationType", QStringLiteral("Infinite"));
    row("scaleMode", QStringLiteral("zoom"));
    row("imageSequence", 1);
    row("imageSequence", QJsonObject{{QStringLiteral("firstFrame"), 1}});
    row("imageSequence",
        QJsonObject{{QStringLiteral("framerate"), 25}, {QStringLiteral("lastFrame"), QStringLiteral("x")}});
}

void TestGuiMediaItems::badSlots()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QJsonObject json = fullSlot().toJson();
    if (value.isUndefined())
        json.remove(key);
    else
        json.insert(key, value);
    if (key == QStringLiteral("scaleMode"))
        test::expectWarning(QStringLiteral("Invalid scale mode:"));
    GuiMediaSlot read;
    read.setName(QStringLiteral("kept"));
    const GuiMediaSlot before = read;
    QVERIFY(!read.fromJson(json));
    QVERIFY(read == before);
}

void TestGuiMediaItems::durationGoesByType()
{
    GuiMediaSlot slot = fullSlot();
    slot.setMediaType(MediaType::VideoFile);
    QCOMPARE(slot.toSdkMediaSlot().getInherentMediaDuration(), std::optional(8.0));
    QVERIFY(!slot.toSdkMediaSlot().getCustomMediaDuration());
    slot.setMediaType(MediaType::ImageFile);
    QCOMPARE(slot.toSdkMediaSlot().getCustomMediaDuration(), std::optional(8.0));
    QVERIFY(!slot.toSdkMediaSlot().getInherentMediaDuration());

    GuiMediaSlot again({2, 7}, slot.toSdkMediaSlot());
    again.setMediaType(MediaType::ImageFile);
    QVERIFY(again == slot);
}

void TestGuiMediaItems::entriesAndPlaylists()
{
    GuiPlaylistEntry entry(3, {5, 1},
                           PlaylistEntry("brume://collections/1/slots/2", EndAction::Repeat,
                                         TakeTransitionType::DipToColor, 2.5));
    entry.setRuntimes(10, 20);
    GuiPlaylistEntry read;
    QVERIFY(read.fromJson(entry.toJson()));
    QCOMPARE(read.toJson(), entry.toJson());
    QVERIFY(read.toSdkEntry() == entry.toSdkEntry());
    QCOMPARE(entry.toJson().value(QStringLiteral("entryAddress")).toString(), QStringLiteral("5.1"));

    // Behind an infinite slot, and over the text that a drag carries.
    entry.setRuntimes(10, std::numeric_limits<double>::infinity());
    const QByteArray text = QJsonDocument(entry.toJson()).toJson();
    QVERIFY(read.fromJson(QJsonDocument::fromJson(text).object()));
    QCOMPARE(read.runtimeBefore(), 10.0);
    QCOMPARE(read.runtimeAfter(), std::numeric_limits<double>::infinity());

    GuiPlaylist playlist(QStringLiteral("Show"), 4);
    playlist.setEntryCount(2);
    playlist.setDuration(33, true);
    GuiPlaylist readList;
    QVERIFY(readList.fromJson(playlist.toJson()));
    QCOMPARE(readList.toJson(), playlist.toJson());
    QVERIFY(!readList.isInfinite());
    QJsonObject noNumber = playlist.toJson();
    noNumber.remove(QStringLiteral("number"));
    QVERIFY(readList.fromJson(noNumber));
    QCOMPARE(readList.number(), 0U);
}

void TestGuiMediaItems::entryNeedsEveryKey_data()
{
    QTest::addColumn<QString>("key");
    for (const QString& key : GuiPlaylistEntry(1, {1, 0}, PlaylistEntry()).toJson().keys())
        QTest::newRow(qPrintable(key)) << key;
}

void TestGuiMediaItems::entryNeedsEveryKey()
{
    QFETCH(QString, key);
    QJsonObject json = GuiPlaylistEntry(1, {1, 0}, PlaylistEntry()).toJson();
    GuiPlaylistEntry read;
    QVERIFY(read.fromJson(json));
    json.remove(key);
    QVERIFY(!read.fromJson(json));
    json.insert(key, true);
    QVERIFY(!read.fromJson(json));
}

void TestGuiMediaItems::factory()
{
    const GuiMediaItemFactory factory;
    const QJsonObject collection{{QStringLiteral("index"), 3}, {QStringLiteral("name"), QStringLiteral("c")}};
    const auto item = factory.createObject(MediaItemType::Collection, collection);
    QVERIFY(std::dynamic_pointer_cast<GuiMediaCollection>(item));
    QVERIFY(std::dynamic_pointer_cast<GuiMediaSlot>(
        factory.createObject(MediaItemType::Slot, fullSlot().toJson())));
    QVERIFY(!factory.createObject(MediaItemType::Playlist, collection));
    QVERIFY(!factory.createObject(static_cast<MediaItemType>(5), collection));
}

HALCYRA_TEST(TestGuiMediaItems)
#include "test_guimediaitems.moc"
