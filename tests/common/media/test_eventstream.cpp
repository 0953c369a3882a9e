#include "common/media/library/eventstream.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <random>

using namespace vantrel;

namespace {

/// Feeds the pieces and parses as a client does.
QList<QByteArray> read(EventStream& stream, const QList<QByteArray>& pieces)
{
    QList<QByteArray> messages;
    for (const QByteArray& piece : pieces) {
        if (stream.assemble(piece) == EventStream::State::Complete)
            stream.parse([&](const QByteArray& data) { messages.append(data); });
    }
    return messages;
}

} // namespace

class TestEventStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messages_data();
    void messages();
    void goesOnWhereItStopped();
    void passesOverComments();
    void randomCutsChangeNothing();
    void passesOverWhatIsLarge();
    void endsAtAnyNumberOfLineBreaks();
    void endlessMessageIsDropped();
};

void TestEventStream::messages_data()
{
    QTest::addColumn<QList<QByteArray>>("pieces");
    QTest::addColumn<QList<QByteArray>>("data");
    using List = QList<QByteArray>;
    QTest::newRow("one") << List{"data: [1]\n\n"} << List{"[1]\n"};
    QTest::newRow("boundary later") << List{"data: [1]\n", "\n"} << List{"[1]\n"};
    QTest::newRow("two in one read") << List{"data: [1]\n\ndata: [2]\n\n"} << List{"[1]\n", "[2]\n"};
    QTest::newRow("second is cut") << List{"data: [1]\n\nda", "ta: [2]\n\n"} << List{"[1]\n", "[2]\n"};
    QTest::newRow("lines are joined") << List{"data: [\ndata: 1]\n\n"} << List{"[\n1]\n"};
    QTest::newRow("blanks collapse") << List{"data:  a   b \n\n"} << List{"a b\n"};
    QTest::newRow("no end") << List{"data: [1]\n"} << List{};
}

void TestEventStream::messages()
{
    QFETCH(QList<QByteArray>, pieces);
    EventStream stream;
    QTEST(read(stream, pieces), "data");
}

/// What was left is there the next time, also when more has come by then.
void TestEventStream::goesOnWhereItStopped()
{
    EventStream stream;
    QList<QByteArray> messages;
    const auto one = [&] {
        return stream.parse([&](const QByteArray& data) { messages.append(data); }, [] { return false; });
    };
    stream.assemble("data: 1\n\ndata: 2\n\nda");
    QVERIFY(!one());
    QCOMPARE(messages, QList<QByteArray>{"1\n"});
    stream.assemble("ta: 3\n\n");
    QVERIFY(!one());
    QVERIFY(one());
    QCOMPARE(messages, (QList<QByteArray>{"1\n", "2\n", "3\n"}));
    QCOMPARE(stream.buffered(), 0);
}

/// A server says each second that it is there: that is passed over in silence, wherever it comes, and leaves
/// nothing behind. What is no field is said once.
void TestEventStream::passesOverComments()
{
    EventStream stream;
    QVERIFY(read(stream, {": keep-alive\n\n", ":\n\n"}).isEmpty());
    QCOMPARE(stream.buffered(), 0);
    QCOMPARE(read(stream, {"data: [1\n:\n", "data: ]\n\n:\n\n"}), QList<QByteArray>{"[1\n]\n"});
    test::expectWarning(QStringLiteral("Unhandled field in SSE stream: "));
    test::expectWarning(QStringLiteral("Invalid line in SSE stream: "));
    QCOMPARE(read(stream, {"event: x\nnothing\n\n", ":\n\n"}), QList<QByteArray>{});
    QCOMPARE(stream.buffered(), 0);
}

void TestEventStream::randomCutsChangeNothing()
{
    std::mt19937 random(7);
    QByteArray text;
    QList<QByteArray> expected;
    for (int i = 0; i < 50; ++i) {
        const QByteArray body(static_cast<qsizetype>(1 + random() % 200), static_cast<char>('a' + i % 26));
        text += "data: " + body + "\n\n";
        expected.append(body + '\n');
    }
    for (int round = 0; round < 200; ++round) {
        QList<QByteArray> pieces;
        for (qsizetype at = 0; at < text.size();) {
            const qsizetype size = 1 + static_cast<qsizetype>(random() % 400);
            pieces.append(text.mid(at, size));
            at += size;
        }
        EventStream stream;
        QCOMPARE(read(stream, pieces), expected);
    }
}

void TestEventStream::endsAtAnyNumberOfLineBreaks()
{
    for (int breaks = 2; breaks < 7; ++breaks) {
        EventStream stream;
        const QByteArray text = "data: [1]" + QByteArray(breaks, '\n') + "data: [2]\n\n";
        QCOMPARE(read(stream, {text}), (QList<QByteArray>{"[1]\n", "[2]\n"}));
        EventStream cut;
        QCOMPARE(read(cut, {text.left(9 + breaks), text.mid(9 + breaks)}),
                 (QList<QByteArray>{"[1]\n", "[2]\n"}));
    }
}

/// However it is cut, a large message is told of once and kept by nobody, and its neighbours are read.
void TestEventStream::passesOverWhatIsLarge()
{
    const QByteArray text =
        "data: [1]\n\ndata: " + QByteArray(3 * EventStream::maxMessage, 'x') + "\n\ndata: [2]\n\n";
    for (const qsizetype size : {text.size(), qsizetype(700'001), qsizetype(1 << 16)}) {
        EventStream stream;
        QList<QByteArray> messages;
        for (qsizetype at = 0; at < text.size(); at += size) {
            messages += read(stream, {text.mid(at, size)});
            QVERIFY(stream.buffered() <= EventStream::maxMessage);
        }
        QCOMPARE(messages, (QList<QByteArray>{"[1]\n", QByteArray(), "[2]\n"}));
        QVERIFY(messages[1].isNull());
    }
    // Its end may come in two halves.
    EventStream stream;
    QCOMPARE(read(stream, {QByteArray("data: ") + QByteArray(EventStream::maxMessage, 'x') + '\n',
                           "\ndata: [2]\n\n"}),
             (QList<QByteArray>{QByteArray(), "[2]\n"}));
}

void TestEventStream::endlessMessageIsDropped()
{
    EventStream stream;
    const QByteArray piece(8 * 1024 * 1024, 'x');
    int fed = 0;
    while (fed < 20 && stream.assemble(piece) == EventStream::State::Waiting)
        ++fed;
    QCOMPARE(fed, 8);
    QCOMPARE(stream.buffered(), 0);
    QCOMPARE(read(stream, {"data: [1]\n\n"}), QList<QByteArray>{"[1]\n"});
}

HALCYRA_TEST(TestEventStream)
#include "test_eventstream.moc"
