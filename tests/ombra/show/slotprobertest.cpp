#include "ombra/show/slotprober.h"

#include "tarn/media/medialibrary.h"
#include "tests/ombra/linkpeer.h"
#include "tests/ombra/liveserver.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <csignal>
#include <sys/resource.h>

using namespace vantrel;
using namespace vantrel::ombra::test;

namespace {

QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

QByteArray addition(const QByteArray& path, const QByteArray& value)
{
    return json("[{'op':'add','path':'" + path + "','value':" + value + "}]");
}

} // namespace

/// A live server that learns what the media of its slots are.
class SlotProberTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksAtWhatAnEditBrings_data()
    {
        QTest::addColumn<QByteArray>("edit");
        QTest::addColumn<bool>("known");
        const auto row = [](const char* name, const char* path, QByteArray value, const char* file) {
            value.replace("FILE", file);
            QTest::newRow(name) << addition(path, value) << (qstrcmp(file, "none.png") != 0);
        };
        const QByteArray slot = "{'name':'a','contentUrl':'file:///FILE'}";
        const QByteArray collections = "{'1':{'name':'C','slots':{'1':" + slot + "}}}";
        row("a slot", "/collections/1/slots/1", slot, "logo.png");
        row("a slot without its file", "/collections/1/slots/1", slot, "none.png");
        row("a collection", "/collections/1", "{'name':'C','slots':{'1':" + slot + "}}", "logo.png");
        row("all collections", "/collections", collections, "logo.png");
        row("other media", "/collections/1/slots/2/contentUrl", "'file:///FILE'", "logo.png");
    }

    void looksAtWhatAnEditBrings()
    {
        QFETCH(QByteArray, edit);
        QFETCH(bool, known);
        LiveServer live;
        QVERIFY(live.start());
        QImage picture(32, 18, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(live.mediaFolder() + QStringLiteral("/logo.png")));
        const QByteArray before = "{'collections':{'1':{'name':'one','slots':{'2':{'name':'b',"
                                  "'contentUrl':'file:///b.mp4','type':'videoFile'}}}},'playlists':{}}";
        QCOMPARE(live.request("POST", "/medialibrary", json(before)).status, 200);
        const int status = live.request("PATCH", "/medialibrary", edit).status;
        QVERIFY2(status == 200 || status == 204, qPrintable(QString::number(status)));
        // A second one, whose file is there, shows that the first was looked at.
        live.request("PATCH", "/medialibrary",
                     addition("/collections/1/slots/9", "{'name':'z','contentUrl':'file:///logo.png'}"));
        const auto stills = [&] { return live.request("GET", "/collections").body.count("imageFile"); };
        QVERIFY(live.waitFor([&] { return stills() == (known ? 2 : 1); }));
    }

    /// What the slot says follows its file, and a first look at what was missing before the server started.
    void followsTheFile()
    {
        LiveServer live;
        QVERIFY(live.start());
        const QString logo = live.mediaFolder() + QStringLiteral("/logo.png");
        const QString aside = live.mediaFolder() + QStringLiteral("/../logo.png");
        const auto says = [&](const QByteArray& member) {
            return live.waitFor([&] { return live.request("GET", "/collections").body.contains(member); });
        };
        const QByteArray library =
            "{'collections':{'1':{'name':'one','slots':{'1':{'name':'a','type':'imageFile',"
            "'contentUrl':'file:///logo.png'}}}},'playlists':{}}";
        QCOMPARE(live.request("POST", "/medialibrary", json(library)).status, 200);
        const QByteArray playable = R"("isPlayable":true)", missing = R"("isPlayable":false)";
        QVERIFY(says(missing)); // never was
        QImage picture(32, 18, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(logo) && says(playable));
        QVERIFY(QFile::rename(logo, aside) && says(missing));
        QVERIFY(live.request("GET", "/collections").body.contains("imageFile"));
        QVERIFY(QFile::link(QStringLiteral("../logo.png"), logo)); // leads out of the folder
        QVERIFY(says(missing));
        QVERIFY(QFile::remove(logo) && QFile::rename(aside, logo) && says(playable));
        live.stop();
        QVERIFY(QFile::remove(logo) && live.start() && says(missing));
        live.stop(); // and a disk that is mounted late
        QVERIFY(QDir(live.mediaFolder()).removeRecursively() && live.start(false) && says(missing));
        LinkPeer peer(live.server().linkPort());
        peer.send("[{\"op\":\"get\",\"path\":\"\"}]");
        const auto notice = [&] {
            peer.read();
            return peer.value("/device/system/properties/notice");
        };
        QVERIFY(live.waitFor([&] { return notice().find("is not there") != std::string::npos; }));
        QVERIFY(QDir().mkpath(live.mediaFolder()) && picture.save(logo) && says(playable));
        QVERIFY(live.waitFor([&] { return notice().empty(); }));
    }

    /// A file that comes while the disk takes no edits is known once it does.
    /// What is found of very many slots is no edit of its own length, behind which the pictures would wait.
    void savesInPieces()
    {
        LiveServer live;
        QVERIFY(live.start());
        constexpr int slots_ = 1000;
        QByteArray collection = "{'name':'C','slots':{";
        for (int i = 1; i <= slots_; ++i)
            collection +=
                (i > 1 ? ",'" : "'") + QByteArray::number(i) + "':{'contentUrl':'file:///none.png'}";
        const auto revision = [&] {
            return live.request("GET", "/medialibrary").tag.mid(1).chopped(1).toLongLong();
        };
        const qint64 before = revision();
        QCOMPARE(live.request("PATCH", "/medialibrary", addition("/collections/1", collection + "}}")).status,
                 200);
        QVERIFY(live.waitFor([&] {
            return live.request("GET", "/collections").body.count(R"("isPlayable":false)") == slots_;
        }));
        QVERIFY2(revision() - before > 5, qPrintable(QString::number(revision() - before)));
    }

    void remembersWhatCouldNotBeSaved()
    {
        LiveServer live;
        QVERIFY(live.start());
        LinkPeer peer(live.server().linkPort());
        peer.send("[{\"op\":\"get\",\"path\":\"\"}]");
        const QByteArray library = "{'collections':{'1':{'name':'one','slots':{'1':{'name':'a',"
                                   "'contentUrl':'file:///logo.png'}}}},'playlists':{}}";
        QCOMPARE(live.request("POST", "/medialibrary", json(library)).status, 200);
        QImage picture(32, 18, QImage::Format_RGB32);
        picture.fill(Qt::red);
        const QString ready = live.mediaFolder() + QStringLiteral("/../logo.png");
        QVERIFY(picture.save(ready));

        std::signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
        rlimit tight = old;
        tight.rlim_cur = 0;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &tight), 0);
        const bool moved = QFile::rename(ready, live.mediaFolder() + QStringLiteral("/logo.png"));
        const bool refused = live.waitFor([&] {
            peer.read();
            return peer.value("/device/system/properties/notice").find("disk") != std::string::npos;
        });
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &old), 0);
        QVERIFY(moved && refused);
        QVERIFY(live.waitFor([&] { return live.request("GET", "/collections").body.contains("imageFile"); }));
    }
};

HALCYRA_TEST(SlotProberTest)
#include "slotprobertest.moc"
