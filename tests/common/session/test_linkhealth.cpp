#include "common/command/execute.h"
#include "common/command/invokemethodcommand.h"
#include "common/media/library/medialibraryapi.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/session/link/linkhealth.h"
#include "common/session/link/previewthread.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "tarn/scene/object.h"
#include "tarn/scene/scene.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QUndoStack>

namespace vantrel::test {

using State = LinkHealth::State;

namespace {

constexpr auto markerPath = "/device/showConfiguration/properties/autoStartShow";

QByteArray replacement(const QByteArray& path, const QByteArray& value)
{
    return "{\"op\":\"replace\",\"path\":\"" + path + "\",\"value\":" + value + '}';
}

/// The server changes a property of program; the value is JSON.
QByteArray set(const char* property, const QByteArray& value)
{
    return replacement(QByteArray("/device/channels/0/program/properties/") + property, value);
}

} // namespace

/// What the session makes of a server's silence, on a clock of the test's.
class TestLinkHealth : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        allowWarnings(QStringLiteral("Not done"));
        allowWarnings(QStringLiteral("Getting system property failed"));
        m_peer = std::make_unique<ScriptedPeer>();
        m_late = 0;
        health()->setClock([this] { return ConnectionHandler::now() + m_late; });
    }
    void cleanup() { m_peer.reset(); }

    void judgesByWhatTheServerOwes_data()
    {
        QTest::addColumn<QByteArray>("lastWord");
        QTest::addColumn<State>("state");
        QTest::newRow("never a word") << QByteArray() << State::Silent;
        QTest::newRow("its signs of life stop") << QByteArray("[]") << State::Silent;
        QTest::newRow("it never gives any, and stands") << '[' + set("volume", "1") + ']' << State::Current;
        QTest::newRow("it never gives any, and a position stops that moved")
            << '[' + set("state", "\"play\"") + ',' + set("mediaPosition", "2.5") + ']' << State::Silent;
    }
    void judgesByWhatTheServerOwes()
    {
        QFETCH(QByteArray, lastWord);
        QVERIFY(connectToChannel(!lastWord.isEmpty()));
        if (!lastWord.isEmpty())
            QVERIFY(hears(lastWord));
        if (lastWord.contains("mediaPosition"))
            program()->setDuration(10.0);
        m_late = 800;
        health()->check();
        QCOMPARE(health()->state(), State::Current);
        m_late = 3600;
        health()->check();
        QTEST(health()->state(), "state");
        QCOMPARE(health()->text().isEmpty(), health()->state() == State::Current);
        if (health()->state() == State::Silent) {
            QVERIFY2(health()->text().startsWith(QStringLiteral("No answer for 3 s")),
                     qPrintable(health()->text()));
            QVERIFY(hears("[]"));
            m_late = 0;
            health()->check();
            QCOMPARE(health()->state(), State::Current);
        }
    }

    void sendsNothingIntoTheSilence()
    {
        QVERIFY(connectToChannel(true));
        QVERIFY(hears("[]"));
        m_late = 1500;
        health()->check();
        QCOMPARE(health()->state(), State::Silent);
        const std::size_t before = m_peer->link.received.size();
        Session* session = m_peer->session;
        Object* channel = session->getScene()->findObject("/device/channels/0");
        QVERIFY(!tryExecute<InvokeMethodCommand>(session->getQUndoStack(), channel, QStringLiteral("take"),
                                                 VariantMap(), QStringLiteral("Take")));
        program()->setVolume(0.25); // by a road beside the commands
        QVERIFY(hears("[]"));
        m_late = 0;
        health()->check();
        // The first word after it asks for what was changed here alone; the take is not among what came.
        QTRY_COMPARE(m_peer->link.received.size(), before + 1);
        QCOMPARE(describe(m_peer->link.received.back()),
                 QStringLiteral("get /device/channels/0/program/properties/volume"));
        QVERIFY(tryExecute<InvokeMethodCommand>(session->getQUndoStack(), channel, QStringLiteral("take"),
                                                VariantMap(), QStringLiteral("Take")));
        QTRY_COMPARE(m_peer->link.received.size(), before + 2);
    }

    void countsFromTheLossToTheLink()
    {
        QVERIFY(connectToChannel(true));
        m_peer->link.socket->disconnectFromHost();
        QTRY_COMPARE(health()->state(), State::Lost);
        m_late = 3672500;
        health()->check();
        QVERIFY2(health()->text().startsWith(QStringLiteral("Lost for 1:01:1")),
                 qPrintable(health()->text()));
        QTRY_COMPARE_WITH_TIMEOUT(health()->state(), State::Current, 10000);
        m_peer->session->connectionHandler()->disconnect();
        QCOMPARE(health()->state(), State::None); // left, and not lost
        QVERIFY(health()->text().isEmpty() && health()->detail().isEmpty());
    }

    void tellsWhichHalfIsGone()
    {
        QVERIFY(connectToChannel(true));
        QVERIFY(hears("[]"));
        health()->setLibraryCurrent(true);
        QVERIFY(health()->detail().isEmpty());
        health()->setLibraryCurrent(false);
        m_late = 1500;
        health()->check();
        QTRY_VERIFY(health()->detail().contains(QStringLiteral("library answers")));
        QVERIFY(hears("[]"));
        m_late = 0;
        health()->check();
        QVERIFY(health()->detail().isEmpty());
    }

    void saysThatTheLibraryIsGone()
    {
        QVERIFY(connectToChannel(true));
        QTRY_VERIFY(m_peer->session->getMediaLibraryApi()->isCurrent());
        health()->setLibraryCurrent(false);
        health()->check();
        QVERIFY(health()->detail().isEmpty()); // it may be on its way
        m_late = 3600;
        health()->check(); // of players that stand nothing is owed
        QCOMPARE(health()->state(), State::Current);
        QVERIFY2(health()->detail().contains(QStringLiteral("edits are refused")),
                 qPrintable(health()->detail()));
    }

    /// Without a link a press would go nowhere, though the scene of the last one still stands.
    void sendsNothingWithoutALink()
    {
        QVERIFY(connectToChannel(true));
        Session* session = m_peer->session;
        Object* channel = session->getScene()->findObject("/device/channels/0");
        session->connectionHandler()->disconnect();
        QTRY_COMPARE(health()->state(), State::None);
        NotificationManagerImpl::instance()->clear();
        QVERIFY(!tryExecute<InvokeMethodCommand>(session->getQUndoStack(), channel, QStringLiteral("take"),
                                                 VariantMap(), QStringLiteral("Take")));
        const auto told = NotificationManagerImpl::instance()->notifications();
        QCOMPARE(told.size(), 1);
        QVERIFY(told.first()->details().contains(QStringLiteral("no connection")));
    }

    void opensThePreviewAgain()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        PreviewThread preview(server.serverPort());
        preview.subscribe(boost::asio::ip::address_v4::loopback());
        QTRY_VERIFY(server.hasPendingConnections());
        allowWarnings(QStringLiteral("The preview ended"));
        delete server.nextPendingConnection();
        QTRY_VERIFY(server.hasPendingConnections());
        // One that is cut without a word, while the server speaks elsewhere.
        const std::unique_ptr<QTcpSocket> cut(server.nextPendingConnection());
        preview.setServerAnswers(true);
        QTRY_VERIFY_WITH_TIMEOUT(server.hasPendingConnections(), 15000);
    }

private:
    LinkHealth* health() const { return m_peer->session->linkHealth(); }
    GUIPlayback* program() const { return m_peer->session->sceneObjectProvider()->programPlayback(); }

    bool connectToChannel(bool speaks)
    {
        if (!m_peer->connect() || !QTest::qWaitFor([this] { return !m_peer->link.received.empty(); }))
            return false;
        return !speaks || hears(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
    }

    /// The server says so, and the session has taken it.
    bool hears(const QByteArray& patch)
    {
        const qint64 before = m_peer->session->connectionHandler()->lastWord();
        // A change of its own after the word tells that the word was taken.
        const int marker = ++m_marker;
        m_peer->send(patch.constData());
        m_peer->send(QByteArray('[' + replacement(markerPath, '"' + QByteArray::number(marker) + '"') + ']')
                         .constData());
        const bool isTaken = QTest::qWaitFor([&] {
            const Path path(markerPath);
            Variant value;
            Scene* scene = m_peer->session->getScene();
            scene->getProperty(scene->find(PathView(path)), value);
            return value.asString(-1) == std::to_string(marker);
        });
        return isTaken && m_peer->session->connectionHandler()->lastWord() >= before;
    }

    std::unique_ptr<ScriptedPeer> m_peer;
    qint64 m_late = 0;
    int m_marker = 0;
};

HALCYRA_TEST(TestLinkHealth)

} // namespace vantrel::test

#include "test_linkhealth.moc"
