#include "common/filesystem/model/filesystemprovider.h"
#include "common/import/dropforecast.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/import/mediaslotdrophandler.h"
#include "common/import/slotpayload.h"
#include "common/media/items/mimedata.h"
#include "tests/common/filesystem/fakefilesystem.h"
#include "tests/common/import/fakecollections.h"
#include "tests/support/testmain.h"

#include <QMimeData>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using test::expectWarning;

namespace {

class Server : public test::FakeFileSystem
{
public:
    QHash<QString, ItemType> types; // of what is not what its name says

    ItemType getType(QString path) override
    {
        return types.value(path, path.endsWith(u'/') ? Directory : File);
    }
    bool requestMetadata(QString, FileMetadata& result) override
    {
        result.isPlayable = true;
        result.durationMs = 4000;
        return true;
    }
};

class Provider : public FileSystemProvider
{
public:
    Server server;

    FileSystem* getServerFileSystem(QUrl, QString, QString) override { return &server; }
    FileSystem* getLocalFileSystem() override { return nullptr; }
    FileSystem* getFileSystem(QString kind) override
    {
        return kind == QStringLiteral("server") ? &server : nullptr;
    }
};

class DragObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantMap mimeData MEMBER m_mime)

public:
    QVariantMap m_mime;
};

QVariantMap payload(const char* type, const QString& json)
{
    return {{mimeformat::type, QString::fromLatin1(type)}, {mimeformat::json, json}};
}

/// An element of a "media" payload.
QString entry(const QString& path, bool isPlayable = true, const QString& more = {})
{
    return QStringLiteral("{\"path\":\"%1\",\"fileSystem\":\"server\",\"name\":\"%2\",\"duration\":2.5,"
                          "\"isDirectory\":%3,"
                          "\"isPlayable\":%4%5}")
        .arg(path, path.section(u'/', -1, -1, QString::SectionSkipEmpty),
             path.endsWith(u'/') ? QStringLiteral("true") : QStringLiteral("false"),
             isPlayable ? QStringLiteral("true") : QStringLiteral("false"), more);
}

QString array(const QStringList& elements)
{
    return u'[' + elements.join(u',') + u']';
}

} // namespace

class TestSlotDropHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_provider = std::make_unique<Provider>();
        m_collections = test::FakeCollections();
        m_creator = std::make_unique<ImageSequenceCreator>(nullptr, &m_collections);
        m_handler = std::make_unique<MediaSlotDropHandler>(m_creator.get(), m_provider.get());
        m_drop = nullptr;
        connect(m_handler.get(), &MediaSlotDropHandler::mediaDropCreated, this,
                [this](MediaDrop* drop) { m_drop = drop; });
    }

    void movesSlotsFromEveryKindOfDrag()
    {
        m_collections.put(3, QStringLiteral("c"));
        m_collections.put(4, QStringLiteral("d"));
        const QString json = QString::fromLatin1("{\"slots\":[3,4,3]}");
        QMimeData data;
        data.setData(mimeformat::type, "slot");
        expectWarning(QStringLiteral("Dropped MIME data didn't have correct values - Formats:"));
        QVERIFY(!m_handler->dropMimeData(&data, 1, 7));
        data.setData(mimeformat::json, json.toUtf8());
        QVERIFY(m_handler->dropMimeData(&data, 1, 7));
        QCOMPARE(m_drop->collectionSlots(), (QList<int>{3, 4}));
        DragObject drag;
        drag.m_mime = payload("slot", json);
        QVERIFY(m_handler->dropDrag(QVariant::fromValue<QObject*>(&drag), 1, 7));
        QCOMPARE(m_drop->lastSlot(), 8);
        m_drop->save();
        QCOMPARE(m_collections.shown(), QStringLiteral("7 c, 8 d"));
        QTRY_VERIFY(!m_drop); // it is kept no longer
    }

    void copiesSlotsOfAnotherCollection()
    {
        m_collections.put(3, QStringLiteral("c"));
        const QString json = QString::fromLatin1("[{\"address\":\"brume://collections/%1/slots/%2\"}]");
        QVERIFY(m_handler->dropMimeData(payload("slot", json.arg(2).arg(3)), 1, 5));
        m_drop->save();
        QCOMPARE(m_collections.shown(), QStringLiteral("3 c, 5 c"));
        QVERIFY(m_handler->dropMimeData(payload("slot", json.arg(1).arg(3)), 1, 6));
        m_drop->save();
        QCOMPARE(m_collections.shown(), QStringLiteral("5 c, 6 c"));
        QSignalSpy refused(m_handler.get(), &MediaSlotDropHandler::dropRefused);
        QVERIFY(!m_handler->dropMimeData(payload("slot", json.arg(2).arg(9)), 1, 5));
        QCOMPARE(refused.size(), 1);
    }

    void sortsFilesOut()
    {
        m_provider->server.add(QStringLiteral("/in/z.mov"), 1);
        m_provider->server.types[QStringLiteral("/turned.mov")] = FileSystem::Directory;
        expectWarning(QStringLiteral("Mismatching type of dropped path"));
        expectWarning(QStringLiteral("Unable to get file system for "));
        const QString elsewhere =
            entry(QStringLiteral("/e.mov")).replace(QLatin1String("\"server\""), QLatin1String("\"moon\""));
        QVERIFY(m_handler->dropMimeData(
            payload("media", array({entry(QStringLiteral("/bad.mov"), false), entry(QStringLiteral("/a.mov")),
                                    entry(QStringLiteral("/turned.mov")), elsewhere,
                                    entry(QStringLiteral("/new.mov"), false,
                                          QString::fromLatin1(",\"isKnown\":false")),
                                    entry(QStringLiteral("/in/"))})),
            1, 1));
        QCOMPARE(m_drop->medias().size(), 1);
        QVERIFY(!m_drop->isReady()); // a folder is read also when it holds only videos
        QTRY_VERIFY(m_drop->isReady());
        QCOMPARE(m_drop->faults().size(), 3);
        m_drop->save();
        QCOMPARE(m_collections.shown(), QStringLiteral("1 a.mov, 2 new.mov, 3 z.mov"));
        QCOMPARE(m_collections.content[1].duration(), 2.5);
        QCOMPARE(m_collections.content[2].duration(), 4.0);
        QCOMPARE(m_collections.content[1].contentUrl(), QUrl(QStringLiteral("file:///a.mov")));
    }

    void refusesWhatLies_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("warning");
        const auto row = [](const char* name, const char* type, const QString& json, const char* warning) {
            QTest::newRow(name) << QString::fromLatin1(type) << json << QString::fromLatin1(warning);
        };
        row("type", "playlist", QStringLiteral("[1]"), "Unknown MIME type:");
        row("number", "2", QStringLiteral("[1]"), "Unknown MIME type:");
        row("text", "slot", QStringLiteral("{"), "is empty/error");
        row("no slots", "slot", QString::fromLatin1("{\"slots\":[]}"),
            "Source slot array was empty in MIME data. Skipping drop(s)");
        row("other object", "slot", QString::fromLatin1("{\"slot\":1}"), "Unable to read target slots");
        row("below zero", "slot", QString::fromLatin1("{\"slots\":[1,-4]}"), "Unable to read target slots");
        row("huge", "slot", QString::fromLatin1("{\"slots\":[1,100000]}"), "Unable to read target slots");
        row("address", "slot", QString::fromLatin1("[{\"address\":\"brume://playlists/1/entries/2\"}]"),
            "Unable to read target slots");
        row("no array", "media", QString::fromLatin1("{\"path\":\"/a\"}"),
            "Expected MIME JSON to contain an array:");
    }

    void refusesWhatLies()
    {
        QFETCH(QString, type);
        QFETCH(QString, json);
        QFETCH(QString, warning);
        expectWarning(warning);
        QSignalSpy refused(m_handler.get(), &MediaSlotDropHandler::dropRefused);
        QVERIFY(!m_handler->dropMimeData(payload(type.toLatin1().constData(), json), 1, 1));
        QVERIFY(!m_drop);
        QVERIFY(refused.value(0).value(0).toString().endsWith(u'.'));
    }

    void stopsAtABadElement_data()
    {
        QTest::addColumn<QString>("bad");
        QTest::newRow("nothing") << QStringLiteral("7");
        QTest::newRow("climbs out") << entry(QStringLiteral("/a/../../etc/passwd.mov"));
        QTest::newRow("not absolute") << entry(QStringLiteral("a.mov"));
        QTest::newRow("endless")
            << entry(QStringLiteral("/a.mov")).replace(QLatin1String("2.5"), QLatin1String("1e300"));
        QTest::newRow("backwards")
            << entry(QStringLiteral("/a.mov")).replace(QLatin1String("2.5"), QLatin1String("-1"));
        QTest::newRow("a text for a truth")
            << entry(QStringLiteral("/a.mov")).replace(QLatin1String("true"), QLatin1String("\"true\""));
    }

    void stopsAtABadElement()
    {
        QFETCH(QString, bad);
        expectWarning(QStringLiteral("Unable to read media variables from MIME JSON:"));
        const QVariantMap mime =
            payload("media", array({entry(QStringLiteral("/a.mov")), bad, entry(QStringLiteral("/b.mov"))}));
        QVERIFY(m_handler->dropMimeData(mime, 1, 1));
        QCOMPARE(m_drop->medias().size(), 1);
        QCOMPARE(m_drop->faults().size(), 1);
        // Who asks before the drop is told that it cannot be done.
        expectWarning(QStringLiteral("Unable to read media variables from MIME JSON:"));
        QVERIFY(!DropForecast::of(SlotPayload::read(mime), m_collections, 1, 1).isPossible());
    }

    void findsRoom_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("json");
        QTest::addColumn<int>("room");
        const auto files = [](int count) {
            return array(QStringList(count, entry(QStringLiteral("/x.mov"))));
        };
        QTest::newRow("one in the gap") << "media" << files(1) << 4;
        QTest::newRow("two in the gap") << "media" << files(2) << 4;
        QTest::newRow("three behind all") << "media" << files(3) << 8;
        QTest::newRow("more than there is") << "media" << files(6) << 2;
        // What moves away leaves room.
        QTest::newRow("slots onto themselves") << "slot"
                                               << R"({"slots":[3,2]})" << 2;
        QTest::newRow("slots of elsewhere") << "slot"
                                            << R"({"slots":[3,2],"collection":9})" << 4;
    }
    /// What is held between two slots points at neither, and overwrites none.
    void findsRoom()
    {
        QFETCH(QString, type);
        QFETCH(QString, json);
        for (const int taken : {2, 3, 6, 7})
            m_collections.put(taken, QStringLiteral("x"));
        m_collections.content[5]; // one that has been cleared is kept, and holds nothing
        m_collections.last = 12;
        const SlotPayload dragged = SlotPayload::read(payload(type.toUtf8(), json));
        QTEST(roomFrom(dragged, m_collections, 1, 2), "room");
    }

    void foretells()
    {
        m_collections.put(3, QStringLiteral("Logo"));
        m_collections.put(4, QStringLiteral("Loop"));
        m_collections.put(5, QStringLiteral("Bye"));
        m_collections.content[6]; // cleared
        m_collections.last = 8;
        const QString a = entry(QStringLiteral("/a.mov"));
        const auto told = [this](const char* type, const QString& json, int slot) {
            return DropForecast::of(SlotPayload::read(payload(type, json)), m_collections, 1, slot).text();
        };
        QCOMPARE(told("media", array({a}), 6), QStringLiteral("Slot 6."));
        QCOMPARE(told("media", array({a, a, a, a, entry(QStringLiteral("/bad.mov"), false)}), 3),
                 QStringLiteral("Slots 3 to 6 (4). Overwrites 3 Logo, 4 Loop and 1 more."));
        QCOMPARE(told("media", array({a, a}), 8), QStringLiteral("There is no room: the last slot is 8."));
        QCOMPARE(told("media", array({entry(QStringLiteral("/in/"))}), 6),
                 QStringLiteral("From slot 6 on; how many slots tells once it is read."));
        // Its own slots are not lost by a move, those of another collection are.
        QCOMPARE(told("slot", QString::fromLatin1("{\"slots\":[3,4]}"), 4),
                 QStringLiteral("Slots 4 to 5 (2). Overwrites 5 Bye."));
        QCOMPARE(told("slot", QString::fromLatin1("{\"slots\":[3,4],\"collection\":2}"), 4),
                 QStringLiteral("Copy to: Slots 4 to 5 (2). Overwrites 4 Loop, 5 Bye."));
        // Of those that come over from several collections, those that stood here leave their places.
        SlotPayload over = SlotPayload::read(
            payload("slot", QString::fromLatin1("[{\"address\":\"brume://collections/2/slots/3\"},"
                                                "{\"address\":\"brume://collections/1/slots/5\"}]")));
        over.setIsMove(true);
        QCOMPARE(DropForecast::of(over, m_collections, 1, 4).text(),
                 QStringLiteral("Move to: Slots 4 to 5 (2). Overwrites 4 Loop."));
    }

private:
    std::unique_ptr<Provider> m_provider;
    test::FakeCollections m_collections;
    std::unique_ptr<ImageSequenceCreator> m_creator;
    std::unique_ptr<MediaSlotDropHandler> m_handler;
    QPointer<MediaDrop> m_drop;
};

HALCYRA_TEST(TestSlotDropHandler)
#include "test_slotdrophandler.moc"
