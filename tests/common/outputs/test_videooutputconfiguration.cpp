#include "common/command/commandgate.h"
#include "common/outputs/modelinedialog.h"
#include "common/outputs/outputmodel.h"
#include "common/outputs/videooutputconfiguration.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/ui/toolkit/colorbox.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztcheckbox.h"
#include "common/ui/toolkit/ztdropdownmenu.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUndoStack>

using namespace vantrel;
using namespace vantrel::test;

namespace {

const char* const device = R"([
    {"op":"add","path":"/device/channels/0","value":{"type":"Channel","mappings":[
        {"type":"GpuMapping","properties":{"target":"DP-1","defaultScaleMode":"clip","backgroundColor":"#112233"}},
        {"type":"GpuMapping","properties":{"target":"DP-2","defaultScaleMode":"stretch","backgroundColor":"#445566"}}]}},
    {"op":"add","path":"/device/system/gpus/0","value":{"type":"Gpu","outputs":[
        {"type":"Output","properties":{"name":"DP-1","connected":true,"edid":"00ff","product":"A & <b>B</b>"}},
        {"type":"Output","properties":{"name":"DP-2"}}]}}])";

} // namespace

/// One output's settings beside a scripted server: what goes out, and what is shown of it.
class TestVideoOutputConfiguration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        allowWarnings(QStringLiteral("Failed due network error"));
        m_peer = std::make_unique<ScriptedPeer>();
        const SceneObjectProvider* scene = m_peer->session->sceneObjectProvider();
        m_model = std::make_unique<OutputModel>(m_peer->session->getQUndoStack());
        m_model->setOutput(scene->output1());
        m_model->setChannel(scene->channel());
        m_model->setPreviewMapping(scene->previewMapping());
        m_model->setProgramMapping(scene->programMapping());
        m_model->setModelines(scene->modelines(0));
        m_view = std::make_unique<VideoOutputConfiguration>(1);
        m_view->setModel(m_model.get());
        m_view->show();
        QVERIFY(!part<SwitchSelect>("target")->isEnabled());
        QVERIFY(m_peer->connect());
        QTRY_VERIFY(!m_peer->link.received.empty());
        m_peer->send(device);
        QTRY_COMPARE(part<SwitchSelect>("target")->value().toString(), QStringLiteral("preview"));
        m_peer->link.received.clear();
    }
    void cleanup()
    {
        m_view.reset();
        m_model.reset();
        m_peer.reset();
    }

    /// The settings of each signal stay with its output.
    void swapsTheTargets()
    {
        askForProgram();
        QCOMPARE(sent(), QStringLiteral("invoke /device/channels/0/methods/configure "
                                        "{\"bg1\":\"#445566\",\"bg2\":\"#112233\",\"mode1\":\"stretch\","
                                        "\"mode2\":\"clip\",\"target1\":\"DP-2\",\"target2\":\"DP-1\"}"));
        QCOMPARE(part<SwitchSelect>("target")->value().toString(), QStringLiteral("program_rgb"));
        QTRY_COMPARE(part<SwitchSelect>("target")->value().toString(),
                     QStringLiteral("preview")); // the server has let it be
    }

    void whatIsRefusedIsNotShown()
    {
        auto* gate = m_peer->session->getQUndoStack()->findChild<CommandGate*>();
        gate->setReason(QStringLiteral("The server does not answer."));
        for (int i = 0; i < 2; ++i) { // it can be asked for again, too
            askForProgram();
            QTRY_COMPARE(part<SwitchSelect>("target")->value().toString(), QStringLiteral("preview"));
        }
        auto* background = part<ColorBox>("background");
        background->setColor(Qt::red);
        Q_EMIT background->colorEdited(Qt::red);
        QTRY_COMPARE(background->color(), QColor(0x11, 0x22, 0x33));
        QCOMPARE(text("background"), QStringLiteral("#112233"));
        part<ZTCheckBox>("mixesLight")->click();
        QVERIFY(!part<ZTCheckBox>("mixesLight")->isChecked()); // until the server says so
        auto* scaling = part<ZTDropdownMenu>("scaling");
        scaling->setCurrentIndex(0);
        Q_EMIT scaling->activated(0);
        QTRY_COMPARE(scaling->currentData().toString(), QStringLiteral("clip"));
        m_view->openEditDialog();
        m_view->handleModelineIdChange(false, QStringLiteral("m"), true);
        auto* dialog = m_view->findChild<ModelineDialog*>();
        set("preferredModelineId", R"("m")");
        QTRY_COMPARE(dialog->getPreferredModelineId(), QStringLiteral("m"));
        dialog->handleConfirm();
        QVERIFY(dialog->isVisible());
        QVERIFY(m_peer->link.received.empty());
    }

    /// Meanwhile the link was lost, and the outputs swapped by somebody else.
    void changesToTheTargetThatWasAskedAbout()
    {
        askForProgram(false);
        set("name", R"("none")");
        QTRY_VERIFY(!part<SwitchSelect>("target")->isEnabled());
        m_peer->send(R"([
            {"op":"replace","path":"/device/channels/0/mappings/0/properties/target","value":"DP-2"},
            {"op":"replace","path":"/device/channels/0/mappings/1/properties/target","value":"DP-1"},
            {"op":"replace","path":"/device/system/gpus/0/outputs/0/properties/name","value":"DP-1"}])");
        QTRY_COMPARE(value(OutputModel::TargetColumn).toString(), QStringLiteral("program_rgb"));
        expectWarning(QStringLiteral("Nothing to do in sendTarget"));
        question()->acceptButton()->click();
        QCOMPARE(part<SwitchSelect>("target")->value().toString(), QStringLiteral("program_rgb"));
        QVERIFY(m_peer->link.received.empty());
    }

    /// A mode that waits to be kept can be kept in every window.
    void asksInEveryWindow()
    {
        auto* keep = part<PushButton>("keep-button");
        QVERIFY(!keep->isVisible());
        set("confirmSeconds", "12");
        QTRY_VERIFY(keep->isVisible());
        QCOMPARE(text("newMode"), QStringLiteral("goes back in 12 s"));
        keep->click();
        QVERIFY(sent().endsWith(QStringLiteral("keepMode {}")));
        set("confirmSeconds", "0");
        QTRY_VERIFY(!keep->isVisible());
    }

    void modesGoOut_data()
    {
        QTest::addColumn<bool>("isAuto");
        QTest::addColumn<bool>("isOverridden");
        QTest::addColumn<QString>("sent");
        QTest::newRow("auto, overridden") << true << true << "resetEdid {}";
        QTest::newRow("auto") << true << false << R"(selectModeline {"maxLinkRate":false,"modelineId":"m"})";
        QTest::newRow("manual")
            << false << false
            << R"(setEdidOverride {"edid":"00ff","filename":"","maxLinkRate":true,"modelineId":"m"})";
        QTest::newRow("manual, overridden")
            << false << true << R"(selectModeline {"maxLinkRate":true,"modelineId":"m"})";
    }
    void modesGoOut()
    {
        QFETCH(bool, isAuto);
        QFETCH(bool, isOverridden);
        QFETCH(QString, sent);
        if (isOverridden)
            set("edidOverride", R"("00aa")");
        QTRY_COMPARE(!value(OutputModel::OverrideEdidColumn).toString().isEmpty(), isOverridden);
        m_view->handleModelineIdChange(isAuto, QStringLiteral("m"), true);
        QCOMPARE(this->sent(), QStringLiteral("invoke /device/system/gpus/0/outputs/0/methods/") + sent);
        if (isAuto == isOverridden) // no mode is needed for these
            return;
        m_view->handleModelineIdChange(isAuto, {}, true);
        m_model->keepMode();
        QVERIFY(this->sent().endsWith(QStringLiteral("keepMode {}"))); // and nothing before
    }

    void anImportedEdidGoesOut()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("Wall.txt")));
        const QByteArray edid = "00FFFFFFFFFFFF00" + QByteArray(110, '0') + "06"; // the sum is 0
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(edid + "\r\n") > 0);
        file.close();
        m_view->findChild<ModelineDialog*>()->importFile(file.fileName());
        QCOMPARE(sent(), QStringLiteral("invoke /device/system/gpus/0/outputs/0/methods/setEdidOverride "
                                        "{\"edid\":\"%1\",\"filename\":\"Wall.txt\",\"maxLinkRate\":false,"
                                        "\"modelineId\":\"\"}")
                             .arg(QString::fromLatin1(edid.toLower())));
    }

    void showsWhatTheOutputTells()
    {
        QCOMPARE(text("display"), QStringLiteral("A & <b>B</b>"));
        QCOMPARE(text("fec"), QStringLiteral("No"));
        QCOMPARE(text("scanType"), QStringLiteral("Progressive"));
        QCOMPARE(text("colorDepth"), QStringLiteral("--"));
        QCOMPARE(text("resolution"), QStringLiteral("--"));
        const auto* sign = m_view->findChild<QWidget*>(QStringLiteral("errorIcon"));
        QVERIFY(!sign->isVisible());
        set("errorText", R"("<b>No</b> & no")");
        set("error", "true");
        QTRY_VERIFY(sign->isVisible());
        QCOMPARE(sign->toolTip(), QStringLiteral("&lt;b&gt;No&lt;/b&gt; &amp; no"));
        set("connected", "false");
        QTRY_COMPARE(text("display"), QStringLiteral("disconnected"));
        for (const char* row : {"scanType", "fec", "dsc"})
            QCOMPARE(text(row), QStringLiteral("--"));
        set("name", R"("DP-9")"); // which no signal goes to
        QTRY_VERIFY(!part<SwitchSelect>("target")->isEnabled());
        QVERIFY(!part<SwitchSelect>("target")->value().isValid());
        QVERIFY(!part<QWidget>("scaling")->isEnabled() && !part<QWidget>("background")->isEnabled());
    }

    void tellsWhatTheScreenDoes()
    {
        QCOMPARE(text("screen"), QStringLiteral("--"));
        set("screenRate", "59.9402");
        set("decodeLoad", "0.42");
        QTRY_COMPARE(text("decoding"), QStringLiteral("42 % of the time there is"));
        QCOMPARE(text("screen"), QStringLiteral("59.94 Hz, painted by the graphics card"));
        QCOMPARE(text("lostPictures"), QStringLiteral("none in the last minute"));
        const auto urgency = [this](const char* row) {
            return part<QWidget>(qPrintable(QLatin1String(row) + QStringLiteral("-value")))
                ->property("urgency")
                .toString();
        };
        QCOMPARE(urgency("decoding") + urgency("lostPictures"), QString());
        set("decodeLoad", "0.81"); // before anything is late
        QTRY_COMPARE(urgency("decoding"), QStringLiteral("soon"));
        QVERIFY(part<QWidget>("decoding-value")->toolTip().contains(QStringLiteral("may soon be late")));
        set("decodeLoad", "0.42");
        set("paintLoad", "0.85");
        QTRY_COMPARE(urgency("painting"), QStringLiteral("soon"));
        QCOMPARE(text("painting") + urgency("decoding"), QStringLiteral("85 % of the time there is"));
        QCOMPARE(m_model->screen().summary(), QStringLiteral("Screen: painting at its limit"));
        QVERIFY(part<QWidget>("painting-value")->toolTip().contains(QStringLiteral("smaller mode")));
        set("droppedPictures", "1");
        set("latePictures", "2");
        QTRY_COMPARE(text("lostPictures"), QStringLiteral("3 in the last minute"));
        QCOMPARE(urgency("lostPictures"), QStringLiteral("soon"));
        QCOMPARE(m_model->screen().summary(), QStringLiteral("Screen: 3 pictures lost"));
        set("screenRate", "0");
        QTRY_COMPARE(text("lostPictures"), QStringLiteral("--"));
        QVERIFY(m_model->screen().summary().isEmpty());
    }

private:
    template <typename T>
    T* part(const char* name) const
    {
        return m_view->findChild<T*>(QStringLiteral("VideoOutput-1-") + QLatin1String(name));
    }
    QString text(const char* row) const
    {
        return part<ElidedLabel>(qPrintable(QLatin1String(row) + QStringLiteral("-value")))->text();
    }
    QVariant value(int column) const { return m_model->index(0, column).data(); }
    /// The server changes a property of the output; the value is JSON.
    void set(const char* property, const QByteArray& value)
    {
        const QByteArray patch =
            QByteArray("[{\"op\":\"replace\",\"path\":\"/device/system/gpus/0/outputs/0/properties/") +
            property + "\",\"value\":" + value + "}]";
        m_peer->send(patch.constData());
    }
    ConfirmationDialog* question() const
    {
        return m_view->window()->findChild<ConfirmationDialog*>(QStringLiteral("VideoOutput-1-TargetDialog"));
    }
    void askForProgram(bool isMeant = true)
    {
        part<SwitchSelect>("target")->button(QStringLiteral("program_rgb"))->click();
        QVERIFY(question() && question()->isVisible());
        if (isMeant)
            question()->acceptButton()->click();
    }
    /// The next that goes out.
    QString sent()
    {
        if (!QTest::qWaitFor([this] { return !m_peer->link.received.empty(); }))
            return {};
        const QString first = describe(m_peer->link.received.front());
        m_peer->link.received.clear();
        return first;
    }

    std::unique_ptr<ScriptedPeer> m_peer;
    std::unique_ptr<OutputModel> m_model;
    std::unique_ptr<VideoOutputConfiguration> m_view;
};

HALCYRA_TEST(TestVideoOutputConfiguration)
#include "test_videooutputconfiguration.moc"
