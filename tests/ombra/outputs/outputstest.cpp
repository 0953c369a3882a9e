#include "ombra/outputs/outputs.h"

#include "ombra/outputs/displayedid.h"
#include "ombra/outputs/screenfigures.h"
#include "ombra/outputs/standardmodes.h"
#include "ombra/outputs/videooutput.h"
#include "tarn/edid/edid.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <set>

using namespace vantrel;
using namespace vantrel::ombra;

class OutputsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scene = makeRef<Scene>();
        m_outputs = std::make_unique<Outputs>(*m_scene);
        m_outputs->build();
        m_initial = Scene::toJson(m_scene->root());
    }

    void modesAreSound()
    {
        std::set<std::string> ids;
        for (const VideoTiming& mode : standardModes()) {
            QVERIFY2(ids.insert(mode.id()).second, mode.id().c_str());
            QVERIFY2(mode.width + mode.hFront + mode.hSync < mode.hTotal, mode.id().c_str());
            QVERIFY2(mode.refreshRate() > 23 && mode.refreshRate() < 121, mode.id().c_str());
        }
        for (const char* id : {"1920x1080p59.94", "1920x1080i50", "3840x2160p60", "1920x1200p59.95"})
            QVERIFY2(ids.contains(id), id);
    }

    void methods_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("args");
        QTest::addColumn<bool>("done");
        QTest::addColumn<QByteArray>("property"); // to look at afterwards
        QTest::addColumn<QByteArray>("value");

        const QByteArray output("/device/system/gpus/0/outputs/1");
        const QByteArray mapping("/device/channels/0/mappings/0");
        const QByteArray edid = QByteArray::fromStdString(projector());
        const QByteArray monitor("/device/system/gpus/0/outputs/0");
        QTest::newRow("mode") << output + "/methods/selectModeline"
                              << QByteArray("{'modelineId':'3840x2160p50','maxLinkRate':true}") << true
                              << output + "/properties/hTotal" << QByteArray("5280");
        QTest::newRow("display's mode")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'edid-1280x720p60'}") << true
            << output + "/properties/height" << QByteArray("720");
        QTest::newRow("mode of an earlier version")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'1920x1200p60'}") << true
            << output + "/properties/modelineId" << QByteArray("1920x1200p59.95");
        QTest::newRow("another rate")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'640x480p60'}") << false
            << output + "/properties/width" << QByteArray("1920");
        QTest::newRow("mode beyond the display")
            << monitor + "/methods/selectModeline" << QByteArray("{'modelineId':'3840x2160p60'}") << false
            << monitor + "/properties/width" << QByteArray("1920");
        QTest::newRow("unknown mode")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'8k'}") << false
            << output + "/properties/width" << QByteArray("1920");
        QTest::newRow("mode not of the display")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'edid-1024x768p60'}") << false
            << output + "/properties/width" << QByteArray("1920");
        QTest::newRow("mode nearly of the display")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'edid-1280x720p59.98'}")
            << false << output + "/properties/width" << QByteArray("1920");
        QTest::newRow("no mode") << output + "/methods/selectModeline" << QByteArray("{}") << false
                                 << output + "/properties/width" << QByteArray("1920");
        QTest::newRow("edid") << output + "/methods/setEdidOverride"
                              << "{'edid':'" + edid + "','filename':'a.bin','modelineId':''}" << true
                              << output + "/properties/edidOverrideFilename" << QByteArray("a.bin");
        QTest::newRow("edid's mode") << output + "/methods/setEdidOverride"
                                     << "{'edid':'" + edid + "','modelineId':'edid-1280x800p59.81'}" << true
                                     << output + "/properties/preferredModelineId"
                                     << QByteArray("edid-1280x800p59.81");
        QTest::newRow("edid without the mode")
            << output + "/methods/setEdidOverride"
            << "{'edid':'" + edid + "','modelineId':'3840x2160p60'}" << false
            << output + "/properties/edidOverride" << QByteArray("");
        QTest::newRow("bad edid") << output + "/methods/setEdidOverride" << QByteArray("{'edid':'00ff'}")
                                  << false << output + "/properties/edidOverride" << QByteArray("");
        QTest::newRow("scaling") << mapping + "/methods/selectDefaultScaleMode"
                                 << QByteArray("{'mode':'clip'}") << true
                                 << mapping + "/properties/defaultScaleMode" << QByteArray("clip");
        QTest::newRow("bad scaling") << mapping + "/methods/selectDefaultScaleMode"
                                     << QByteArray("{'mode':7}") << false
                                     << mapping + "/properties/defaultScaleMode" << QByteArray("fit");
        QTest::newRow("colour") << mapping + "/methods/selectBackgroundColor"
                                << QByteArray("{'color':'#102030'}") << true
                                << mapping + "/properties/backgroundColor" << QByteArray("#102030");
        QTest::newRow("bad colour") << mapping + "/methods/selectBackgroundColor"
                                    << QByteArray("{'color':'red!'}") << false
                                    << mapping + "/properties/backgroundColor" << QByteArray("#000000");
        QTest::newRow("swap") << QByteArray("/device/channels/0/methods/configure")
                              << QByteArray("{'target1':'DP-2','mode1':'clip','bg1':'#ffffff',"
                                            "'target2':'DP-1','mode2':'fit','bg2':'#000000'}")
                              << true << mapping + "/properties/target" << QByteArray("DP-2");
        QTest::newRow("swap, the other one")
            << QByteArray("/device/channels/0/methods/configure")
            << QByteArray("{'target1':'DP-2','mode1':'clip','bg1':'#ffffff',"
                          "'target2':'DP-1','mode2':'stretch','bg2':'#000000'}")
            << true << QByteArray("/device/channels/0/mappings/1/properties/defaultScaleMode")
            << QByteArray("stretch");
        QTest::newRow("same target") << QByteArray("/device/channels/0/methods/configure")
                                     << QByteArray("{'target1':'DP-2','mode1':'clip','bg1':'#ffffff',"
                                                   "'target2':'DP-2','mode2':'fit','bg2':'#000000'}")
                                     << false << mapping + "/properties/target" << QByteArray("DP-1");
    }

    void methods()
    {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, args);
        args.replace('\'', '"');
        QFETCH(bool, done);
        QFETCH(QByteArray, property);
        QFETCH(QByteArray, value);
        Json arguments;
        QVERIFY(Json::parseString(args.toStdString(), arguments));
        const Path method(path.toStdString());
        std::string error;
        const auto result = m_outputs->invoke(method, arguments, &error);
        QVERIFY(result.has_value());
        QVERIFY2(*result == done, error.c_str());
        QCOMPARE(error.empty(), done);
        Variant now;
        QVERIFY(m_scene->getProperty(m_scene->find(property.toStdString()), now));
        QCOMPARE(now.asString(), value.toStdString());
        if (!done && path.contains("outputs")) { // the reason stands there for all to see
            QVERIFY(flag(path.left(path.indexOf("/methods")).toStdString() + "/properties/error"));
            QCOMPARE(text(path.left(path.indexOf("/methods")).toStdString() + "/properties/errorText"),
                     error);
        } else if (!done) {
            QVERIFY(Scene::toJson(m_scene->root()) == m_initial);
        }
        const Path reset("/device/system/methods/resetOutputConfiguration");
        QVERIFY(m_outputs->invoke(reset, {}, &error).value_or(false));
        QVERIFY(Scene::toJson(m_scene->root()) == m_initial);
    }

    /// The real screen stands with its output, what it lost for a minute.
    void screens()
    {
        const std::string output = "/device/system/gpus/0/outputs/1/properties/";
        m_outputs->at(1).tellScreen({.rate = 50, .dropped = 2, .late = 1, .decodeLoad = 0.256});
        QCOMPARE(text(output + "screenRate") + " " + text(output + "droppedPictures") + " " +
                     text(output + "latePictures") + " " + text(output + "decodeLoad"),
                 std::string("50 2 1 0.26"));
        LastMinute lost;
        QCOMPARE(lost.grown(2), 2);
        for (int second = 1; second < 60; ++second)
            QCOMPARE(lost.grown(second < 30 ? 2 : 5), second < 30 ? 2 : 5);
        QCOMPARE(lost.grown(5), 3);
    }

    /// The machine's connectors, the mode in force and what is plugged in are what the scene has.
    void theMachinesOwn()
    {
        makeReal();
        QVERIFY(!flag(out(1) + "connected"));
        QCOMPARE(text(out(1) + "edid") + text(out(1) + "product"), std::string());
        Connector wall = connector("HDMI-1", projector());
        wall.modes = {*findDmt(0x04), *findDmt(0x1c)};
        wall.mode = wall.modes[0];
        m_outputs->follow({connector("eDP-1", Outputs::ownEdid(0)), wall, {.name = "DP-3"}});
        QCOMPARE(text(out(0) + "name") + " " + text(out(1) + "name"), std::string("eDP-1 HDMI-1"));
        QCOMPARE(text(out(1) + "product"), std::string("Projector"));
        QCOMPARE(text(out(1) + "edid"), projector());
        QCOMPARE(text(out(1) + "modelineId"), std::string("edid-640x480p59.94"));
        QCOMPARE(text(out(1) + "hTotal") + " " + text(out(1) + "hSyncPolarity"), std::string("800 -1"));
        QCOMPARE(text(wallPath + "/modelines/1/properties/id"), std::string("edid-1280x800p59.81"));
        QVERIFY(flag(wallPath + "/modelines/2/properties/standard"));
        QCOMPARE(targets(), std::string("eDP-1 HDMI-1"));
        QVERIFY(!call(wallPath, "selectModeline", R"({"modelineId":"edid-1280x800p59.81"})"));
        QCOMPARE(text(out(1) + "width"), std::string("640"));
        QVERIFY(text(out(1) + "errorText").find("HDMI-1") != std::string::npos);

        wall.edid = "00ff"; // what cannot be read is no display's name
        m_outputs->follow({connector("eDP-1", Outputs::ownEdid(0)), wall});
        QVERIFY(flag(out(1) + "connected"));
        QCOMPARE(text(out(1) + "edid") + text(out(1) + "product"), std::string());
        m_outputs->follow({connector("eDP-1", Outputs::ownEdid(0)), {.name = "HDMI-1"}});
        QVERIFY(!flag(out(1) + "connected"));
        QCOMPARE(text(out(1) + "width"), std::string("640")); // the program goes on
        QCOMPARE(targets(), std::string("eDP-1 HDMI-1"));     // and not over the operator's screen
        m_outputs->follow({});
        QVERIFY(!flag(out(0) + "connected"));
    }

    /// A real mode is in the scene once the machine has it; what it does not take is undone, with the reason.
    void modesOfTheMachine()
    {
        makeReal();
        std::vector<std::pair<std::string, VideoOutput::ModeAnswer>> asked;
        m_outputs->setModeSetter([&](const std::string& connector, const VideoTiming& mode,
                                     const VideoOutput::ModeAnswer& answer) {
            asked.emplace_back(connector + " " + mode.id(), answer);
        });
        Connector wall = connector("HDMI-1", projector());
        wall.modes = {*findDmt(0x1c), *findVic(19)};
        const auto takes = [&](const VideoTiming& mode) {
            asked.back().second({});
            wall.mode = mode;
            m_outputs->follow({connector("DP-1", Outputs::ownEdid(0)), wall});
        };
        wall.mode = wall.modes[0];
        m_outputs->follow({connector("DP-1", Outputs::ownEdid(0)), wall});
        QVERIFY(call(wallPath, "selectModeline", R"({"modelineId":"1280x720p50"})"));
        QCOMPARE(asked.back().first, std::string("HDMI-1 1280x720p50"));
        QCOMPARE(text(out(1) + "height") + text(out(1) + "confirmSeconds"), std::string("80015"));
        asked.back().second("The driver does not.");
        QCOMPARE(text(out(1) + "errorText") + text(out(1) + "confirmSeconds"),
                 std::string("The driver does not.0"));
        QCOMPARE(text(out(1) + "modelineId"), std::string("edid-1280x800p59.81"));

        // As a client's dialog has it: with the display's own EDID in the place of the display's own EDID.
        QVERIFY(call(wallPath, "setEdidOverride",
                     R"({"modelineId":"edid-1280x720p50","edid":")" + projector() + R"("})"));
        takes(wall.modes[1]);
        QCOMPARE(text(out(1) + "modelineId") + text(out(1) + "height"), std::string("edid-1280x720p50720"));
        QCOMPARE(text(out(1) + "confirmSeconds"), std::string("15"));
        for (int i = 0; i < 15; ++i)
            m_outputs->secondPassed();
        QCOMPARE(asked.back().first, std::string("HDMI-1 1280x800p59.81"));
        takes(wall.modes[0]);
        QCOMPARE(text(out(1) + "modelineId"), std::string("edid-1280x800p59.81"));
        QCOMPARE(text(out(1) + "edidOverride"), std::string());
        QVERIFY(text(out(1) + "errorText").find("Nobody kept 1280 x 720p 50 Hz") == 0);

        // Gone back before the machine had it.
        QVERIFY(call(wallPath, "selectModeline", R"({"modelineId":"1280x720p60"})"));
        QVERIFY(call(wallPath, "revertMode", "{}"));
        QCOMPARE(asked.back().first, std::string("HDMI-1 1280x800p59.81"));
        asked[asked.size() - 2].second({});
        takes(wall.modes[0]);
        QCOMPARE(text(out(1) + "modelineId"), std::string("edid-1280x800p59.81"));

        // What was kept comes with a manual mode alone, and the first start's mode with a reset.
        const std::size_t before = asked.size();
        write(wallPath, "modelineId", "1280x720p50", false);
        QCOMPARE(asked.size(), before);
        write(wallPath, "edidOverride", projector().c_str(), false);
        write(wallPath, "modelineId", "1280x720p50", false);
        QCOMPARE(asked.back().first, std::string("HDMI-1 1280x720p50"));
        takes(wall.modes[1]);
        QVERIFY(call("/device/system", "resetOutputConfiguration", "{}"));
        QCOMPARE(asked.back().first, std::string("HDMI-1 1280x800p59.81"));
        // The operator's own screen may be lost from sight as well.
        const std::string desk = "/device/system/gpus/0/outputs/0";
        QVERIFY(call(desk, "selectModeline", R"({"modelineId":"1280x720p50"})"));
        QCOMPARE(text(out(0) + "confirmSeconds"), std::string("15"));
        wall.isOn = false;
        m_outputs->follow({connector("DP-1", Outputs::ownEdid(0)), wall});
        QVERIFY(!call(wallPath, "selectModeline", R"({"modelineId":"1280x720p60"})"));
    }

    /// A display that is plugged in elsewhere is followed there; those in use are nobody else's.
    void displaysFindTheirOutput()
    {
        makeReal();
        const Connector desk = connector("DP-1", Outputs::ownEdid(0)), wall = connector("DP-2", projector());
        m_outputs->follow({{.name = "VGA-1"}, desk, wall});
        QCOMPARE(targets(), std::string("DP-1 DP-2"));
        const auto at = [](Connector display, const char* name) {
            display.name = name;
            return display;
        };
        m_outputs->follow({at(wall, "VGA-1"), {.name = "DP-1"}, {.name = "DP-2"}});
        QCOMPARE(targets(), std::string("DP-1 VGA-1"));
        m_outputs->follow({at(wall, "VGA-1"), {.name = "DP-1"}, desk});
        QCOMPARE(targets(), std::string("DP-1 VGA-1"));
        m_outputs->follow({at(wall, "VGA-1"), {.name = "DP-1"}, at(desk, "DP-2")});
        QCOMPARE(targets(), std::string("DP-2 VGA-1"));
        m_outputs->follow({at(wall, "VGA-1"), at(desk, "DP-1"), at(desk, "DP-2")});
        QCOMPARE(targets(), std::string("DP-2 VGA-1"));
    }

    /// The only display shows program as long as there has been no other, or somebody wants it so; what a
    /// show of another machine names is where its number says until there is such an output.
    void mappingsHaveAScreen()
    {
        makeReal();
        const Connector desk = connector("DP-1", Outputs::ownEdid(0)), wall = connector("DP-2", projector());
        const std::string program = "/device/channels/0/mappings/1";
        m_outputs->follow({desk, {.name = "DP-2"}});
        QCOMPARE(targets(), std::string("DP-2 DP-1"));
        QVERIFY(flag(program + "/properties/standsIn"));
        m_outputs->follow({desk, wall});
        QCOMPARE(targets(), std::string("DP-1 DP-2"));
        QVERIFY(!flag(program + "/properties/standsIn"));
        QVERIFY(call("/device/channels/0", "configure",
                     R"({"target1":"DP-2","mode1":"fit","bg1":"#000000",
                         "target2":"DP-1","mode2":"fit","bg2":"#000000"})"));
        m_outputs->follow({desk, wall});
        QCOMPARE(targets(), std::string("DP-2 DP-1"));

        write(program, "target", "HDMI-7", true);
        QCOMPARE(targets(), std::string("DP-2 DP-1"));
        write("/device/channels/0/mappings/0", "target", "DP-1", false); // a show, one after the other
        write(program, "target", "HDMI-7", false);
        QCOMPARE(targets(), std::string("DP-1 DP-2"));
        QVERIFY(flag(program + "/properties/standsIn"));
        Connector other = wall;
        other.name = "HDMI-7";
        m_outputs->follow({desk, {.name = "DP-2"}, other});
        QCOMPARE(targets(), std::string("DP-1 HDMI-7"));
        QVERIFY(!flag(program + "/properties/standsIn"));
    }

    /// What an audience sees goes back by itself unless somebody keeps it, and the first state of several.
    void modesOnAirAreKeptOrGoBack()
    {
        const std::string wall = "/device/system/gpus/0/outputs/1";
        QVERIFY(call(wall, "selectModeline", R"({"modelineId":"3840x2160p50"})"));
        QCOMPARE(text(wall + "/properties/confirmSeconds"), std::string("15"));
        QVERIFY(call(wall, "keepMode", "{}"));
        QVERIFY(!call(wall, "keepMode", "{}"));
        for (int i = 0; i < 20; ++i)
            m_outputs->secondPassed();
        QCOMPARE(text(wall + "/properties/modelineId"), std::string("3840x2160p50"));

        QVERIFY(call(wall, "setEdidOverride", R"({"edid":")" + projector() + R"(","filename":"p.bin"})"));
        QVERIFY(call(wall, "selectModeline", R"({"modelineId":"1280x720p50"})"));
        for (int i = 0; i < 14; ++i)
            m_outputs->secondPassed();
        QCOMPARE(text(wall + "/properties/confirmSeconds"), std::string("1"));
        QCOMPARE(text(wall + "/properties/height"), std::string("720"));
        m_outputs->secondPassed();
        QCOMPARE(text(wall + "/properties/confirmSeconds"), std::string("0"));
        QCOMPARE(text(wall + "/properties/modelineId"), std::string("3840x2160p50"));
        QCOMPARE(text(wall + "/properties/edidOverride"), std::string());
        QVERIFY(flag(wall + "/properties/error"));

        // Nobody but the operator sees the other one, and what shows the same needs no word.
        QVERIFY(call("/device/system/gpus/0/outputs/0", "selectModeline", R"({"modelineId":"1280x720p50"})"));
        QCOMPARE(text("/device/system/gpus/0/outputs/0/properties/confirmSeconds"), std::string("0"));
        QVERIFY(call(wall, "selectModeline", R"({"modelineId":"edid-3840x2160p50"})"));
        QCOMPARE(text(wall + "/properties/confirmSeconds"), std::string("0"));
        QVERIFY(!flag(wall + "/properties/error"));

        // All that is set back at once changes what the audience sees as well.
        QVERIFY(call("/device/system", "resetOutputConfiguration", "{}"));
        QCOMPARE(text(wall + "/properties/confirmSeconds"), std::string("15"));
        QCOMPARE(text(wall + "/properties/height"), std::string("1080"));
        QVERIFY(call(wall, "revertMode", "{}"));
        QCOMPARE(text(wall + "/properties/modelineId"), std::string("edid-3840x2160p50"));

        // Nor does a mode that is written instead of selected stay unasked.
        write(wall, "modelineId", "1920x1080p60", true);
        QCOMPARE(text(wall + "/properties/confirmSeconds"), std::string("15"));
        QVERIFY(call(wall, "revertMode", "{}"));
        QCOMPARE(text(wall + "/properties/modelineId"), std::string("edid-3840x2160p50"));
        write(wall, "modelineId", "1920x1080p60", false); // out of a show
        QCOMPARE(text(wall + "/properties/confirmSeconds"), std::string("0"));
        QCOMPARE(text(wall + "/properties/height"), std::string("1080"));
        QVERIFY(call(wall, "selectModeline", R"({"modelineId":"1280x720p50"})"));
        write(wall, "modelineId", "1920x1080p50", false); // a show that is loaded meanwhile
        for (int i = 0; i < 20; ++i)
            m_outputs->secondPassed();
        QCOMPARE(text(wall + "/properties/modelineId"), std::string("1920x1080p50"));
        write(wall, "edidOverride", "00ff", false);
        QCOMPARE(text(wall + "/properties/edidOverride"), std::string());
    }

    /// Preview and program never have one output, nor one that is not there.
    void targetsThatAreWrittenChangePlaces()
    {
        const std::string mappings = "/device/channels/0/mappings/";
        write(mappings + "1", "target", "DP-1", true);
        QCOMPARE(text(mappings + "0/properties/target"), std::string("DP-2"));
        write(mappings + "0", "target", "DP-9", true);
        QCOMPARE(text(mappings + "0/properties/target"), std::string("DP-2"));
        QCOMPARE(text(mappings + "1/properties/target"), std::string("DP-1"));
    }

    void displaysComeAndGo()
    {
        const std::string wall = "/device/system/gpus/0/outputs/1";
        QCOMPARE(text(wall + "/properties/bpc"), std::string("10"));
        QCOMPARE(text(wall + "/properties/currentLinkRate"), std::string("6"));
        QVERIFY(call(wall, "selectModeline", R"({"modelineId":"edid-3840x2160p50"})"));
        QCOMPARE(text(wall + "/properties/bpc"), std::string("8")); // more does not go through the link
        QCOMPARE(text(wall + "/properties/currentLinkRate"), std::string("20"));
        QVERIFY(call(wall, "keepMode", "{}"));
        std::string error;
        QVERIFY(m_outputs->plug(1, {}, &error));
        QVERIFY(!flag(wall + "/properties/connected"));
        QCOMPARE(text(wall + "/properties/product") + text(wall + "/properties/edid"), std::string());
        QCOMPARE(text(wall + "/properties/width"), std::string("3840")); // the program goes on
        QCOMPARE(text(wall + "/properties/currentLaneCount"), std::string("0"));
        QVERIFY(!m_outputs->plug(1, "00ff", &error));
        QVERIFY(!error.empty());
        QVERIFY(m_outputs->plug(1, projector(), &error));
        QCOMPARE(text(wall + "/properties/product"), std::string("Projector"));
        QCOMPARE(text(wall + "/properties/width"), std::string("1280")); // as this one cannot take the other
        QVERIFY(m_outputs->plug(1, Outputs::ownEdid(1), &error));
        QVERIFY(m_outputs->plug(0, {}, &error) && m_outputs->plug(0, Outputs::ownEdid(0), &error));
        QVERIFY(call("/device/system", "resetOutputConfiguration", "{}"));
        QVERIFY(Scene::toJson(m_scene->root()) == m_initial);
    }

    void leavesOtherMethodsToOthers()
    {
        std::string error;
        for (const char* path :
             {"/device/channels/0/methods/take", "/device/system/methods/reboot", "/nothing"}) {
            const Path method(path);
            QVERIFY(!m_outputs->invoke(method, {}, &error).has_value());
        }
    }

private:
    void makeReal()
    {
        m_scene = makeRef<Scene>();
        m_outputs = std::make_unique<Outputs>(*m_scene, Outputs::Kind::Real);
        m_outputs->build();
    }
    static Connector connector(const char* name, const std::string& edid)
    {
        return {.name = name, .isConnected = true, .isOn = true, .edid = edid};
    }
    static std::string out(int output)
    {
        return "/device/system/gpus/0/outputs/" + std::to_string(output) + "/properties/";
    }
    /// Of preview and program.
    std::string targets() const
    {
        return text("/device/channels/0/mappings/0/properties/target") + " " +
               text("/device/channels/0/mappings/1/properties/target");
    }
    static std::string projector()
    {
        return makeEdid({.product = "Projector",
                         .serial = "P-1",
                         .maxRate = 75,
                         .maxLineRate = 80,
                         .maxDotClock = 150'000'000,
                         .preferred = *findDmt(0x1c),
                         .videoCodes = {19, 4}});
    }
    bool call(const std::string& object, const char* method, const std::string& args)
    {
        Json json;
        std::string error;
        const Path path(object + "/methods/" + method);
        return Json::parseString(args, json) && m_outputs->invoke(path, json, &error).value_or(false);
    }
    void write(const std::string& object, const char* property, const char* value, bool isByClient)
    {
        const ScenePointer at = m_scene->find(object + "/properties/" + property);
        QVERIFY(m_scene->replaceProperty(at, Variant::from(std::string(value))));
        m_outputs->propertyWritten(at.deref(), at.property(), isByClient);
    }
    std::string text(const std::string& property) const
    {
        Variant value;
        m_scene->getProperty(m_scene->find(property), value);
        return value.asString();
    }
    bool flag(const std::string& property) const { return text(property) == "true"; }

    const std::string wallPath = "/device/system/gpus/0/outputs/1";
    Ref<Scene> m_scene;
    std::unique_ptr<Outputs> m_outputs;
    Json m_initial;
};

HALCYRA_TEST(OutputsTest)
#include "outputstest.moc"
