#include "tarn/json/json.h"
#include "tests/ombra/linkpeer.h"
#include "tests/ombra/liveserver.h"
#include "tests/support/testmain.h"

using namespace vantrel;
using namespace vantrel::ombra::test;

namespace {

QByteArray showOf(const QByteArray& settings)
{
    return R"({"format":"halcyra-show","version":1,"library":{},"settings":{)" + settings + "}}";
}

QByteArray targets(const QByteArray& preview, const QByteArray& program)
{
    const QByteArray path = R"("/device/channels/0/mappings/%1/properties/target":"%2")";
    QByteArrayList all;
    if (!preview.isEmpty())
        all << QByteArray(path).replace("%1", "0").replace("%2", preview);
    if (!program.isEmpty())
        all << QByteArray(path).replace("%1", "1").replace("%2", program);
    return all.join(',');
}

} // namespace

/// Shows that another machine wrote, or somebody with an editor.
class ForeignShowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_live.start()); }
    void cleanup() { m_live.stop(); }

    void takesNoValueThatNoClientMayWrite_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::newRow("mode") << QByteArray(
            R"("/device/channels/0/mappings/1/properties/defaultScaleMode":"bananas")");
        QTest::newRow("range") << QByteArray(R"("/device/channels/0/program/properties/volume":7)");
        QTest::newRow("one output for both") << targets("DP-1", "DP-1");
        QTest::newRow("one that is not here") << targets("DP-9", "DP-9");
    }

    void takesNoValueThatNoClientMayWrite()
    {
        QFETCH(QByteArray, settings);
        const QByteArray before = m_live.request("GET", "/show/current").body;
        QCOMPARE(m_live.request("POST", "/show/current?force", showOf(settings)).status, 422);
        QCOMPARE(m_live.request("GET", "/show/current").body, before);
    }

    /// All that speaks against it at once, and what is missing also where somebody insists.
    void tellsWhatIsMissingBesideItsVersion()
    {
        QByteArray show = showOf({});
        show.replace("\"version\":1", "\"version\":7");
        QByteArray library = "'library':{'collections':{'1':{'slots':{'1':{'contentUrl':'file:///a.mp4'},"
                             "'2':{'contentUrl':'file:///b.mp4'}}}}}";
        show.replace("\"library\":{}", library.replace('\'', '"'));
        const auto refused = m_live.request("POST", "/show/current", show);
        QCOMPARE(refused.status, 409);
        QVERIFY2(refused.body.contains("version 7") && refused.body.contains("2 of the show's media"),
                 refused.body.constData());
        const auto forced = m_live.request("POST", "/show/current?force", show);
        QCOMPARE(forced.status, 200);
        QCOMPARE(forced.body, QByteArray(R"({"missing":["a.mp4","b.mp4"]})"));
    }

    void findsItsOutputsByTheirPlace_data()
    {
        QTest::addColumn<QByteArray>("targetsThere");
        QTest::addColumn<QByteArray>("targetsHere");
        QTest::addColumn<bool>("isTold");
        QTest::newRow("the same ones") << targets("DP-2", "DP-1") << targets("DP-2", "DP-1") << false;
        QTest::newRow("others") << targets("HDMI-2", "HDMI-1") << targets("DP-2", "DP-1") << true;
        QTest::newRow("one other") << targets("HDMI-1", "DP-1") << targets("DP-2", "DP-1") << true;
        QTest::newRow("program alone") << targets({}, "HDMI-1") << targets("DP-1", "DP-2") << true;
        QTest::newRow("program alone, here") << targets({}, "DP-1") << targets("DP-2", "DP-1") << false;
    }

    void findsItsOutputsByTheirPlace()
    {
        QFETCH(QByteArray, targetsThere);
        QFETCH(QByteArray, targetsHere);
        QFETCH(bool, isTold);
        LinkPeer peer(m_live.server().linkPort());
        peer.send("[{\"op\":\"get\",\"path\":\"\"}]");
        QCOMPARE(m_live.request("POST", "/show/current", showOf(targetsThere)).status, 200);
        const QByteArray show = m_live.request("GET", "/show/current").body;
        for (const QByteArray& one : targetsHere.split(','))
            QVERIFY2(show.contains(one), show.constData());
        QVERIFY(m_live.waitFor([&] {
            peer.read();
            const bool isThere = peer.scene.findObject("/device/channels/0/program") != nullptr;
            return isThere && isTold == (peer.value("/device/system/properties/notice")
                                             .find("outputs that this server does not have (HDMI-") !=
                                         std::string::npos);
        }));
    }

private:
    LiveServer m_live;
};

HALCYRA_TEST(ForeignShowTest)
#include "foreignshowtest.moc"
