#include "ombra/outputs/outputs.h"

#include "ombra/outputs/videomodes.h"
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
        for (const VideoMode& mode : videoModes()) {
            QVERIFY2(ids.insert(mode.id).second, mode.id);
            // The rate stands in the name: "1920x1080p59.94".
            const QString name = QString::fromLatin1(mode.id);
            const double rate = name.mid(name.lastIndexOf(mode.interlaced ? u'i' : u'p') + 1).toDouble();
            QVERIFY2(qAbs(mode.refreshRate() - rate) < 0.1, mode.id);
            QVERIFY2(mode.width + mode.hFront + mode.hSync < mode.hTotal, mode.id);
            QVERIFY2(isEdid(makeEdid(mode, "Display")), mode.id);
        }
        std::string damaged = makeEdid(videoModes().front(), "Display");
        damaged[100] = damaged[100] == '0' ? '1' : '0';
        QVERIFY(!isEdid(damaged));
        QVERIFY(!isEdid(""));
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
        const QByteArray edid = QByteArray::fromStdString(makeEdid(videoModes()[9], "Other"));
        QTest::newRow("mode") << output + "/methods/selectModeline"
                              << QByteArray("{'modelineId':'3840x2160p50','maxLinkRate':true}") << true
                              << output + "/properties/hTotal" << QByteArray("5280");
        QTest::newRow("display's mode")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'edid-1280x720p60'}") << true
            << output + "/properties/height" << QByteArray("720");
        QTest::newRow("unknown mode")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'8k'}") << false
            << output + "/properties/width" << QByteArray("1920");
        QTest::newRow("mode not of the display")
            << output + "/methods/selectModeline" << QByteArray("{'modelineId':'edid-3840x2160p60'}") << false
            << output + "/properties/width" << QByteArray("1920");
        QTest::newRow("no mode") << output + "/methods/selectModeline" << QByteArray("{}") << false
                                 << output + "/properties/width" << QByteArray("1920");
        QTest::newRow("edid") << output + "/methods/setEdidOverride"
                              << "{'edid':'" + edid + "','filename':'a.bin','modelineId':''}" << true
                              << output + "/properties/edidOverrideFilename" << QByteArray("a.bin");
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
        if (!done)
            QVERIFY(Scene::toJson(m_scene->root()) == m_initial);
        const Path reset("/device/system/methods/resetOutputConfiguration");
        QVERIFY(m_outputs->invoke(reset, {}, &error).value_or(false));
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
    Ref<Scene> m_scene;
    std::unique_ptr<Outputs> m_outputs;
    Json m_initial;
};

HALCYRA_TEST(OutputsTest)
#include "outputstest.moc"
