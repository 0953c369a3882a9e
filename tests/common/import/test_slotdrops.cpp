#include "common/filesystem/model/filesystemprovider.h"
#include "common/import/dropsettler.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/import/mediaslotdrophandler.h"
#include "tests/common/filesystem/fakefilesystem.h"
#include "tests/common/import/fakecollections.h"
#include "tests/support/testmain.h"

#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using test::expectWarning;

namespace {

class Sides : public FileSystemProvider
{
public:
    test::FakeFileSystem local;
    test::FakeFileSystem server;

    FileSystem* getServerFileSystem(QUrl, QString, QString) override { return &server; }
    FileSystem* getLocalFileSystem() override { return &local; }
    FileSystem* getFileSystem(QString kind) override
    {
        return kind == u"server" ? &server : kind == u"local" ? &local : nullptr;
    }
};

QString media(const char* path, const char* side = "server", const char* more = "")
{
    return QStringLiteral(R"({"path":"%1","fileSystem":"%2","name":"n","duration":2,"isDirectory":false,)"
                          R"("isPlayable":true%3})")
        .arg(QLatin1String(path), QLatin1String(side), QLatin1String(more));
}

} // namespace

class TestSlotDrops : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_collections = test::FakeCollections();
        m_creator = std::make_unique<ImageSequenceCreator>(nullptr, &m_collections);
        m_handler = std::make_unique<MediaSlotDropHandler>(m_creator.get(), &m_sides);
        m_settler = std::make_unique<DropSettler>(m_handler.get(), &m_collections);
    }

    void payloads_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("warning");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char* name, const char* type, const QString& json, const char* warning,
                            const char* shown) {
            QTest::newRow(name) << QString::fromLatin1(type) << json << QString::fromLatin1(warning)
                                << QString::fromLatin1(shown);
        };
        const auto list = [](const QStringList& parts) { return u'[' + parts.join(u',') + u']'; };
        row("slots", "slot", R"({"slots":[2,1,2]})", "", "3 b, 4 a");
        row("no slots", "slot", R"({"slots":[]})",
            "Source slot array was empty in MIME data. Skipping drop(s)", "1 a, 2 b");
        row("slots that are none", "slot", R"({"slots":[1,"x"]})", "Unable to read target slots", "1 a, 2 b");
        row("nothing of slots", "slot", "[1]", "Unable to read target slots", "1 a, 2 b");
        row("media", "media", list({media("/x.mov"), media("/y.mov")}), "", "1 a, 2 b, 3 n, 4 n");
        row("one that lies", "media", list({media("/x.mov"), media("relative.mov"), media("/y.mov")}),
            "Unable to read media variables", "1 a, 2 b, 3 n");
        row("a side that is none", "media", list({media("/x.mov", "cloud")}),
            "Unable to get file system for ", "1 a, 2 b");
        row("no list", "media", R"({"path":"/x.mov"})",
            "Expected MIME JSON to contain an array:", "1 a, 2 b");
        row("another type", "playlist", "[1]", "Unknown MIME type:", "1 a, 2 b");
        row("no JSON", "media", "[", "is empty/error", "1 a, 2 b");
    }
    /// Nothing is overwritten that nobody pointed at, whatever comes.
    void payloads()
    {
        QFETCH(QString, type);
        QFETCH(QString, json);
        QFETCH(QString, warning);
        m_collections.put(1, QStringLiteral("a"));
        m_collections.put(2, QStringLiteral("b"));
        if (!warning.isEmpty())
            expectWarning(warning);
        QMimeData data;
        data.setData(QStringLiteral("application/type"), type.toUtf8());
        data.setData(QStringLiteral("application/json"), json.toUtf8());
        QCOMPARE(m_handler->dropMimeData(&data, 1, 3), warning.isEmpty());
        QTRY_COMPARE(m_handler->liveDrops(), 0);
        QTEST(m_collections.shown(), "shown");
    }

    void looksForRoom_data()
    {
        QTest::addColumn<int>("slot");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("shown");
        QTest::newRow("where it was aimed at") << 2 << 1 << "2 n, 3 a, 5 b";
        QTest::newRow("behind what is there") << 2 << 2 << "3 a, 5 b, 6 n, 7 n";
        QTest::newRow("on what is there") << 3 << 1 << "3 a, 4 n, 5 b";
        QTest::newRow("nowhere") << 2 << 5 << "3 a, 5 b";
    }
    void looksForRoom()
    {
        QFETCH(int, slot);
        QFETCH(int, count);
        m_collections.last = 9;
        m_collections.put(3, QStringLiteral("a"));
        m_collections.put(5, QStringLiteral("b"));
        const QVariantMap mime{
            {"application/type", "media"},
            {"application/json", u'[' + QStringList(count, media("/x.mov")).join(u',') + u']'}};
        QVERIFY(m_handler->dropMimeData(mime, 1, slot));
        QTRY_COMPARE(m_handler->liveDrops(), 0);
        QTEST(m_collections.shown(), "shown");
    }

    /// What lies on this computer the server does not have.
    void localFilesAreNoSlots()
    {
        QSignalSpy local(m_handler.get(), &MediaSlotDropHandler::localPathsDropped);
        const QString json = u'[' + QStringList{media("/x.mov", "local"), media("/y.mov")}.join(u',') + u']';
        QVERIFY(m_handler->dropMimeData(
            QVariantMap{{"application/type", "media"}, {"application/json", json}}, 1, 1));
        QCOMPARE(local.size(), 1);
        QCOMPARE(local.constFirst().constFirst().toStringList(), QStringList{QStringLiteral("/x.mov")});
        QTRY_COMPARE(m_collections.shown(), QStringLiteral("1 n"));
    }

private:
    Sides m_sides;
    test::FakeCollections m_collections;
    std::unique_ptr<ImageSequenceCreator> m_creator;
    std::unique_ptr<MediaSlotDropHandler> m_handler;
    std::unique_ptr<DropSettler> m_settler;
};

HALCYRA_TEST(TestSlotDrops)
#include "test_slotdrops.moc"
