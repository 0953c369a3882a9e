#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/serverprobe.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString output = QStringLiteral("/device/system/gpus/0/outputs/0/properties/");
const QString configuration = QStringLiteral("VideoOutput-1-");
const QString dialog = QStringLiteral("VideoOutput-1-ModelineDialog");

} // namespace

/// The OUTPUTS tab as an operator sets up a stage: what shows what, whose EDID counts, in which mode.
class OutputsOfTheStage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(makeNumberedClip(m_folder.filePath(QStringLiteral("clip.mp4")), QColor(220, 0, 0), 25));
        m_ombra.setMediaFolder(m_folder.path());
        m_ombra.setOptions({QStringLiteral("--simulate-outputs")});
        QVERIFY2(m_ombra.start(), m_ombra.output().constData());
        m_server.setPorts(m_ombra.ports());
        QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
        QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
        QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-outputs-button")));
        QVERIFY(becomes(QStringLiteral("Mapping-output1-target"), QStringLiteral("PREVIEW")));
    }

    void swapsTheTargets()
    {
        const QString question = configuration + QStringLiteral("TargetDialog");
        QVERIFY(m_robot.click(configuration + QStringLiteral("target-program")));
        QVERIFY(!m_robot.waitFor(question).isEmpty());
        QVERIFY(m_robot.click(question + QStringLiteral("-cancel-button")));
        QTRY_VERIFY(m_robot.find(configuration + QStringLiteral("target-preview"))["checked"].toBool());
        QCOMPARE(target(0), QStringLiteral("DP-1"));

        QVERIFY(m_robot.click(configuration + QStringLiteral("target-program")));
        QVERIFY(!m_robot.waitFor(question).isEmpty());
        QVERIFY(m_robot.click(question + QStringLiteral("-accept-button")));
        QTRY_COMPARE(target(0), QStringLiteral("DP-2"));
        QCOMPARE(target(1), QStringLiteral("DP-1"));
        QVERIFY(becomes(QStringLiteral("Mapping-output1-target"), QStringLiteral("PROGRAM")));
        QVERIFY(becomes(QStringLiteral("Mapping-output2-target"), QStringLiteral("PREVIEW")));
    }

    void takesAnEdidFromAFile()
    {
        QFile corpus(QFINDTESTDATA("../fuzz/corpus/edid/ombra-1"));
        QVERIFY(corpus.open(QIODevice::ReadOnly));
        const QByteArray edid = corpus.readAll().mid(1);
        QByteArray damaged = edid;
        damaged[60] = static_cast<char>(damaged[60] ^ 1);
        write(QStringLiteral("wall.bin"), edid);
        write(QStringLiteral("damaged.bin"), damaged);

        QVERIFY(m_robot.mouse(QStringLiteral("click"), pencil()));
        QVERIFY(!m_robot.waitFor(dialog).isEmpty());
        QVERIFY(m_robot.click(dialog + QStringLiteral("-mode-manual")));
        import(QStringLiteral("damaged.bin"));
        QVERIFY(!m_robot.waitFor(QStringLiteral("ErrorDialog")).isEmpty());
        QVERIFY(m_robot.click(QStringLiteral("ErrorDialog-accept-button")));
        QCOMPARE(m_server.property(output + QStringLiteral("edidOverride")).toString(), QString());

        import(QStringLiteral("wall.bin"));
        QTRY_COMPARE(m_server.property(output + QStringLiteral("edidOverride")).toString(),
                     QString::fromLatin1(edid.toHex()));
        QVERIFY(becomes(dialog + QStringLiteral("-edidFile"), QStringLiteral("wall.bin")));
    }

    /// Which the audience sees by now, so that it goes back unless it is kept.
    void picksAMode()
    {
        choose(QStringLiteral("3840 x 2160p 50 Hz"));
        QVERIFY(m_robot.click(QStringLiteral("KeepModeDialog-accept-button")));
        QTRY_COMPARE(m_server.property(output + QStringLiteral("confirmSeconds")).toInt(-1), 0);
        QCOMPARE(m_server.property(output + QStringLiteral("height")).toInt(), 2160);

        choose(QStringLiteral("1280 x 720p 50 Hz"));
        QVERIFY(m_robot.click(QStringLiteral("KeepModeDialog-cancel-button")));
        QTRY_COMPARE(m_server.property(output + QStringLiteral("height")).toInt(), 2160);
        QVERIFY(m_robot.click(dialog + QStringLiteral("-cancel-button")));
        QVERIFY(becomes(configuration + QStringLiteral("resolution-value"), QStringLiteral("3840 x 2160")));
    }

    void followsTheDisplay()
    {
        QCOMPARE(plug("{\"connected\":false}"), 200);
        QVERIFY(becomes(configuration + QStringLiteral("display-value"), QStringLiteral("disconnected")));
        QCOMPARE(plug("{\"connected\":true,\"edid\":\"00\"}"), 422);
        QCOMPARE(plug("{\"connected\":true}"), 200);
        QVERIFY(becomes(configuration + QStringLiteral("display-value"), QStringLiteral("Ombra Monitor")));
    }

    void setsAllBack()
    {
        QVERIFY(m_robot.click(QStringLiteral("PlayerTab-outputs-menu-button")));
        QVERIFY(m_robot.clickMenuEntry(QStringLiteral("PlayerTab-outputs-menu"),
                                       QStringLiteral("Reset to defaults")));
        QVERIFY(!m_robot.waitFor(QStringLiteral("ResetOutputsDialog")).isEmpty());
        QVERIFY(m_robot.click(QStringLiteral("ResetOutputsDialog-accept-button")));
        QTRY_COMPARE(target(0), QStringLiteral("DP-1"));
        QCOMPARE(m_server.property(output + QStringLiteral("edidOverride")).toString(), QString());
        QVERIFY(becomes(configuration + QStringLiteral("resolution-value"), QStringLiteral("1920 x 1080")));
    }

    void endsCleanly() { QCOMPARE(m_app.stop(), 0); }

private:
    QString target(int mapping) const
    {
        return m_server
            .property(QStringLiteral("/device/channels/0/mappings/%1/properties/target").arg(mapping))
            .toString();
    }
    bool becomes(const QString& name, const QString& text)
    {
        return QTest::qWaitFor([&] { return m_robot.text(name) == text; }, 10000);
    }
    /// Of the first output; that of the second has the same name, and stands below.
    QJsonObject pencil()
    {
        QJsonObject upper;
        for (const QJsonValue& one :
             m_robot.ask({{QStringLiteral("objectName"), QStringLiteral("editButton")},
                          {QStringLiteral("maxResults"), 2}})) {
            const QJsonObject button = one.toObject();
            if (upper.isEmpty() || button["global_y"].toInt() < upper["global_y"].toInt())
                upper = button;
        }
        return upper;
    }
    void write(const QString& name, const QByteArray& bytes)
    {
        QFile file(m_files.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    void import(const QString& name)
    {
        QVERIFY(m_robot.click(dialog + QStringLiteral("-import-button")));
        QVERIFY(!m_robot.waitFor(QStringLiteral("fileNameEdit")).isEmpty());
        m_robot.type(m_files.filePath(name));
        m_robot.key(QStringLiteral("Enter"));
    }
    /// By the arrows, from the first format on.
    void choose(const QString& format)
    {
        const QString menu = dialog + QStringLiteral("-format");
        // A desktop gives the window below a closed dialog the keys by itself.
        m_robot.ask(
            {{QStringLiteral("operation"), QStringLiteral("raise")}, {QStringLiteral("objectName"), dialog}});
        m_robot.ask(
            {{QStringLiteral("operation"), QStringLiteral("focus")}, {QStringLiteral("objectName"), menu}});
        m_robot.key(QStringLiteral("Home"));
        for (int i = 0; i < 80 && m_robot.text(menu) != format; ++i)
            m_robot.key(QStringLiteral("Down"));
        QCOMPARE(m_robot.text(menu), format);
        QVERIFY(m_robot.click(dialog + QStringLiteral("-apply-button")));
        QVERIFY(!m_robot.waitFor(QStringLiteral("KeepModeDialog")).isEmpty());
    }
    /// A hand at the connector; the status of the answer.
    int plug(const QByteArray& body)
    {
        QNetworkRequest request(QUrl(
            QStringLiteral("http://127.0.0.1:%1/api/brume/v1/simulate/outputs/0").arg(m_ombra.ports().http)));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        const std::unique_ptr<QNetworkReply> reply(m_network.post(request, body));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        return reply->isFinished() || finished.wait(10000)
                   ? reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt()
                   : 0;
    }

    QTemporaryDir m_folder;
    QTemporaryDir m_files;
    OmbraProcess m_ombra;
    ServerProbe m_server;
    AppProcess m_app;
    RobotClient m_robot;
    QNetworkAccessManager m_network;
};

HALCYRA_TEST(OutputsOfTheStage)
#include "outputs.moc"
