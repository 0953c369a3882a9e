#include "ombra/show/showfile.h"
#include "ombra/show/showfolder.h"
#include "tests/ombra/linkpeer.h"
#include "tests/ombra/liveserver.h"
#include "tests/support/testmain.h"

#include <QFile>

#include <algorithm>
#include <array>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::ombra::test;

namespace {

QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

} // namespace

/// When shows are kept and taken over: by the hour, and two in the same moment.
class ShowMomentsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A clock that was set back, or begins in 1970 at each start, takes no copy that was just made.
    void keepsTheNewestCopyWhateverTheClockSays()
    {
        const QTemporaryDir folder;
        const std::string show =
            showfile::textOf(showfile::make(MediaLibrary().toJson(), Json::object(), Json::array()));
        QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("earlier")));
        const auto put = [&](const QString& id) {
            QFile file(folder.filePath(QStringLiteral("earlier/%1.show").arg(id)));
            return file.open(QIODevice::WriteOnly) && file.write(show.c_str()) > 0;
        };
        QVERIFY(put(QStringLiteral("7000000-clear"))); // of 1970, and the oldest
        for (int i = 10; i < 29; ++i)                  // of the year 2065
            QVERIFY(put(QStringLiteral("30000000000000%1-hour").arg(i)));
        ShowFolder shows(folder.path().toStdString());
        std::string why;
        for (const char* before : {"import", "revert"})
            QVERIFY2(shows.keepCopy(before, show, &why), why.c_str());
        const auto copies = shows.copies(Json::object());
        QCOMPARE(copies.size(), ShowFolder::keptCopies);
        QCOMPARE(copies[0].name, std::string("revert"));
        QCOMPARE(copies[1].name, std::string("import"));
        QCOMPARE(copies.back().id, std::string("3000000000000011-hour"));
        QVERIFY(shows.readCopy(copies[0].id, &why));
    }

    /// A copy each hour in which somebody worked on the show.
    void keepsACopyEachHour()
    {
        LiveServer live;
        live.setHour(std::chrono::milliseconds(1));
        QVERIFY(live.start());
        const auto keeps = [&](std::size_t copies) {
            return live.waitFor([&] {
                Json answer;
                Json::parseString(live.request("GET", "/shows/earlier").body.toStdString(), answer);
                const Json states = answer.get("states");
                return states.size() == copies &&
                       (copies == 0 || states.at(0)->get("before").asString() == "hour");
            });
        };
        const auto rename = [&](const QByteArray& name) {
            const QByteArray edit = "[{'op':'add','path':'/collections/7','value':{'name':'" + name + "'}}]";
            QCOMPARE(live.request("PATCH", "/medialibrary", json(edit)).status, 200);
        };
        QVERIFY(keeps(1)); // and no other, however many hours go by in which nothing is done
        rename("a");
        QVERIFY(keeps(2));
        rename("b");
        QVERIFY(keeps(3));
    }

    /// A show that is saved over by nothing, or by another one, is not lost.
    void whatIsSavedOverStays()
    {
        LiveServer live;
        QVERIFY(live.start());
        LinkPeer peer(live.server().linkPort());
        peer.send("[{\"op\":\"get\",\"path\":\"\"}]");
        const auto show = [&](const std::string& method, const std::string& name) {
            peer.send("[{\"op\":\"invoke\",\"path\":\"/device/showConfiguration/methods/" + method +
                      "\",\"value\":{\"showName\":\"" + name + "\"}}]");
        };
        const auto keeps = [&](std::size_t copies, const char* before) {
            return live.waitFor([&] {
                Json answer;
                Json::parseString(live.request("GET", "/shows/earlier").body.toStdString(), answer);
                const Json states = answer.get("states");
                return states.size() == copies && states.at(0)->get("before").asString() == before &&
                       states.at(0)->get("contents").get("collections").asInt() > 0;
            });
        };
        const QByteArray edit = "[{'op':'add','path':'/collections/7','value':{'name':'a'}}]";
        QCOMPARE(live.request("PATCH", "/medialibrary", json(edit)).status, 200);
        show("saveShow", "gala");
        show("saveShow", "gala");
        show("clearShow", "default");
        QVERIFY(keeps(1, "clear"));
        show("saveShow", "default"); // which goes by the name "gala" still
        QVERIFY(keeps(2, "save"));
        QVERIFY(live.waitFor([&] {
            peer.read();
            return peer.value("/device/system/properties/notice").find("\"gala\" was saved without") !=
                   std::string::npos;
        }));
    }

    /// One that is killed right behind its line of the journal starts with nothing of the show.
    void aClearIsWhole()
    {
        LiveServer live;
        QVERIFY(live.start());
        const auto has = [&](const char* text) {
            return live.waitFor([&] { return live.request("GET", "/show/current").body.contains(text); });
        };
        const QByteArray show = "{'format':'halcyra-show','version':1,'library':{'collections':{'7':{}}},"
                                "'settings':{'/device/channels/0/program/properties/volume':0.25}}";
        QCOMPARE(live.request("POST", "/show/current", json(show)).status, 200);
        LinkPeer peer(live.server().linkPort());
        peer.send(R"([{"op":"invoke","path":"/device/showConfiguration/methods/clearShow",)"
                  R"("value":{"showName":"default"}}])");
        QVERIFY(has("program/properties/volume\":1.0"));
        live.stop();
        const QDir state(live.stateFolder(), QStringLiteral("journal-*.ndjson"));
        QFile journal(state.filePath(state.entryList().value(0)));
        QVERIFY(journal.open(QIODevice::ReadWrite));
        const QByteArray lines = journal.readAll();
        const qsizetype cleared = lines.indexOf("\"remove\",\"path\":\"/collections/7\"");
        QVERIFY(cleared > 0 && journal.resize(lines.indexOf('\n', cleared) + 1));
        journal.close();
        QVERIFY(live.start());
        QVERIFY(has("program/properties/volume\":1.0"));
    }

    /// Two windows may do it in the same moment: both are told, and what is on then is one of the two shows.
    void importsOfOneMomentAreWhole()
    {
        LiveServer live;
        QVERIFY(live.start());
        const auto show = [](const char* name, const char* volume) {
            const QByteArray library = "{'collections':{'1':{'name':'" + QByteArray(name) + "'}}}";
            const QByteArray settings =
                "{'/device/channels/0/program/properties/volume':" + QByteArray(volume) +
                ",'/device/channels/0/preview/properties/volume':" + volume + "}";
            return json("{'format':'halcyra-show','version':1,'library':" + library +
                        ",'settings':" + settings + "}");
        };
        const std::array shows{show("red", "0.75"), show("blue", "0.5")};
        std::array<QByteArray, 2> alone;
        for (std::size_t i : {0U, 1U}) {
            QCOMPARE(live.request("POST", "/show/current", shows[i]).status, 200);
            alone[i] = live.request("GET", "/show/current").body;
        }
        for (int round = 0; round < 20; ++round) {
            std::array<QTcpSocket, 2> windows;
            for (std::size_t i : {0U, 1U}) {
                const std::size_t which = round % 2 == 0 ? i : 1 - i;
                windows[i].connectToHost(QStringLiteral("127.0.0.1"), live.server().httpPort());
                windows[i].write(
                    "POST /api/brume/v1/show/current HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
                    "application/json\r\nConnection: close\r\nContent-Length: " +
                    QByteArray::number(shows[which].size()) + "\r\n\r\n" + shows[which]);
            }
            QVERIFY(live.waitFor([&] {
                return std::ranges::all_of(windows, [](const QTcpSocket& window) {
                    return window.state() == QAbstractSocket::UnconnectedState;
                });
            }));
            for (QTcpSocket& window : windows)
                QCOMPARE(window.readAll().left(12), QByteArray("HTTP/1.1 200"));
            const QByteArray now = live.request("GET", "/show/current").body;
            QVERIFY2(now == alone[0] || now == alone[1], now.constData());
        }
    }
};

HALCYRA_TEST(ShowMomentsTest)
#include "showmomentstest.moc"
