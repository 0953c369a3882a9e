#include "common/playback/playbackwidget.h"
#include "common/playback/seekslider.h"
#include "tests/common/playback/playerfixture.h"
#include "tests/support/testmain.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>

using namespace vantrel;
using namespace vantrel::test;

/// The player as a screen reader tells it.
class TestAccessibility : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PlayerFixture>();
        m_fixture->peer.http.handler = [rest = m_fixture->peer.http.handler](
                                           const ScriptedHttp::Request& request) -> ScriptedHttp::Reply {
            if (request.target.contains("/metadata/") && request.target.contains("b.mp4"))
                return {200, R"({"type":"videoFile","isPlayable":false,"error":"The file is empty."})"};
            return rest(request);
        };
        QVERIFY(m_fixture->connectWithLibrary());
        m_fixture->set("program", "sourceMode", "1");
        m_fixture->set("program", "media", quoted("brume://collections/1/slots/1"));
        m_fixture->set("program", "state", quoted("play"));
        m_fixture->set("program", "mediaPosition", "2.5");
        QTRY_COMPARE(value("Program-PlaybackWidget-PlaybackTimecodes-Playhead"),
                     QStringLiteral("00:00:02.500"));
    }
    void cleanup()
    {
        m_fixture.reset();
        m_sent.clear();
    }

    void timesTellTheirValue()
    {
        QCOMPARE(name("Program-PlaybackWidget-PlaybackTimecodes-Remaining"), QStringLiteral("Time left"));
        QCOMPARE(value("Program-PlaybackWidget-PlaybackTimecodes-Remaining"), QStringLiteral("00:00:05.500"));
        QCOMPARE(value("Program-PlaybackWidget-EndpointTimecodes-Outpoint"), QStringLiteral("00:00:08.000"));
    }

    void timelineTellsItsPosition()
    {
        for (const char* part : {"", "-playhead"}) {
            const QByteArray name = QByteArray("Program-PlaybackWidget-SeekSlider") + part;
            QAccessibleInterface* timeline = interface(name.constData());
            QCOMPARE(timeline->role(), QAccessible::Slider);
            QCOMPARE(timeline->text(QAccessible::Value), QStringLiteral("00:00:02.500 of 00:00:10.000"));
            QVERIFY(timeline->valueInterface());
            QCOMPARE(timeline->valueInterface()->currentValue().toDouble(), 2.5);
            QCOMPARE(timeline->valueInterface()->maximumValue().toDouble(), 10.0);
        }
        QCOMPARE(value("Program-PlaybackWidget-SeekSlider-inMarker"),
                 QStringLiteral("00:00:01.000 of 00:00:10.000"));
    }

    /// Preview's parts move by their values, program's only once its lock is open, its marks never.
    void timelineMovesByItsValue()
    {
        m_fixture->set("preview", "sourceMode", "1");
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1"));
        auto* preview = m_fixture->part<SeekSlider>("Preview-PlaybackWidget-SeekSlider");
        QTRY_COMPARE(preview->outpoint(), 8.0);
        m_fixture->takeSent();
        move("Preview-PlaybackWidget-SeekSlider", 3.5);
        QTRY_VERIFY(sent().contains(QStringLiteral("preview/methods/seekMedia {\"mediaPosition\":3.5}")));
        move("Preview-PlaybackWidget-SeekSlider-playhead", 99);
        QTRY_VERIFY(sent().contains(QStringLiteral("preview/methods/seekMedia {\"mediaPosition\":8.0}")));
        move("Preview-PlaybackWidget-SeekSlider-inMarker", 2.0);
        QTRY_COMPARE(m_fixture->patches.size(), 1);
        QVERIFY2(m_fixture->patches[0].contains("/inpoint"), m_fixture->patches[0].constData());

        move("Program-PlaybackWidget-SeekSlider", 4.5); // locked, for the mouse and for keys as well
        move("Program-PlaybackWidget-SeekSlider-outMarker", 4.5);
        auto* program = m_fixture->part<SeekSlider>("Program-PlaybackWidget-SeekSlider");
        QTest::mouseClick(program, Qt::LeftButton, {}, program->rect().center());
        QTest::keyClick(program, Qt::Key_Right);
        m_fixture->part<QAbstractButton>("Program-PlaybackWidget-Header-Lock")->click();
        move("Program-PlaybackWidget-SeekSlider", 5.5);
        QTRY_VERIFY(sent().contains(QStringLiteral("program/methods/seekMedia {\"mediaPosition\":5.5}")));
        QCOMPARE(m_sent.count(QStringLiteral("/program/methods/")), 1);
        QCOMPARE(m_fixture->patches.size(), 1);
    }

    void slotsTellNumberNameAndState()
    {
        auto* view = m_fixture->part<QAbstractItemView>("MediaPanel-slots-view");
        QTRY_VERIFY(view->model() && view->model()->rowCount(view->rootIndex()) == 3);
        QAccessibleInterface* list = QAccessible::queryAccessibleInterface(view);
        const auto row = [&](int number) {
            QAccessibleInterface* child = list->tableInterface()->cellAt(number, 0);
            return child ? child->text(QAccessible::Name) : QString();
        };
        QTRY_COMPARE(row(0), QStringLiteral("Slot 1, Walk-in, on program, playing"));
        QTRY_COMPARE(row(1), QStringLiteral("Slot 2, Logo, playable"));
        QTRY_COMPARE(row(2), QStringLiteral("Slot 3, cannot be played, The file is empty."));
    }

private:
    QAccessibleInterface* interface(const char* name) const
    {
        return QAccessible::queryAccessibleInterface(m_fixture->part<QWidget>(name));
    }
    void move(const char* name, double seconds) const
    {
        interface(name)->valueInterface()->setCurrentValue(seconds);
    }
    /// All that went over the link.
    const QString& sent() { return m_sent += m_fixture->takeSent() + u'\n'; }
    QString value(const char* name) const { return interface(name)->text(QAccessible::Value); }
    QString name(const char* name) const { return interface(name)->text(QAccessible::Name); }

    std::unique_ptr<PlayerFixture> m_fixture;
    QString m_sent;
};

HALCYRA_TEST(TestAccessibility)
#include "test_accessibility.moc"
