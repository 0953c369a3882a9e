#include "tarn/json/json.h"
#include "tests/ombra/show/showoperator.h"
#include "tests/support/testmain.h"
#include "tests/support/testmedia.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cmath>
#include <csignal>
#include <sys/resource.h>

using namespace vantrel;
using namespace vantrel::ombra::test;

namespace {

const QByteArray media = "brume://collections/1/slots/1";

} // namespace

/// Shows as the operator handles them: what lasts, what is saved and taken back, what is cleared.
class ServerShowTest : public ShowOperator
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_live = std::make_unique<LiveServer>();
        QVERIFY(m_live->start());
        connectPeer();
        const QByteArray library = R"({"collections":{"1":{"name":"one","slots":{}}},"playlists":{}})";
        QCOMPARE(m_live->request("POST", "/medialibrary", library).status, 200);
        write(program + "/properties/volume", "0.25");
        write(program + "/properties/media", "\"" + media.toStdString() + "\"");
        write("/device/channels/0/mappings/0/properties/backgroundColor", "\"#112233\"");
        QVERIFY(settled());
    }

    void settingsLast()
    {
        m_peer.reset();
        m_live->stop();
        QVERIFY(m_live->start());
        connectPeer();
        QCOMPARE(value(program + "/properties/volume"), std::string("0.25"));
        QCOMPARE(value(program + "/properties/media"), media.toStdString());
        QCOMPARE(value("/device/channels/0/mappings/0/properties/backgroundColor"), std::string("#112233"));
        QCOMPARE(value(program + "/properties/state"), std::string("stop"));
    }

    /// The EDID and the mode of an output last; a mode that the audience sees does once somebody has kept it.
    void modesLastOnceTheyAreKept()
    {
        const std::string outputs = "/device/system/gpus/0/outputs/";
        const std::string edid = value(outputs + "0/properties/edid");
        invoke(outputs + "0/methods/setEdidOverride",
               R"({"edid":")" + edid + R"(","filename":"own.bin","modelineId":"1280x720p60"})");
        invoke(outputs + "1/methods/selectModeline", R"({"modelineId":"3840x2160p50"})");
        invoke(outputs + "1/methods/keepMode", "{}");
        invoke(outputs + "1/methods/selectModeline", R"({"modelineId":"1280x720p50"})");
        QVERIFY(m_live->waitFor([&] {
            m_peer->read();
            return value(outputs + "1/properties/height") == "720";
        }));
        QVERIFY(settled());
        m_peer.reset();
        m_live->stop();
        QVERIFY(m_live->start());
        connectPeer();
        QCOMPARE(value(outputs + "0/properties/edidOverride"), edid);
        QCOMPARE(value(outputs + "0/properties/edidOverrideFilename"), std::string("own.bin"));
        QCOMPARE(value(outputs + "0/properties/modelineId"), std::string("1280x720p60"));
        QCOMPARE(value(outputs + "1/properties/modelineId"), std::string("3840x2160p50"));
        QCOMPARE(value(outputs + "1/properties/confirmSeconds"), std::string("0"));
    }

    /// A show has the mode before one that waits to be kept; one that is loaded or cleared meanwhile holds.
    void showsMeetAModeThatWaits()
    {
        const std::string wall = "/device/system/gpus/0/outputs/1";
        const std::string mode = wall + "/properties/modelineId";
        const std::string seconds = wall + "/properties/confirmSeconds";
        const std::string usual = value(mode);
        const auto becomes = [&](const std::string& id, bool waits) {
            return m_live->waitFor([&] {
                m_peer->read();
                return value(mode) == id && (value(seconds) != "0") == waits;
            });
        };
        const std::string select = wall + "/methods/selectModeline";
        invoke(select, R"({"modelineId":"1280x720p50"})");
        QVERIFY(becomes("1280x720p50", true));
        Json show;
        QVERIFY(Json::parseString(m_live->request("GET", "/show/current").body.toStdString(), show));
        QCOMPARE(QByteArray::fromStdString(show.get("settings").get(mode).asString()),
                 QByteArray::fromStdString(usual));
        Json settings = show.get("settings");
        settings.set(mode, "1920x1080p60");
        show.set("settings", settings);
        const QByteArray file = QByteArray::fromStdString(show.toString());
        QCOMPARE(m_live->request("POST", "/show/current?force", file).status, 200);
        QVERIFY(becomes("1920x1080p60", false));
        invoke(select, R"({"modelineId":"1280x720p50"})");
        QVERIFY(becomes("1280x720p50", true));
        invoke(configuration + "/methods/clearShow", R"({"showName":"default"})");
        QVERIFY(becomes(usual, false));
    }

    void restartsAsItWas_data()
    {
        QTest::addColumn<QString>("state");
        for (const char* state : {"play", "pause", "stop"})
            QTest::newRow(state) << QString::fromLatin1(state);
    }

    /// Whoever connects after a restart finds the same media in the same state, where they stood.
    void restartsAsItWas()
    {
        QFETCH(QString, state);
        QVERIFY(vantrel::test::makeClip(m_live->mediaFolder() + QStringLiteral("/clip.mp4"),
                                        {Qt::red, Qt::green, Qt::blue, Qt::white}, 30));
        const QByteArray library = R"({"collections":{"1":{"name":"one","slots":{"1":{"name":"clip",)"
                                   R"("contentUrl":"file:///clip.mp4"}}}},"playlists":{}})";
        QCOMPARE(m_live->request("POST", "/medialibrary", library).status, 200);
        invoke(program + "/methods/playMedia", "{\"mediaUrl\":\"" + media.toStdString() + "\"}");
        QVERIFY(waitForState("play"));
        const bool stands = state != QStringLiteral("stop");
        if (stands) {
            invoke(program + "/methods/seekMedia", "{\"mediaPosition\":20}");
            write(program + "/properties/state", "\"" + state.toStdString() + "\"");
            const double far = state == QStringLiteral("play") ? 22 : 20; // it is looked at each second
            QVERIFY(m_live->waitFor([&] {
                m_peer->read();
                return position() >= far;
            }));
        }
        if (state == QStringLiteral("stop"))
            write(program + "/properties/state", "\"stop\"");
        QVERIFY(settled());
        const double before = position();
        m_peer.reset();
        m_live->stop();
        QVERIFY(m_live->start());
        connectPeer();
        QCOMPARE(value(program + "/properties/media"), media.toStdString());
        QCOMPARE(value(program + "/properties/state"), state.toStdString());
        const double missed = state == QStringLiteral("play") ? 1.5 : 0.2; // what came while it paused
        QVERIFY(!stands || m_live->waitFor([&] {
            m_peer->read();
            return position() > 0;
        }));
        QVERIFY2(std::abs(position() - before) < missed,
                 qPrintable(QStringLiteral("%1 before, %2 now").arg(before).arg(position())));
        QCOMPARE(value(program + "/properties/state"), state.toStdString());
    }

    /// A medium that is missing at a start plays when it comes, however often the server starts without it.
    void playsWhenItsMediumComes()
    {
        const QString clip = m_live->mediaFolder() + QStringLiteral("/clip.mp4");
        QVERIFY(vantrel::test::makeClip(clip, {Qt::red, Qt::green, Qt::blue, Qt::white}, 30));
        const QByteArray library = R"({"collections":{"1":{"name":"one","slots":{"1":{"name":"clip",)"
                                   R"("contentUrl":"file:///clip.mp4"}}}},"playlists":{}})";
        QCOMPARE(m_live->request("POST", "/medialibrary", library).status, 200);
        invoke(program + "/methods/playMedia", "{\"mediaUrl\":\"" + media.toStdString() + "\"}");
        QVERIFY(waitForState("play"));
        QVERIFY(settled());
        QVERIFY(QFile::rename(clip, clip + QStringLiteral(".away")));
        for (int start = 0; start < 2; ++start) {
            m_peer.reset();
            m_live->stop();
            QVERIFY(m_live->start());
            connectPeer();
            QVERIFY(m_live->waitFor([&] {
                m_peer->read();
                return value(program + "/properties/waitsToPlay") == "true";
            }));
            QVERIFY(waitForState("stop"));
            QVERIFY(m_live->waitFor([&] {
                return m_live->request("GET", "/collections").body.contains("\"isPlayable\":false");
            }));
        }
        QVERIFY(QFile::rename(clip + QStringLiteral(".away"), clip));
        QVERIFY(waitForState("play"));
        QCOMPARE(value(program + "/properties/waitsToPlay"), std::string("false"));
    }

    void savesClearsAndReverts()
    {
        invoke(configuration + "/methods/saveShow", "{\"showName\":\"../my show\"}");
        write(program + "/properties/audioDevice", "\"off\"");
        invoke(configuration + "/methods/clearShow", "{\"showName\":\"default\"}");
        QVERIFY(m_live->waitFor([&] {
            m_peer->read();
            return m_live->request("GET", "/collections").body == "{}" &&
                   value(program + "/properties/volume") == "1";
        }));
        QCOMPARE(value(program + "/properties/media"), std::string());
        QCOMPARE(value("/device/channels/0/mappings/0/properties/backgroundColor"), std::string("#000000"));
        QCOMPARE(value(program + "/properties/audioDevice"),
                 std::string("embedded")); // as on the first start
        QVERIFY(!QFile::exists(m_live->stateFolder() + QStringLiteral("/my show.show"))); // names stay names

        invoke(configuration + "/methods/revertShow", "{\"showName\":\"no such show\"}");
        QVERIFY(settled());
        QCOMPARE(value(program + "/properties/volume"), std::string("1"));
        invoke(configuration + "/methods/revertShow", "{\"showName\":\"../my show\"}");
        QVERIFY(m_live->waitFor([&] {
            m_peer->read();
            return value(program + "/properties/media") == media.toStdString();
        }));
        QCOMPARE(value(program + "/properties/volume"), std::string("0.25"));
        QVERIFY(m_live->request("GET", "/collections").body.contains("one"));
    }

    /// What was asked for and could not be done is told where the operator looks, and nothing is half done.
    void tellsWhatCouldNotBeDone()
    {
        const auto hears = [this](const char* text, bool isThere = true) {
            return m_live->waitFor([&] { return (notice().find(text) != std::string::npos) == isThere; });
        };
        invoke(configuration + "/methods/revertShow", "{\"showName\":\"none\"}");
        QVERIFY(hears("The show \"none\" could not be taken back: no show was saved under that name."));
        invoke(configuration + "/methods/saveShow", "{\"showName\":\"mine\"}");
        QVERIFY(hears("The show", false));
        QFile kept(m_live->stateFolder() + QStringLiteral("/shows/mine.show"));
        QVERIFY(kept.open(QIODevice::ReadOnly));
        const QByteArray show = kept.readAll();
        kept.close();
        const auto revertAs = [&](const char* was, const char* is) {
            QByteArray other = show;
            other.replace(was, is);
            if (other == show || !kept.open(QIODevice::WriteOnly) || kept.write(other) < 0)
                return false;
            kept.close();
            invoke(configuration + "/methods/revertShow", "{\"showName\":\"mine\"}");
            return true;
        };
        QVERIFY(revertAs("\"version\":1", "\"version\":7"));
        QVERIFY(hears("The show \"mine\" could not be taken back: the show is of version 7"));
        QVERIFY(revertAs("\"slots\":{}", "\"slots\":{\"1\":{\"contentUrl\":\"file:///gone.mp4\"}}"));
        QVERIFY(hears("The show \"mine\" is on. One of the show's media is not on this server: gone.mp4."));
        QVERIFY(revertAs("\"name\":\"one\"", "\"name\":\"one \""));
        QVERIFY(hears("The show", false));
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
        rlimit tight = old;
        tight.rlim_cur = 0;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &tight), 0);
        invoke(configuration + "/methods/saveShow", "{\"showName\":\"more\"}");
        const bool isSaveTold = hears("The show could not be saved as \"more\"");
        invoke(configuration + "/methods/clearShow", "{\"showName\":\"default\"}");
        const bool isClearTold = hears("The show could not be cleared");
        const auto import = m_live->request(
            "POST", "/show/current", R"({"format":"halcyra-show","version":1,"library":{},"settings":{}})");
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &old), 0);
        QVERIFY(isSaveTold && isClearTold);
        QCOMPARE(import.status, 507);
        QVERIFY2(import.body.contains("Nothing was changed.\""), import.body.constData());
        QCOMPARE(value(program + "/properties/media"), media.toStdString());
        QCOMPARE(value(program + "/properties/volume"), std::string("0.25"));
        QVERIFY(m_live->request("GET", "/collections").body.contains("one"));
    }

    /// What can be saved can be taken back, also where it is more than a request may hold.
    void largeShowsComeBack()
    {
        QByteArray records; // 2 MB
        for (int i = 1; i <= 200; ++i)
            records += (i > 1 ? ",\"" : "\"") + QByteArray::number(i) + "\":{\"name\":\"" +
                       QByteArray(10'000, 'x') + "\"}";
        QByteArray patch =
            R"([{"op":"add","path":"/collections/2","value":{"name":"","slots":{)" + records + "}}}";
        for (int i = 3; i <= 36; ++i) // 70 MB
            patch += ",{\"op\":\"copy\",\"from\":\"/collections/2\",\"path\":\"/collections/" +
                     QByteArray::number(i) + "\"}";
        QCOMPARE(m_live->request("PATCH", "/medialibrary", patch + ']').status, 200);
        invoke(configuration + "/methods/saveShow", "{\"showName\":\"large\"}");
        write(program + "/properties/volume", "0.5");
        QVERIFY(settled());
        invoke(configuration + "/methods/revertShow", "{\"showName\":\"large\"}");
        QVERIFY(m_live->waitFor([&] {
            m_peer->read();
            return value(program + "/properties/volume") == "0.25";
        }));
        QVERIFY2(notice().find("The show") == std::string::npos, notice().c_str());
    }

    /// What is on goes by a name, is compared with what was saved, and comes back from the list and from what
    /// was kept before each change.
    void keepsShowsAndEarlierStates()
    {
        const std::string name = configuration + "/properties/showName";
        const std::string modified = configuration + "/properties/showModified";
        const auto is = [&](const std::string& show, const std::string& differs) {
            return m_live->waitFor([&] {
                m_peer->read();
                return value(name) == show && value(modified) == differs;
            });
        };
        const auto json = [this](const QByteArray& path) {
            Json answer;
            Json::parseString(m_live->request("GET", path).body.toStdString(), answer);
            return answer;
        };
        QVERIFY(is("default", "true"));
        invoke(configuration + "/methods/saveShow", "{\"showName\":\"gala\"}");
        QVERIFY(is("gala", "false"));
        write(program + "/properties/volume", "0.5");
        QVERIFY(is("gala", "true"));
        write(program + "/properties/volume", "0.25");
        QVERIFY(is("gala", "false"));
        write(program + "/properties/media", "\"\""); // no work on the show
        QVERIFY(settled() && is("gala", "false"));
        for (const QByteArray place : {"/venue", "/collections/1/colour"}) { // of a later version
            const QByteArray rest = ",\"value\":1,\"path\":\"" + place + "\"}]";
            QCOMPARE(m_live->request("PATCH", "/medialibrary", "[{\"op\":\"add\"" + rest).status, 200);
            QVERIFY(is("gala", "true"));
            QCOMPARE(m_live->request("PATCH", "/medialibrary", "[{\"op\":\"remove\"" + rest).status, 200);
            QVERIFY(is("gala", "false"));
        }
        m_peer.reset();
        m_live->stop();
        QVERIFY(m_live->start());
        connectPeer();
        QVERIFY(is("gala", "false"));

        QCOMPARE(
            m_live->request("PATCH", "/medialibrary", R"([{"op":"remove","path":"/collections/1"}])").status,
            200);
        QVERIFY(is("gala", "true"));
        invoke(configuration + "/methods/saveShow", "{\"showName\":\"empty\"}");
        QVERIFY(is("empty", "false"));
        const Json shows = json("/shows");
        QCOMPARE(shows.get("current").asString(), std::string("empty"));
        QCOMPARE(shows.get("shows").size(), std::size_t(2));
        QCOMPARE(shows.get("shows").at(1)->get("name").asString(), std::string("gala"));
        QCOMPARE(shows.get("shows").at(1)->get("contents").get("collections").asInt(), 1);

        QCOMPARE(m_live->request("POST", "/shows/load?show=none", "{}").status, 404);
        QCOMPARE(m_live->request("POST", "/shows/load?show=gala", "{}").status, 200);
        QVERIFY(is("gala", "false"));
        QVERIFY(m_live->request("GET", "/collections").body.contains("one"));
        const Json states = json("/shows/earlier").get("states");
        QCOMPARE(states.size(), std::size_t(1));
        QCOMPARE(states.at(0)->get("before").asString(), std::string("revert"));
        QCOMPARE(states.at(0)->get("difference").get("collections").get("removed").asInt(), 1);
        const QByteArray id = QByteArray::fromStdString(states.at(0)->get("id").asString());
        QCOMPARE(m_live->request("POST", "/shows/earlier?state=../shows/gala", "{}").status, 404);
        QCOMPARE(m_live->request("POST", "/shows/earlier?state=" + id, "{}").status, 200);
        QVERIFY(is("gala", "true"));
        QCOMPARE(m_live->request("GET", "/collections").body, QByteArray("{}"));
        QCOMPARE(m_live->request("DELETE", "/shows?show=empty").status, 200);
        QCOMPARE(m_live->request("DELETE", "/shows?show=empty").status, 404);
        QCOMPARE(json("/shows").get("shows").size(), std::size_t(1));
        for (int i = 0; i < 25; ++i) {
            write(program + "/properties/volume", std::to_string(0.01 * (i + 1)));
            invoke(configuration + "/methods/clearShow", "{\"showName\":\"default\"}");
            QVERIFY(m_live->waitFor([&] {
                m_peer->read();
                return value(program + "/properties/volume") == "1";
            }));
        }
        QCOMPARE(json("/shows/earlier").get("states").size(), std::size_t(20));
    }

    /// Each change is saved by itself, but for a clear; a start goes on with the show that is named, in the
    /// state that is named, and loses nothing where that show is on.
    void savesAndStartsByItself()
    {
        using vantrel::test::makeClip;
        QVERIFY(makeClip(m_live->mediaFolder() + QStringLiteral("/clip.mp4"), {Qt::red, Qt::green}, 30));
        const auto patch = [this](const char* body) {
            return m_live->request("PATCH", "/medialibrary", body).status;
        };
        const auto holds = [this](const char* show, const char* text) {
            QFile file(m_live->stateFolder() + QStringLiteral("/shows/%1.show").arg(QLatin1String(show)));
            return file.open(QIODevice::ReadOnly) && file.readAll().contains(text);
        };
        const auto restarts = [this] {
            m_peer.reset();
            m_live->stop();
            if (!m_live->start())
                return false;
            connectPeer();
            return true;
        };
        const auto is = [&](const char* property, const char* text) {
            return m_live->waitFor([&] {
                m_peer->read();
                return value(property) == text;
            });
        };
        const std::string name = configuration + "/properties/showName",
                          state = program + "/properties/state";
        const std::string list = configuration + "/properties/autoStartShowList";
        const char* clip =
            R"([{"op":"add","path":"/collections/1/slots/1","value":{"contentUrl":"file:///clip.mp4"}}])";
        QCOMPARE(patch(clip), 200);
        invoke(program + "/methods/playMedia", "{\"mediaUrl\":\"" + media.toStdString() + "\"}");
        QVERIFY(is(state.c_str(), "play"));
        invoke(configuration + "/methods/saveShow", "{\"showName\":\"gala\"}");
        QVERIFY(is(name.c_str(), "gala"));
        write(configuration + "/properties/autoSave", "true");
        QCOMPARE(patch(R"([{"op":"replace","path":"/collections/1/name","value":"by itself"}])"), 200);
        QVERIFY(m_live->waitFor([&] { return holds("gala", "by itself"); }));
        invoke(configuration + "/methods/clearShow", "{\"showName\":\"default\"}");
        QVERIFY(is((program + "/properties/media").c_str(), ""));
        const QDeadlineTimer longer(1500); // than what an edit waits for
        QVERIFY(m_live->waitFor([&] { return longer.hasExpired() || !holds("gala", "by itself"); }));
        QVERIFY(holds("gala", "by itself"));
        invoke(configuration + "/methods/saveShow", "{\"showName\":\"other\"}");
        QVERIFY(is(name.c_str(), "other"));

        write(configuration + "/properties/autoStartShow", "\"gala\"");
        write(configuration + "/properties/autoStartPlayState", "\"pause\"");
        write(list, "\"gala,other\"");
        QVERIFY(settled() && restarts());
        QVERIFY(is(name.c_str(), "gala") && is(state.c_str(), "pause"));
        QCOMPARE(value(list), std::string("gala,other"));
        QCOMPARE(value(configuration + "/properties/autoStartShow"), std::string("gala")); // and not as saved
        QVERIFY(m_live->request("GET", "/collections").body.contains("by itself"));

        write(configuration + "/properties/autoSave", "false");
        QCOMPARE(patch(R"([{"op":"replace","path":"/collections/1/name","value":"not saved"}])"), 200);
        QVERIFY(settled() && restarts());
        QVERIFY(m_live->request("GET", "/collections").body.contains("not saved"));
        write(configuration + "/properties/autoStartShow", "\"none\"");
        QVERIFY(settled() && restarts());
        QVERIFY(m_live->waitFor(
            [&] { return notice().find("The show \"none\" could not be started with") == 0; }));
        QVERIFY(is(state.c_str(), "pause"));
    }

    /// What is alike in another show is not what was moved there: the place stays, and what is on air plays
    /// on.
    void anotherShowMovesNothing()
    {
        using vantrel::test::makeClip;
        QVERIFY(makeClip(m_live->mediaFolder() + QStringLiteral("/clip.mp4"), {Qt::red, Qt::green}, 30));
        const QByteArray clip = R"({"name":"clip","contentUrl":"file:///clip.mp4"})";
        const QByteArray patch = R"([{"op":"add","path":"/collections/1/slots/1","value":)" + clip + "}]";
        QCOMPARE(m_live->request("PATCH", "/medialibrary", patch).status, 200);
        invoke(program + "/methods/playMedia", "{\"mediaUrl\":\"" + media.toStdString() + "\"}");
        QVERIFY(waitForState("play"));
        const QByteArray show = R"({"format":"halcyra-show","version":1,"settings":{},"library":)"
                                R"({"collections":{"1":{"slots":{"1":{"name":"other"},"5":)" +
                                clip + "}}}}}";
        QCOMPARE(m_live->request("POST", "/show/current?include=medialibrary", show).status, 200);
        QVERIFY(settled());
        QCOMPARE(value(program + "/properties/heldMedia"), std::string("file:///clip.mp4"));
        QCOMPARE(value(program + "/properties/state"), std::string("play"));
    }

    /// What another show has at the place that its program plays comes on air here only with its library.
    void playersAloneTakeNoOtherMedium()
    {
        const auto show = [](const char* file) {
            const QByteArray settings =
                "{'SIDE/media':'" + media + "','SIDE/state':'play','SIDE/volume':0.5}";
            const QByteArray library =
                "{'collections':{'1':{'slots':{'1':{'contentUrl':'file:///" + QByteArray(file) + "'}}}}}";
            QByteArray text =
                "{'format':'halcyra-show','version':1,'settings':" + settings + ",'library':" + library + "}";
            text.replace("SIDE", QByteArray::fromStdString(program + "/properties"));
            return text.replace('\'', '"');
        };
        const char* slot =
            R"([{"op":"add","path":"/collections/1/slots/1","value":{"contentUrl":"file:///a.mp4"}}])";
        QCOMPARE(m_live->request("PATCH", "/medialibrary", slot).status, 200);
        const QByteArray import = "/show/current?include=playback";
        QCOMPARE(m_live->request("POST", import, show("b.mp4")).status, 200);
        QVERIFY(settled());
        QCOMPARE(value(program + "/properties/volume"), std::string("0.5"));
        QCOMPARE(value(program + "/properties/waitsToPlay"), std::string("false"));
        QVERIFY2(notice().find("Program stays as it is: ") != std::string::npos, notice().c_str());
        QCOMPARE(m_live->request("POST", import, show("a.mp4")).status, 200);
        QVERIFY(m_live->waitFor([&] {
            m_peer->read();
            return value(program + "/properties/waitsToPlay") == "true";
        }));
        QVERIFY(notice().find("stays as it is") == std::string::npos);
    }

    void firstVersionLoads()
    {
        QFile sample(QFINDTESTDATA("ombra/show/first.show"));
        QVERIFY(sample.open(QIODevice::ReadOnly));
        QCOMPARE(m_live->request("POST", "/show/current", sample.readAll()).status, 409); // media are missing
        sample.seek(0);
        QCOMPARE(m_live->request("POST", "/show/current?force", sample.readAll()).status, 200);
        Json show;
        QVERIFY(Json::parseString(m_live->request("GET", "/show/current").body.toStdString(), show));
        const Json slot = show.get("library").get("collections").get("7").get("slots").get("2");
        QCOMPARE(slot.get("name").asString(), std::string("Opening film"));
        QCOMPARE(slot.get("inpoint").asDouble(), 1.5);
        const Json entry = show.get("library").get("playlists").get("3").get("entries").get("5.1");
        QCOMPARE(entry.get("slotUrl").asString(), std::string("brume://collections/7/slots/2"));
        QCOMPARE(entry.get("transitionType").asString(), std::string("crossfade"));
        QCOMPARE(show.get("settings").get(program + "/properties/volume").asDouble(), 0.8);
        QCOMPARE(
            show.get("settings").get("/device/channels/0/mappings/0/properties/backgroundColor").asString(),
            std::string("#102030"));
    }

    void badFilesChangeNothing_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("sentence"); // a part of it
        const auto show = [](const QByteArray& version, const QByteArray& library,
                             const QByteArray& settings) {
            return R"({"format":"halcyra-show","version":)" + version + R"(,"library":)" + library +
                   R"(,"settings":)" + settings + '}';
        };
        const QByteArray volume = "\"/device/channels/0/program/properties/volume\":";
        const QByteArray quieter = '{' + volume + "0.125}"; // what must not come through beside what is bad
        QByteArray many = quieter.chopped(1);
        for (int i = 0; i < 10'000; ++i)
            many += ",\"/" + QByteArray::number(i) + "\":1";
        QTest::newRow("nothing") << QByteArray() << 400 << QByteArray("no show file");
        QTest::newRow("cut") << show("1", "{}", quieter).chopped(1) << 400 << QByteArray("no show file");
        QTest::newRow("zip") << QByteArray("PK\3\4\x14\0\0\0\x8\0", 10) << 400 << QByteArray("no show file");
        QTest::newRow("deep") << QByteArray(1'000'000, '[') << 400 << QByteArray("nested too deep");
        QTest::newRow("other format")
            << show("1", "{}", quieter).replace("halcyra", "other") << 400 << QByteArray("no show file");
        QTest::newRow("future") << show("2", "{}", quieter) << 409 << QByteArray("version 2");
        QTest::newRow("no version") << show("\"1\"", "{}", quieter) << 400 << QByteArray("version");
        QTest::newRow("no settings") << show("1", "{}", "[1]") << 400 << QByteArray("settings");
        QTest::newRow("edited setting")
            << show("1", "{}", R"({"/device/channels/0/preview/properties/volume":"loud",)" + quieter.mid(1))
            << 422 << QByteArray("preview/properties/volume");
        QTest::newRow("edited slot") << show("1", R"({"collections":{"1":{"slots":{"1":{"inpoint":"x"}}}}})",
                                             quieter)
                                     << 422 << QByteArray("inpoint");
        QTest::newRow("no library") << show("1", "7", quieter) << 422 << QByteArray("library");
        QTest::newRow("many settings")
            << show("1", "{}", many + '}') << 413 << QByteArray("more than a show");
        QTest::newRow("ten million entries")
            << show("1", QByteArray("{\"1\":{}},").repeated(10'000'000), "{}") << 413
            << QByteArray("more than a show");
    }

    /// A file that is no sound show is refused with a sentence, at once and without a trace.
    void badFilesChangeNothing()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, status);
        QFETCH(QByteArray, sentence);
        const QByteArray before = m_live->request("GET", "/show/current").body;
        const auto reply = m_live->request("POST", "/show/current", file);
        QCOMPARE(reply.status, status);
        Json answer;
        QVERIFY(Json::parseString(reply.body.toStdString(), answer));
        const QByteArray told = QByteArray::fromStdString(answer.get("error").asString());
        QVERIFY2(told.contains(sentence) && told.endsWith('.') && told.size() < 400,
                 told.left(400).constData());
        QVERIFY(settled());
        QCOMPARE(m_live->request("GET", "/show/current").body, before);
        QVERIFY(!QFile::exists(m_live->stateFolder() + QStringLiteral("/earlier"))); // not even begun
    }

    void rebootRestartsThePlayers()
    {
        invoke("/device/system/methods/reboot", "{}");
        QVERIFY(settled());
        QCOMPARE(value(program + "/properties/media"), media.toStdString());
        QCOMPARE(value(program + "/properties/volume"), std::string("0.25"));
        QCOMPARE(m_live->request("GET", "/system").status, 200);
    }
};

HALCYRA_TEST(ServerShowTest)
#include "servershowtest.moc"
