#include "common/filesystem/operations/asyncfilesystemreader.h"
#include "common/import/dropforecast.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/import/mediaquestions.h"
#include "tarn/media/mediaenums.h"
#include "tests/common/filesystem/fakefilesystem.h"
#include "tests/common/import/fakecollections.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <utility>

using namespace vantrel;
using images::ImageResultType;
using images::ImagesResult;
using test::expectWarning;

namespace {

/// Its videos play unless they are told not to; what is late is told when the test says so. With a memory it
/// asks somebody else first, and keeps so many answers.
class MediaFiles : public test::FakeFileSystem
{
public:
    QSet<QString> unplayable;
    QSet<QString> late;
    qsizetype memory = 0;
    QHash<QString, int> requests;
    int types = 0; // were asked for
    int lateRequests = 0;

    ItemType getType(QString path) override
    {
        ++types;
        return path.endsWith(u'/') ? Directory : File;
    }
    bool requestMetadata(QString path, FileMetadata& result) override
    {
        result.isPlayable = !unplayable.contains(path);
        result.mediaType = MediaType::VideoFile;
        result.durationMs = 2500;
        lateRequests += late.contains(path);
        if (memory == 0 || m_answers.contains(path))
            return !late.contains(path);
        if (!std::exchange(m_isAsking[path], true) && ++requests[path] && !late.contains(path))
            QTimer::singleShot(0, this, [this, path] { answer(path); });
        return false;
    }

private:
    void answer(const QString& path)
    {
        m_isAsking.remove(path);
        m_answers.append(path);
        if (m_answers.size() > memory)
            m_answers.removeFirst();
        Q_EMIT fileMetadataChanged(
            {path.section(u'/', -1), 1, FileSystemDirectory::fromFullPath(QStringLiteral("/in/"))}, {});
    }

    QHash<QString, bool> m_isAsking;
    QStringList m_answers;
};

} // namespace

class TestMediaDrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_files = std::make_unique<MediaFiles>();
        m_files->answersLater = true;
        m_reader = std::make_unique<AsyncFileSystemReader>();
        m_collections = test::FakeCollections();
        m_creator = std::make_unique<ImageSequenceCreator>(nullptr, &m_collections);
    }

    void storesWhatAFolderHolds()
    {
        for (const char* name : {"s.0001.exr", "s.0002.exr", "s.0005.exr", "logo_v1.png", "logo_v2.png",
                                 "b.mov", "a.mov", "bad.mov", "notes.txt", ".x.01.png", "below/c.mov"})
            m_files->add(QStringLiteral("/in/") + QString::fromLatin1(name), 1);
        m_files->unplayable = {QStringLiteral("/in/bad.mov")};
        m_files->late = {QStringLiteral("/in/a.mov")};
        expectWarning(QStringLiteral("Found unknown file path from input list: \"/in/notes.txt\""));
        const auto drop = makeDrop(20);
        QSignalSpy found(drop.get(), &MediaDrop::imageSequencesFound);
        QCOMPARE(drop->lastSlot(), -1);
        drop->requestAsynchronously({QStringLiteral("/in/"), FileSystem::Directory}, m_files.get());
        QCOMPARE(drop->lastSlot(), 20);
        QVERIFY(!drop->isReady());
        QTRY_COMPARE(drop->imageResults().size(), 3); // which can be looked at while the rest is asked for
        QCOMPARE(drop->askedCount(), 3);
        QVERIFY(!DropForecast::of(*drop, m_collections).isPossible());
        drop->save(); // it waits for what the server has to tell of a.mov
        drop->cancel();
        QVERIFY(!drop->isReady() && m_collections.done.isEmpty());
        QCOMPARE(drop->lastSlot(), 25);
        m_files->late.clear();
        waitFor(*drop);
        QCOMPARE(drop->askedCount(), 0);

        QCOMPARE(found.size(), 1);
        const ImagesResult sequence = drop->imageResults().constFirst();
        QCOMPARE(sequence.getImageSequence(),
                 (ImageSequenceCandidate{QUrl::fromLocalFile(QStringLiteral("/in/s.%04d.exr")),
                                         QStringLiteral("s.%04d.exr"), 1, 5, 60}));
        QCOMPARE(sequence.stillImages().size(), 3);
        QCOMPARE(drop->faults().size(), 2);
        drop->save();
        QCOMPARE(m_collections.shown(), QStringLiteral("20 a.mov, 21 b.mov, 22 s.%04d.exr, 23 logo_v1.png, "
                                                       "24 logo_v2.png"));
        QCOMPARE(m_collections.done.join(u'|'), QStringLiteral("begin|add 20 x5|end"));
        QCOMPARE(m_collections.content[20].duration(), 2.5);
        const GuiMediaSlot slot = m_collections.content[22];
        QCOMPARE(slot.firstFrame().value_or(0), 1);
        QCOMPARE(slot.lastFrame().value_or(0), 5);
        QCOMPARE(slot.duration(), 5 / 60.0);
        QCOMPARE(m_collections.content[23].duration(), 10.0);
    }

    /// Of many files each is asked for once, however few answers are kept, and only what nobody tells
    /// anything of is left out.
    void oneThatIsNotTold()
    {
        QStringList names;
        for (int i = 10; i < 70; ++i)
            names.append(QStringLiteral("%1.mov").arg(i));
        for (const QString& name : std::as_const(names))
            m_files->add(QStringLiteral("/in/") + name, 1);
        m_files->memory = MediaQuestions::mostOpen;
        m_files->late = {QStringLiteral("/in/12.mov")};
        expectWarning(QStringLiteral("Unable to read metadata for a media file \"/in/12.mov\""));
        const auto drop = makeDrop(1);
        drop->setPatience(std::chrono::milliseconds(500));
        drop->requestAsynchronously({QStringLiteral("/in/"), FileSystem::Directory}, m_files.get());
        waitFor(*drop);
        QStringList found;
        for (const GuiMediaSlot& media : drop->medias())
            found.append(media.name());
        names.removeOne(QStringLiteral("12.mov"));
        QCOMPARE(found, names);
        QCOMPARE(drop->faults(),
                 QStringList{QStringLiteral("\"12.mov\" is left out: nothing was told of it in time.")});
        QCOMPARE(m_files->requests.size(), 60);
        QVERIFY(std::ranges::all_of(m_files->requests, [](int number) { return number == 1; }));
    }

    /// While nobody can tell, no time to answer runs out.
    void waitsWhileHeld()
    {
        m_files->add(QStringLiteral("/in/a.mov"), 1);
        m_files->late = {QStringLiteral("/in/a.mov")};
        const auto drop = makeDrop(1);
        drop->setPatience(std::chrono::milliseconds(1));
        drop->setIsHeld(true);
        drop->requestAsynchronously({QStringLiteral("/in/"), FileSystem::Directory}, m_files.get());
        QTRY_VERIFY(m_files->lateRequests > 3); // a tick each
        QCOMPARE(drop->faults(), QStringList());
        m_files->late.clear();
        drop->setIsHeld(false);
        waitFor(*drop);
        QCOMPARE(drop->medias().size(), 1);
    }

    /// Slots are numbered as a reader counts, and one folder goes before the next.
    void ordersAsAReader()
    {
        for (const char* name : {"b/Cue 10.mov", "b/Cue 2.mov", "b/cue 1.mov", "a/Cue 3.mov",
                                 "b/Logo 10 b.png", "b/Logo 9 a.png"})
            m_files->add(u'/' + QString::fromLatin1(name), 1);
        const auto drop = makeDrop(1);
        for (const char* path : {"/b/", "/a/"})
            drop->requestAsynchronously({QString::fromLatin1(path), FileSystem::Directory}, m_files.get());
        waitFor(*drop);
        drop->save();
        QCOMPARE(m_collections.shown(), QStringLiteral("1 cue 1.mov, 2 Cue 2.mov, 3 Cue 10.mov, 4 Cue 3.mov, "
                                                       "5 Logo 9 a.png, 6 Logo 10 b.png"));
    }

    void storesSequencesAsStills()
    {
        for (int i = 1; i <= 3; ++i)
            m_files->add(QStringLiteral("/in/%1.left.png").arg(i), 1);
        const auto drop = makeDrop(1);
        for (int i = 1; i <= 3; ++i)
            drop->requestAsynchronously({QStringLiteral("/in/%1.left.png").arg(i), FileSystem::File},
                                        m_files.get());
        QCOMPARE(drop->lastSlot(), 1); // they are one request
        waitFor(*drop);
        QList<ImagesResult> results = drop->imageResults();
        QCOMPARE(results.size(), 1);
        QVERIFY(results[0].isSequence());
        results[0].setType(ImageResultType::StillImage);
        results[0].setStillImageDuration(3, true);
        drop->setImageResults(results);
        m_collections.last = 2;
        expectWarning(QStringLiteral("No room for 3 slot(s) from slot 1"));
        drop->save();
        QVERIFY(m_collections.done.isEmpty());
        QCOMPARE(drop->faults().size(), 1);
        m_collections.last = 3;
        QSignalSpy saved(drop.get(), &MediaDrop::saved);
        drop->save();
        QCOMPARE(saved.size(), 1);
        QCOMPARE(m_collections.shown(), QStringLiteral("1 1.left.png, 2 2.left.png, 3 3.left.png"));
        QVERIFY(m_collections.content[2].hasInfiniteDuration());
    }

    void readsAroundFoldersThatAreGone()
    {
        m_files->add(QStringLiteral("/a/1.mov"), 1);
        m_files->add(QStringLiteral("/b/2.mov"), 1);
        m_files->invalid = {QStringLiteral("/gone/")};
        test::allowWarnings(QStringLiteral("Invalid path request"));
        const auto drop = makeDrop(1);
        for (const char* path : {"/a/", "/gone/", "/b/"})
            drop->requestAsynchronously({QString::fromLatin1(path), FileSystem::Directory}, m_files.get());
        drop->requestAsynchronously({QStringLiteral("/c.png"), FileSystem::File}, m_files.get());
        waitFor(*drop);
        QCOMPARE(drop->medias().size(), 2);
        QCOMPARE(drop->imageResults().size(), 1);
        QCOMPARE(drop->faults(), QStringList{QStringLiteral("\"gone\" is left out: it could not be read.")});
    }

    void dropsShareTheReader()
    {
        std::vector<std::unique_ptr<MediaDrop>> drops;
        for (int i = 0; i < 4; ++i) {
            m_files->add(QStringLiteral("/%1/clip%1.mov").arg(i), 1);
            drops.push_back(makeDrop(1));
            drops.back()->requestAsynchronously({QStringLiteral("/%1/").arg(i), FileSystem::Directory},
                                                m_files.get());
        }
        drops.front().reset(); // in the middle of it, as when its window is closed
        for (std::size_t i = 1; i < drops.size(); ++i) {
            waitFor(*drops[i]);
            QCOMPARE(drops[i]->medias().size(), 1);
            QCOMPARE(drops[i]->medias().constFirst().name(), QStringLiteral("clip%1.mov").arg(i));
        }
    }

    /// What a large folder holds is made beside the main thread, while others read on, and of few files at a
    /// time it is asked what they are.
    void sortsAside()
    {
        for (int i = 0; i < 300; ++i) {
            m_files->add(QStringLiteral("/in/%1.mov").arg(i), 1);
            m_files->add(QStringLiteral("/in/all %1 of.png").arg(i), 1);
        }
        m_files->memory = MediaQuestions::mostOpen;
        QSignalSpy readings(m_reader.get(), &AsyncFileSystemReader::isReadyChanged); // begun, done, let go
        auto drop = makeDrop(1);
        bool isFoundAtOnce = false;
        connect(m_reader.get(), &AsyncFileSystemReader::isReadyChanged, drop.get(),
                [&] { isFoundAtOnce = !drop->imageResults().isEmpty(); });
        int typesBefore = -1;
        connect(drop.get(), &MediaDrop::mediasChanged, drop.get(),
                [&] { typesBefore = typesBefore < 0 ? m_files->types : typesBefore; });
        drop->requestAsynchronously({QStringLiteral("/in/"), FileSystem::Directory}, m_files.get());
        waitFor(*drop);
        QCOMPARE(readings.size(), 3);
        QVERIFY(!isFoundAtOnce);
        QVERIFY2(typesBefore <= 2 * MediaQuestions::mostOpen, qPrintable(QString::number(typesBefore)));
        QCOMPARE(drop->medias().size() + drop->imageResults().size(), 600);

        // One that is given up meanwhile leaves the reader to the next.
        readings.clear();
        auto other = makeDrop(1);
        other->requestAsynchronously({QStringLiteral("/in/"), FileSystem::Directory}, m_files.get());
        QTRY_COMPARE(readings.size(), 3);
        other.reset();
        drop = makeDrop(1);
        drop->requestAsynchronously({QStringLiteral("/in/"), FileSystem::Directory}, m_files.get());
        waitFor(*drop);
        QCOMPARE(drop->medias().size() + drop->imageResults().size(), 600);
    }

    void movesSlots_data()
    {
        QTest::addColumn<QList<int>>("sources");
        QTest::addColumn<int>("start");
        QTest::addColumn<QString>("content"); // of 3 to 7, "c" to "g"
        QTest::newRow("one further") << QList<int>{3, 4, 5} << 4 << QStringLiteral("4 c, 5 d, 6 e, 7 g");
        QTest::newRow("where it is") << QList<int>{7} << 7 << QStringLiteral("3 c, 4 d, 5 e, 6 f, 7 g");
        QTest::newRow("turned round") << QList<int>{4, 3} << 3 << QStringLiteral("3 d, 4 c, 5 e, 6 f, 7 g");
        QTest::newRow("to the front") << QList<int>{6, 7} << 3 << QStringLiteral("3 f, 4 g, 5 e");
        QTest::newRow("to free ones") << QList<int>{3, 5} << 9 << QStringLiteral("4 d, 6 f, 7 g, 9 c, 10 e");
    }

    void movesSlots()
    {
        QFETCH(QList<int>, sources);
        QFETCH(int, start);
        for (int slot = 3; slot <= 7; ++slot)
            m_collections.put(slot, QString(QChar(u'a' + slot - 1)));
        const auto drop = makeDrop(start);
        drop->setCollectionSlots(sources);
        drop->save();
        QTEST(m_collections.shown(), "content");
    }

private:
    std::unique_ptr<MediaDrop> makeDrop(int slot)
    {
        return std::make_unique<MediaDrop>(m_reader.get(), m_creator.get(), 1, slot);
    }
    static void waitFor(const MediaDrop& drop) { QTRY_VERIFY(drop.isReady()); }

    std::unique_ptr<MediaFiles> m_files;
    std::unique_ptr<AsyncFileSystemReader> m_reader;
    test::FakeCollections m_collections;
    std::unique_ptr<ImageSequenceCreator> m_creator;
};

HALCYRA_TEST(TestMediaDrop)
#include "test_mediadrop.moc"
