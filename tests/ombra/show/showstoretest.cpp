#include "ombra/show/showstore.h"

#include "ombra/show/journalline.h"
#include "tarn/log/log.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <boost/asio/io_context.hpp>

#include <csignal>
#include <fcntl.h>
#include <map>
#include <optional>
#include <random>
#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace vantrel;
using namespace vantrel::ombra;

namespace {

Patch rename(const std::string& name)
{
    Patch patch;
    patch.append({PatchOpType::Replace, Path("/collections/1/name"), {}, Json(name)});
    return patch;
}

Json nested(int levels)
{
    Json value = 1;
    for (; levels > 0; --levels)
        value = Json::array({value});
    return value;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What a disk holds: the files by their names.
using Files = std::map<QString, QByteArray>;

Files filesOf(const QString& folder)
{
    Files files;
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        if (name != QStringLiteral("lock"))
            files[name] = contentOf(folder + u'/' + name);
    }
    return files;
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

/// Takes the rights to others' files from this process, and those to the folder from whoever has no others.
class NoRights
{
public:
    explicit NoRights(const QString& folder, QFile::Permissions left = {})
        : m_folder(folder)
    {
        QFile::setPermissions(folder, left);
        m_isRoot = geteuid() == 0 && seteuid(65534) == 0;
    }
    ~NoRights()
    {
        if (m_isRoot && seteuid(0) != 0)
            qFatal("cannot be root again");
        QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    NoRights(const NoRights&) = delete;
    NoRights& operator=(const NoRights&) = delete;

private:
    QString m_folder;
    bool m_isRoot = false;
};

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
        m_store->addLibraryListener([&](const ShowStore::Difference&, bool) { ++told; });
        QCOMPARE(edit(rename("second")).status, EditResult::Status::Saved);
        QCOMPARE(told, 1);
        m_store->changeSetting("/a/properties/b", Json(0.5));
        QCOMPARE(edit(rename("third")).status, EditResult::Status::Saved);
        Patch newer; // a later version's
        newer.append({PatchOpType::Add, Path("/venue"), {}, Json::object({{"hall", nested(63)}})});
        QCOMPARE(edit(newer).status, EditResult::Status::Saved);
        const std::uint64_t revision = m_store->libraryRevision();
        QVERIFY(reopenCopy());
        QCOMPARE(name(), std::string("third"));
        QVERIFY(m_store->library().toJson().get("venue").get("hall") == nested(63));
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
        patch = rename("second");
        patch.append({PatchOpType::Add, Path("/venue"), {}, nested(65)});
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
        const Files files = filesOf(m_folder->path());
        const QString journalName = newest(QStringLiteral("journal"));
        const QByteArray journal = files.at(journalName);
        const qsizetype second = journal.indexOf("second\"}]}\n");
        const qsizetype third = journal.indexOf("third\"}]}\n");
        for (qsizetype cut = journal.size() % 7; cut <= journal.size(); cut += 7) { // the last is whole
            Files torn = files;
            torn[journalName] = journal.left(cut);
            QVERIFY(openWith(torn));
            QCOMPARE(name(), std::string(cut >= third + 10    ? "third"
                                         : cut >= second + 11 ? "second"
                                                              : "first"));
        }
        QCOMPARE(name(), std::string("third"));
    }

    void damageIsKept_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QString>("notice"); // a part of it
        QTest::newRow("cut show") << QStringLiteral("show") << QByteArray("\"format\"")
                                  << QByteArray("\"form") << QStringLiteral("edits made since");
        QTest::newRow("other content") << QStringLiteral("show") << QByteArray("\"name\":\"first\"")
                                       << QByteArray("\"name\":\"worse\"") << QStringLiteral("checksum");
        QTest::newRow("journal line") << QStringLiteral("journal") << QByteArray("third")
                                      << QByteArray("thirt") << QStringLiteral("One edit is missing");
    }

    /// Damage is told and kept, and costs at most the edit that it struck.
    void damageIsKept()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QString, notice);
        QVERIFY(reopenCopy()); // so that there is a generation before
        for (const char* text : {"second", "third", "fourth"})
            QCOMPARE(edit(rename(text)).status, EditResult::Status::Saved);
        Files files = filesOf(m_folder->path());
        const QString damagedName = newest(file);
        QByteArray& damaged = files[damagedName];
        QVERIFY(damaged.contains(from));
        damaged.replace(from, to);
        QVERIFY(openWith(files));
        QCOMPARE(name(), std::string("fourth"));
        QVERIFY2(told().contains(notice), qPrintable(told()));
        QCOMPARE(contentOf(path(damagedName + QStringLiteral(".damaged-1"))), damaged);
        QCOMPARE(edit(rename("fifth")).status, EditResult::Status::Saved);
        QVERIFY(reopenCopy());
        QCOMPARE(name(), std::string("fifth"));
        QCOMPARE(told(), QString());
    }

    /// Any single bit that flips on the disk: the show is the right one or the operator is told, and never
    /// is it a new one.
    void flippedBits()
    {
        for (int generation = 0; generation < 3; ++generation) {
            m_store->changeSetting("/a/properties/b", Json(generation));
            for (int i = 0; i < 3; ++i)
                QCOMPARE(edit(rename("edit " + std::to_string(3 * generation + i))).status,
                         EditResult::Status::Saved);
            QVERIFY(generation == 2 || reopenCopy());
        }
        QCOMPARE(edit(rename("last")).status, EditResult::Status::Saved);
        const Files sound = filesOf(m_folder->path());
        QCOMPARE(sound.size(), std::size_t(6)); // three generations
        const QStringList names{newest(QStringLiteral("show")), newest(QStringLiteral("journal"))};
        std::mt19937 random(20240607);
        int silent = 0;
        for (int round = 0; round < 200; ++round) {
            Files files = sound;
            QByteArray& text = files[names[round % 2]];
            const qsizetype at = qsizetype(random() % unsigned(text.size()));
            text[at] = char(text[at] ^ (1 << random() % 8));
            QVERIFY(openWith(files));
            const std::string shown = name() + m_store->settings().get("/a/properties/b").asString();
            const auto where = QStringLiteral("byte %1 of %2: %3").arg(at).arg(names[round % 2], told());
            QVERIFY2(name() != "first", qPrintable(where));
            QVERIFY2(shown == "last2" || told().contains(QStringLiteral("missing")), qPrintable(where));
            silent += told().isEmpty();
            if (round % 2 == 0)
                QVERIFY2(shown == "last2", qPrintable(where)); // the journals lead to the same show
        }
        QVERIFY2(silent < 10, qPrintable(QString::number(silent))); // empty lines, and the case of a checksum
    }

    /// The files of earlier servers: no number in their names, no checksum of the snapshot.
    void oldFiles_data()
    {
        QTest::addColumn<int>("generation"); // of the journal; that of the show is 7
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("journal of the show") << 7 << QByteArray("edited");
        QTest::newRow("journal from before") << 6 << QByteArray("kept"); // its edits are in the snapshot
    }

    void oldFiles()
    {
        QFETCH(int, generation);
        QFETCH(QByteArray, name);
        const QByteArray show = R"({"format":1,"generation":7,"settings":{},"library":)"
                                R"({"collections":{"1":{"name":"kept","slots":{}}},"playlists":{}}})";
        const Json edit = Json::object({{"library", rename("edited").toJson()}});
        const QByteArray journal = QByteArray::fromStdString(
            encodeJournalLine(Json::object({{"generation", generation}})) + encodeJournalLine(edit));
        QVERIFY(openWith({{QStringLiteral("show.json"), show}, {QStringLiteral("journal.ndjson"), journal}}));
        QCOMPARE(this->name(), name.toStdString());
        QCOMPARE(told(), QString());
        QVERIFY(reopenCopy());
        QCOMPARE(this->name(), name.toStdString());
    }

    void nothingSoundIsLeft()
    {
        QVERIFY(openWith({{QStringLiteral("show.json"), "{"}}));
        QCOMPARE(name(), std::string("first"));
        QVERIFY2(told().contains(QStringLiteral("new show")), qPrintable(told()));
        QCOMPARE(contentOf(path("show.json.damaged-1")), QByteArray("{"));
    }

    /// When the disk takes no more, the edit and those made on top of it are refused and forgotten. Later
    /// ones work again, and the settings that waited are saved with the first of them.
    void goesBackWhenTheDiskIsFull()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
        rlimit tight = old;
        tight.rlim_cur = static_cast<rlim_t>(contentOf(path(newest(QStringLiteral("journal")))).size()) + 30;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &tight), 0);
        std::vector<EditResult::Status> results;
        m_store->changeSetting("/a/properties/b", Json(0.5)); // goes out with the first answer at the latest
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
        QVERIFY(waitFor(
            [&] { return contentOf(path(newest(QStringLiteral("journal")))).contains("/a/properties/b"); }));
        QVERIFY(reopenCopy());
        QCOMPARE(name(), std::string("fourth"));
    }

    /// Started on a disk that takes nothing: the show is there, edits are refused with a sentence, settings
    /// wait, and all goes on by itself when the disk takes something again.
    void startsOnAFullDisk()
    {
        QCOMPARE(edit(rename("second")).status, EditResult::Status::Saved);
        const Files files = filesOf(m_folder->path());
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
        m_store.reset();
        rlimit tight = old;
        tight.rlim_cur = 0;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &tight), 0);
        const bool opened = open();
        std::string trouble;
        EditResult refused;
        if (opened) {
            m_store->setTroubleListener([&](const std::string& sentence) { trouble = sentence; });
            refused = edit(rename("third"));
            m_store->changeSetting("/a/properties/b", Json(0.5));
        }
        const std::string told = trouble;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &old), 0);
        QVERIFY(opened);
        QCOMPARE(name(), std::string("second"));
        QCOMPARE(refused.status, EditResult::Status::NotSaved);
        QVERIFY2(refused.message.find("cannot write to its disk") != std::string::npos,
                 refused.message.c_str());
        QVERIFY2(told.find("edits are refused") != std::string::npos, told.c_str());
        QCOMPARE(filesOf(m_folder->path()), files); // and nothing half done
        QVERIFY(waitFor([&] { return trouble.empty(); }));
        QVERIFY(reopenCopy());
        QCOMPARE(name(), std::string("second"));
        QCOMPARE(m_store->settings().get("/a/properties/b").asDouble(), 0.5);
        QCOMPARE(edit(rename("third")).status, EditResult::Status::Saved);
    }

    /// The same in a folder, or on a disk, that may only be read.
    void startsWhereItMayOnlyRead()
    {
        QCOMPARE(edit(rename("second")).status, EditResult::Status::Saved);
        const Files files = filesOf(m_folder->path());
        m_store.reset();
        bool opened = false;
        std::string trouble;
        EditResult refused;
        {
            const NoRights none(m_folder->path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                                      QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
            opened = open();
            if (opened) {
                m_store->setTroubleListener([&](const std::string& sentence) { trouble = sentence; });
                refused = edit(rename("third"));
            }
        }
        QVERIFY(opened);
        QCOMPARE(name(), std::string("second"));
        QCOMPARE(refused.status, EditResult::Status::NotSaved);
        QCOMPARE(filesOf(m_folder->path()), files);
        QVERIFY(waitFor([&] { return trouble.empty(); }));
        QCOMPARE(edit(rename("third")).status, EditResult::Status::Saved);
    }

    void refusesAFolderThatCannotBeRead()
    {
        const Files files = filesOf(m_folder->path());
        m_store.reset();
        {
            const NoRights none(m_folder->path());
            QVERIFY(!open());
        }
        QCOMPARE(filesOf(m_folder->path()), files);
        QVERIFY(open());
    }

    /// A disk that is mounted too late: its show is not that of this server, and stays as it is.
    void leavesAShowAloneThatCameLater()
    {
        QCOMPARE(edit(rename("second")).status, EditResult::Status::Saved);
        const Files files = filesOf(m_folder->path());
        m_store.reset();
        const QTemporaryDir parent;
        const QString folder = parent.filePath(QStringLiteral("state"));
        {
            const NoRights none(parent.path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                                   QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
            QVERIFY(open(folder));
        }
        QVERIFY(QDir().mkpath(folder));
        for (const auto& [name, content] : files)
            writeFile(folder + u'/' + name, content);
        const EditResult refused = edit(rename("third"));
        QCOMPARE(refused.status, EditResult::Status::NotSaved);
        QVERIFY2(refused.message.find("restart the server") != std::string::npos, refused.message.c_str());
        m_store.reset();
        QCOMPARE(filesOf(folder), files);
        QVERIFY(open(folder));
        QCOMPARE(name(), std::string("second"));
        m_store.reset(); // before its folder
    }

    void oneServerAFolder()
    {
        ShowStore other(m_io, m_folder->path().toStdString());
        std::string error;
        QVERIFY(!other.open([] { return MediaLibrary(); }, &error));
        QVERIFY2(error.find("another server") != std::string::npos, error.c_str());
    }

    /// What a server that was killed had just forked has its lock until it is another program.
    void theNextServerWaitsForAChild()
    {
        m_store.reset();
        const QByteArray path = m_folder->filePath(QStringLiteral("lock")).toUtf8();
        const int file = ::open(path.constData(), O_RDWR | O_CLOEXEC);
        QVERIFY(file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0);
        bool waited = false;
        Log::setSink([&](LogLevel, const LogLoc&, std::string_view, std::string_view message) {
            if (!waited && message.starts_with("waits for the state folder"))
                waited = ::close(file) == 0;
        });
        const bool isOpen = open(m_folder->path());
        Log::setSink({});
        QVERIFY(waited && isOpen);
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
        QVERIFY(contentOf(path(newest(QStringLiteral("journal")))).size() < 1'000'000);
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

    bool open() { return open(m_folder->path()); }
    bool open(const QString& folder)
    {
        m_store = std::make_unique<ShowStore>(m_io, folder.toStdString());
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
    bool reopenCopy() { return openWith(filesOf(m_folder->path())); }

    bool openWith(const Files& files)
    {
        m_store.reset();
        m_folder = std::make_unique<QTemporaryDir>();
        for (const auto& [name, content] : files)
            writeFile(path(name), content);
        return open();
    }

    /// The name of the newest snapshot ("show") or journal.
    QString newest(const QString& kind) const
    {
        const QDir folder(m_folder->path());
        return folder.entryList({kind + QStringLiteral("-*json")}, QDir::Files, QDir::Name).constLast();
    }
    QString told() const { return QString::fromStdString(m_store->loadNotice()); }

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
