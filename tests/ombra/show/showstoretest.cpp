#include "ombra/show/showstore.h"

#include "ombra/show/journalline.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <boost/asio/io_context.hpp>

#include <csignal>
#include <optional>
#include <sys/resource.h>

using namespace vantrel;
using namespace vantrel::ombra;

namespace {

Patch rename(const std::string& name)
{
    Patch patch;
    patch.append({PatchOpType::Replace, Path("/collections/1/name"), {}, Json(name)});
    return patch;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

} // namespace

class ShowStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(open());
        QCOMPARE(name(), std::string("first"));
    }

    void cleanup() { m_store.reset(); }

    void editsSurviveAKill()
    {
        int told = 0;
        m_store->addLibraryListener([&](const Patch&) { ++told; });
        QCOMPARE(edit(rename("second")).status, EditResult::Status::Saved);
        QCOMPARE(told, 1);
        m_store->changeSetting("/a/properties/b", Json(0.5));
        QCOMPARE(edit(rename("third")).status, EditResult::Status::Saved);
        const std::uint64_t revision = m_store->libraryRevision();
        QVERIFY(reopenCopy());
        QCOMPARE(name(), std::string("third"));
        QVERIFY(m_store->libraryRevision() > revision); // nothing of before passes for up to date
        QCOMPARE(m_store->settings().get("/a/properties/b").asDouble(), 0.5);
    }

    void refusedEditsChangeNothing()
    {
        Patch patch = rename("second");
        patch.append({PatchOpType::Remove, Path("/collections/7"), {}, {}});
        QCOMPARE(edit(patch).status, EditResult::Status::DoesNotFit);
        patch = rename("second");
        patch.append({PatchOpType::Replace, Path("/collections/1/name"), {}, Json(1)});
        QCOMPARE(edit(patch).status, EditResult::Status::BreaksRules);
        QCOMPARE(name(), std::string("first"));
        QVERIFY(reopenCopy());
        QCOMPARE(name(), std::string("first"));
    }

    /// A short patch that would make more than anybody can load again is refused as a whole, also when it
    /// grows by small steps; what is removed makes room.
    void refusesWhatIsTooLarge()
    {
        const auto add = [](const std::string& path, const Json& value) {
            return PatchOp{PatchOpType::Add, Path(path), {}, value};
        };
        const auto copy = [](int from, int to) {
            return PatchOp{PatchOpType::Copy,
                           Path("/collections/" + std::to_string(to)),
                           Path("/collections/" + std::to_string(from)),
                           {}};
        };
        Json slots = Json::object();
        for (int i = 1; i <= 1000; ++i)
            slots.set(std::to_string(i), Json::object({{"name", std::string(10'000, 'x')}}));
        Patch first;
        first.append(add("/collections/1", Json::object({{"name", "large"}, {"slots", slots}}))); // 10 MB
        QCOMPARE(edit(first).status, EditResult::Status::Saved);
        Patch bomb;
        for (int i = 2; i <= 30; ++i)
            bomb.append(copy(1, i));
        QCOMPARE(edit(bomb).status, EditResult::Status::TooLarge);
        QCOMPARE(m_store->library().getCollections().size(), std::size_t(1));
        int taken = 1;
        const auto grow = [&] {
            Patch one;
            one.append(copy(1, taken + 1));
            const auto status = edit(one).status;
            taken += status == EditResult::Status::Saved;
            return status;
        };
        while (taken < 40 && grow() == EditResult::Status::Saved) {
        }
        QVERIFY2(taken > 20 && taken < 28, qPrintable(QString::number(taken)));
        Patch away;
        away.append({PatchOpType::Remove, Path("/collections/2"), {}, {}});
        QCOMPARE(edit(away).status, EditResult::Status::Saved);
        QCOMPARE(grow(), EditResult::Status::Saved);
        QVERIFY(reopenCopy());
        QCOMPARE(m_store->library().getCollections().size(), std::size_t(taken - 1));
    }

    /// Wherever a power failure cuts the journal, what stands whole before the cut is there afterwards.
    void tornJournals()
    {
        QCOMPARE(edit(rename("second")).status, EditResult::Status::Saved);
        QCOMPARE(edit(rename("third")).status, EditResult::Status::Saved);
        const QByteArray journal = contentOf(path("journal.ndjson"));
        const QByteArray show = contentOf(path("show.json"));
        const qsizetype second = journal.indexOf('\n') + 1;
        const qsizetype third = journal.indexOf('\n', second) + 1;
        for (qsizetype cut = 0; cut <= journal.size(); cut += cut == journal.size() - 1 ? 1 : 7) {
            m_store.reset();
            m_folder = std::make_unique<QTemporaryDir>();
            writeFile(path("show.json"), show);
            writeFile(path("journal.ndjson"), journal.left(cut));
            QVERIFY(open());
            QCOMPARE(name(), std::string(cut == journal.size() ? "third"
                                         : cut >= third        ? "second"
                                                               : "first"));
        }
        QCOMPARE(name(), std::string("third"));
    }

    void damageIsKept_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QByteArray>("name"); // of the collection afterwards
        QTest::newRow("cut show") << QStringLiteral("show.json") << QByteArray("\"format\"")
                                  << QByteArray("\"form") << QByteArray("first");
        QTest::newRow("other content") << QStringLiteral("show.json") << QByteArray("\"name\":\"first\"")
                                       << QByteArray("\"name\":12345678") << QByteArray("first");
        QTest::newRow("journal line") << QStringLiteral("journal.ndjson") << QByteArray("third")
                                      << QByteArray("thirt") << QByteArray("second");
    }

    void damageIsKept()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QByteArray, name);
        for (const char* text : {"second", "third", "fourth"})
            QCOMPARE(edit(rename(text)).status, EditResult::Status::Saved);
        m_store.reset();
        QByteArray damaged = contentOf(path(file));
        QVERIFY(damaged.contains(from));
        damaged.replace(from, to);
        writeFile(path(file), damaged);
        QVERIFY(open());
        QCOMPARE(this->name(), name.toStdString());
        QCOMPARE(contentOf(path(file + QStringLiteral(".damaged-1"))), damaged);
        QCOMPARE(edit(rename("fifth")).status, EditResult::Status::Saved);
        QVERIFY(reopenCopy());
        QCOMPARE(this->name(), std::string("fifth"));
    }

    /// A journal of the snapshot before, as a crash between the two renames leaves it, is not applied again.
    void oldJournalsAreInTheSnapshot()
    {
        QCOMPARE(edit(rename("second")).status, EditResult::Status::Saved);
        const QByteArray journal = contentOf(path("journal.ndjson"));
        m_store.reset();
        QVERIFY(open()); // the next generation
        QCOMPARE(edit(rename("third")).status, EditResult::Status::Saved);
        m_store.reset();
        QVERIFY(open());
        m_store.reset();
        writeFile(path("journal.ndjson"), journal);
        QVERIFY(open());
        QCOMPARE(name(), std::string("third"));
    }

    /// When the disk takes no more, the edit and those made on top of it are refused and forgotten, and later
    /// ones work again.
    void goesBackWhenTheDiskIsFull()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
        rlimit tight = old;
        tight.rlim_cur = static_cast<rlim_t>(contentOf(path("journal.ndjson")).size()) + 30;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &tight), 0);
        std::vector<EditResult::Status> results;
        for (const char* text : {"second", "third"})
            m_store->patchLibrary(rename(text),
                                  [&](const EditResult& result) { results.push_back(result.status); });
        const bool answered = waitFor([&] { return results.size() == 2; });
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &old), 0);
        QVERIFY(answered);
        QCOMPARE(results[0], EditResult::Status::NotSaved);
        QCOMPARE(results[1], EditResult::Status::NotSaved);
        QCOMPARE(m_store->latestRevision(), m_store->libraryRevision());
        QCOMPARE(name(), std::string("first"));
        QCOMPARE(edit(rename("fourth")).status, EditResult::Status::Saved);
        QVERIFY(reopenCopy());
        QCOMPARE(name(), std::string("fourth"));
    }

    void oneServerAFolder()
    {
        ShowStore other(m_io, m_folder->path().toStdString());
        std::string error;
        QVERIFY(!other.open([] { return MediaLibrary(); }, &error));
        QVERIFY2(error.find("another server") != std::string::npos, error.c_str());
    }

    void writesSnapshotsNowAndThen()
    {
        const std::string text(2000, 'x');
        int saved = 0;
        for (int i = 0; i < 1200; ++i)
            m_store->patchLibrary(rename(text + std::to_string(i)), [&](const EditResult& result) {
                saved += result.status == EditResult::Status::Saved;
            });
        QVERIFY(waitFor([&] { return saved == 1200; }));
        QCOMPARE(edit(rename("last")).status, EditResult::Status::Saved);
        QCOMPARE(edit(rename("very last")).status, EditResult::Status::Saved);
        QVERIFY(contentOf(path("journal.ndjson")).size() < 1'000'000);
        QVERIFY(reopenCopy());
        QCOMPARE(name(), std::string("very last"));
    }

    void journalLines_data()
    {
        QTest::addColumn<QByteArray>("line");
        const QByteArray sound =
            QByteArray::fromStdString(encodeJournalLine(Json::object({{"a", 1}}))).chopped(1);
        QTest::newRow("flipped") << QByteArray(sound).replace("1}", "2}");
        QTest::newRow("short") << sound.left(9);
        QTest::newRow("no sum") << QByteArray("{\"a\":1}");
        QTest::newRow("no number") << "g" + sound.mid(1);
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("more") << sound + " ";
    }

    void journalLines()
    {
        QFETCH(QByteArray, line);
        Json out;
        QVERIFY(!decodeJournalLine(line.toStdString(), out));
        std::string sound = encodeJournalLine(Json::object({{"b", 2}}));
        sound.pop_back();
        QVERIFY(decodeJournalLine(sound, out));
        QCOMPARE(out.get("b").asInt(), std::int64_t(2));
    }

private:
    QString path(const QString& file) const { return m_folder->filePath(file); }
    QString path(const char* file) const { return path(QString::fromLatin1(file)); }
    std::string name() const { return m_store->library().findCollection(1)->getName(); }

    bool open()
    {
        m_store = std::make_unique<ShowStore>(m_io, m_folder->path().toStdString());
        std::string error;
        const bool opened = m_store->open(
            [] {
                MediaLibrary library;
                library.insertMediaCollection(1, MediaCollection("first"), true);
                return library;
            },
            &error);
        if (!opened)
            qInfo("%s", error.c_str());
        return opened;
    }

    /// Opens what is on the disk at this moment, as after a kill: the running store gets no chance to tidy
    /// up.
    bool reopenCopy()
    {
        auto copy = std::make_unique<QTemporaryDir>();
        for (const char* file : {"show.json", "journal.ndjson"})
            writeFile(copy->filePath(QString::fromLatin1(file)), contentOf(path(file)));
        m_store.reset();
        m_folder = std::move(copy);
        return open();
    }

    EditResult edit(const Patch& patch)
    {
        std::optional<EditResult> result;
        m_store->patchLibrary(patch, [&](const EditResult& r) { result = r; });
        waitFor([&] { return result.has_value(); });
        return result.value_or(EditResult{EditResult::Status::NotSaved, "no answer"});
    }

    bool waitFor(const std::function<bool()>& condition)
    {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < 20000;) {
            if (condition())
                return true;
            m_io.restart();
            m_io.run_one_for(std::chrono::milliseconds(5));
        }
        return false;
    }

    boost::asio::io_context m_io;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ShowStore> m_store;
};

HALCYRA_TEST(ShowStoreTest)
#include "showstoretest.moc"
