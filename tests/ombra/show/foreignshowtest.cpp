#include "tests/ombra/linkpeer.h"
#include "tests/ombra/liveserver.h"
#include "tests/support/testmain.h"

using namespace vantrel;
using namespace vantrel::ombra::test;

namespace {

/// "T0" and "T1" are the targets of preview and program, and ' stands for ".
QByteArray json(QByteArray text)
{
    for (const char* mapping : {"0", "1"})
        text.replace(QByteArray("T") + mapping,
                     QByteArray("'/device/channels/0/mappings/") + mapping + "/properties/target'");
    return text.replace('\'', '"');
}

QByteArray showOf(const QByteArray& settings, const QByteArray& version = "1", const QByteArray& slots = {})
{
    return json("{'format':'halcyra-show','version':" + version +
                ",'library':{'collections':{'1':{'slots':{" + slots + "}}}},'settings':{" + settings + "}}");
}

} // namespace

/// Shows that another machine wrote, or somebody with an editor.
class ForeignShowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_live.start()); }
    void cleanup() { m_live.stop(); }

    void takesNoValueThatNoClientMayWrite()
    {
        const QByteArray before = m_live.request("GET", "/show/current").body;
        for (const char* settings : {"'/device/channels/0/mappings/1/properties/defaultScaleMode':'bananas'",
                                     "'/device/channels/0/program/properties/volume':7",
                                     "T0:'DP-1',T1:'DP-1'", "T0:'DP-9',T1:'DP-9'"}) {
            const int status = m_live.request("POST", "/show/current?force", showOf(settings)).status;
            QVERIFY2(status == 422, settings);
        }
        QCOMPARE(m_live.request("GET", "/show/current").body, before);
    }

    /// All that speaks against it at once, and what is missing also where somebody insists.
    void tellsWhatIsMissingBesideItsVersion()
    {
        const QByteArray show =
            showOf({}, "7", "'1':{'contentUrl':'file:///a.mp4'},'2':{'contentUrl':'file:///b.mp4'}");
        const auto refused = m_live.request("POST", "/show/current", show);
        QCOMPARE(refused.status, 409);
        QVERIFY2(refused.body.contains("version 7") && refused.body.contains("2 of the show's media"),
                 refused.body.constData());
        const auto forced = m_live.request("POST", "/show/current?force", show);
        QCOMPARE(forced.status, 200);
        QCOMPARE(forced.body, json("{'missing':['a.mp4','b.mp4']}"));
    }

    void findsItsOutputsByTheirPlace()
    {
        LinkPeer peer(m_live.server().linkPort());
        peer.send(R"([{"op":"get","path":""}])");
        const struct
        {
            const char *there, *preview, *program;
            bool isTold;
        } shows[] = {{"T0:'HDMI-2',T1:'HDMI-1'", "T0:'DP-2'", "T1:'DP-1'", true},
                     {"T0:'DP-1',T1:'DP-2'", "T0:'DP-1'", "T1:'DP-2'", false},
                     {"T0:'HDMI-1',T1:'DP-1'", "T0:'DP-2'", "T1:'DP-1'", true},
                     {"T1:'HDMI-1'", "T0:'DP-1'", "T1:'DP-2'", true}, // program's place is the second one
                     {"T0:'B',T1:'A'},'outputs':{'not':'outputs'", "T0:'DP-2'", "T1:'DP-1'", true},
                     {"T0:'A',T1:'B'},'outputs':['B','A'],'more':{", "T0:'DP-2'", "T1:'DP-1'", true},
                     {"T1:'DP-1'", "T0:'DP-2'", "T1:'DP-1'", false}};
        for (const auto& [there, preview, program, isTold] : shows) {
            QCOMPARE(m_live.request("POST", "/show/current", showOf(there)).status, 200);
            const QByteArray now = m_live.request("GET", "/show/current").body;
            QVERIFY2(now.contains(json(preview)) && now.contains(json(program)), there);
            QVERIFY(m_live.waitFor([&] {
                peer.read();
                const std::string told = peer.value("/device/system/properties/notice");
                return (told.find("this server does not have (") != std::string::npos) == isTold;
            }));
        }
    }

private:
    LiveServer m_live;
};

HALCYRA_TEST(ForeignShowTest)
#include "foreignshowtest.moc"
