#include "common/ui/shell/onairquestions.h"

#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "tests/common/playback/playerfixture.h"

using namespace vantrel;
using test::quoted;

class OnAirQuestionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<test::PlayerFixture>();
        QVERIFY(m_fixture->connectWithLibrary());
    }
    void cleanup() { m_fixture.reset(); }

    /// What an audience sees counts, whether it moves or stands.
    void asksWhileProgramHasAPicture_data()
    {
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<QString>("onAir");
        QTest::newRow("plays") << quoted("play") << QStringLiteral("Program is playing \"Walk-in\". ");
        QTest::newRow("paused, or held at its end")
            << quoted("pause") << QStringLiteral("Program is holding \"Walk-in\". ");
        QTest::newRow("stopped, which is black") << quoted("stop") << QString();
    }

    void asksWhileProgramHasAPicture()
    {
        QFETCH(QByteArray, state);
        QFETCH(QString, onAir);
        QWidget window;
        OnAirQuestions questions(m_fixture->peer.session, &window);
        const GUIPlayback* program = m_fixture->peer.session->sceneObjectProvider()->programPlayback();
        m_fixture->set("program", "media", quoted("brume://collections/1/slots/1"));
        m_fixture->set("program", "state", state);
        m_fixture->set("program", "volume", "0.25");
        QTRY_COMPARE(program->volume(), 0.25);
        QVERIFY(questions.beforeClear().startsWith(onAir));
        QCOMPARE(questions.beforeClear().isEmpty(), onAir.isEmpty());
        QCOMPARE(questions.beforeAnotherShow().isEmpty(), onAir.isEmpty());
        QCOMPARE(questions.beforeImport().isEmpty(), onAir.isEmpty());
        bool isDone = false;
        questions.beforeDisconnect([&isDone] { isDone = true; });
        QCOMPARE(isDone, onAir.isEmpty());
        if (isDone)
            return;
        const auto* dialog = window.findChild<ConfirmationDialog*>();
        QVERIFY(dialog && dialog->description().startsWith(onAir));
    }

private:
    std::unique_ptr<test::PlayerFixture> m_fixture;
};

HALCYRA_TEST(OnAirQuestionsTest)
#include "onairquestions.moc"
