#include "tests/integration/editwindow.h"
#include "tests/integration/randomoperator.h"
#include "tests/support/delayproxy.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <memory>

namespace vantrel::test {

namespace {

constexpr int roundsInTheSuite = 4;

/// Hears every change of the library from the server itself, without delay.
class Witness
{
public:
    Witness(quint16 port)
        : m_port(port)
    {
        QNetworkRequest request(address(QStringLiteral("sse?topic=collections&topic=playlists")));
        request.setRawHeader("Accept", "text/event-stream");
        m_stream.reset(m_manager.get(request));
        QObject::connect(m_stream.get(), &QNetworkReply::readyRead, m_stream.get(), [this] { read(); });
    }

    bool isListening() const { return m_isListening; }
    bool hasSeen(const QByteArray& mark) const { return m_seen.contains(mark); }
    /// The library as it is.
    QByteArray library()
    {
        const std::unique_ptr<QNetworkReply> reply(
            m_manager.get(QNetworkRequest(address(QStringLiteral("medialibrary")))));
        return QTest::qWaitFor([&] { return reply->isFinished(); }, 10000) ? reply->readAll() : QByteArray();
    }
    /// An edit by nobody's window.
    bool patch(const QByteArray& operations)
    {
        QNetworkRequest request(address(QStringLiteral("medialibrary")));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        const std::unique_ptr<QNetworkReply> reply(m_manager.sendCustomRequest(request, "PATCH", operations));
        return QTest::qWaitFor([&] { return reply->isFinished(); }, 10000) &&
               reply->error() == QNetworkReply::NoError;
    }

private:
    QUrl address(const QString& path) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/%2").arg(m_port).arg(path));
    }
    void read()
    {
        m_isListening = true;
        m_rest += m_stream->readAll();
        const qsizetype end = m_rest.lastIndexOf('\n');
        static const QRegularExpression mark(QStringLiteral("#\\d+-\\d+#"));
        auto found = mark.globalMatch(QString::fromUtf8(m_rest.left(end)));
        while (found.hasNext())
            m_seen.insert(found.next().captured().toUtf8());
        m_rest.remove(0, end + 1);
    }

    const quint16 m_port;
    QNetworkAccessManager m_manager;
    std::unique_ptr<QNetworkReply> m_stream;
    QByteArray m_rest;
    QSet<QByteArray> m_seen;
    bool m_isListening = false;
};

} // namespace

/// Two windows of one show on lines that are slow, each connection in its own way, and break in all ways:
/// what the operators did is there, or they were told that it is not, and in the end all hold the same.
/// HALCYRA_EDIT_ROUNDS sets the number of rounds, HALCYRA_TEST_SEED repeats one run.
class TestRandomEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allHoldTheSame();

private:
    struct Line
    {
        Line(const ServerPorts& ports, quint32 seed)
            : http(ports.http, seed)
            , link(ports.link, seed + 1)
            , window(http.port(), link.port(), ports.preview, seed)
        {
        }
        DelayProxy http;
        DelayProxy link;
        EditWindow window;
        QSet<QByteArray> made;       // marks of what was edited
        QSet<QByteArray> plain;      // and of edits that leave none in the library: moves, clears, points
        QSet<QByteArray> undone;     // and of what was taken back or made again since
        QHash<QByteArray, int> kept; // how many entries of keptList carry the mark
    };

    void act(Line& line);
    void cut(Line& line);
    void settle();
    void judge(Line& line);
    void judgeKept(Line& line);

    QRandomGenerator m_random;
    std::unique_ptr<Witness> m_witness;
    std::vector<std::unique_ptr<Line>> m_lines;
    int m_seen = 0, m_told = 0, m_kept = 0, m_plain = 0;
};

void TestRandomEdits::act(Line& line)
{
    const int kind = m_random.bounded(10);
    const auto answer = line.window.ask(kind < 6 ? "edit" : kind < 8 ? "undo" : "redo");
    QVERIFY2(answer, "a window is gone");
    const QByteArrayList words = answer->split(' ');
    const QByteArray& mark = words.first();
    if (mark.startsWith('?'))
        line.plain.insert(mark.mid(1));
    else if (mark.startsWith('#'))
        (kind < 6 ? line.made : line.undone).insert(mark);
    if (words.size() > 1)
        line.kept.insert(mark, words[1].toInt());
    if (kind >= 6)
        line.kept.remove(mark);
    if (m_random.bounded(4) == 0)
        QVERIFY(line.window.ask("settle")); // else several are under way at once
}

void TestRandomEdits::cut(Line& line)
{
    switch (m_random.bounded(4)) {
    case 0:
        return line.http.cutStreams();
    case 1:
        return line.http.cutRequests();
    case 2:
        return line.http.cutAll();
    default:
        return line.link.cutAll();
    }
}

/// What is under way arrives, and all three hold the same.
void TestRandomEdits::settle()
{
    for (const auto& line : m_lines)
        QCOMPARE(line->window.ask("settle").value_or("gone"), QByteArray("settled"));
    QByteArray server;
    QByteArray windows[2];
    const bool isSame = QTest::qWaitFor(
        [&] {
            server = m_witness->library();
            for (std::size_t i = 0; i < m_lines.size(); ++i)
                windows[i] = m_lines[i]->window.ask("library").value_or("gone");
            return !server.isEmpty() && windows[0] == server && windows[1] == server;
        },
        30000);
    if (!isSame)
        qInfo("server: %s\nfirst:  %s\nsecond: %s", server.constData(), windows[0].constData(),
              windows[1].constData());
    QVERIFY(isSame);
}

void TestRandomEdits::judge(Line& line)
{
    const QByteArray told = line.window.ask("told").value_or("gone");
    QSet<QByteArray> refused, unknown;
    for (const QByteArray& title : told.split('\t')) {
        const QByteArray mark = title.mid(title.lastIndexOf(' ') + 1);
        (title.startsWith("Nobody knows") ? unknown : refused).insert(mark);
    }
    const QByteArrayList taken = line.window.ask("done").value_or("gone").split('\t');
    const QSet<QByteArray> done(taken.begin(), taken.end());
    for (const QByteArray& mark : std::as_const(line.plain)) {
        // Of what was taken back the command may be gone before its answer.
        const bool isHeard = done.contains(mark) || refused.contains(mark) || unknown.contains(mark);
        QVERIFY2(isHeard || line.undone.contains(mark), "neither taken nor refused: " + mark);
        m_plain += isHeard;
    }
    for (const QByteArray& mark : std::as_const(line.made)) {
        const bool isSeen = m_witness->hasSeen(mark);
        const bool isTold = refused.contains(mark) || unknown.contains(mark);
        QVERIFY2(isSeen || isTold, "neither there nor refused: " + mark);
        QVERIFY2(isSeen || !done.contains(mark), "taken, and not there: " + mark);
        // What was taken back or made again may have been refused then.
        QVERIFY2(!isSeen || !refused.contains(mark) || line.undone.contains(mark),
                 "there, and refused: " + mark);
        m_seen += isSeen;
        m_told += isTold;
        if (!isSeen)
            line.kept.remove(mark);
    }
    line.made.clear();
    line.plain.clear();
    line.undone.clear();
}

/// Whatever anybody did to the list since, every entry that was added is there, and once.
void TestRandomEdits::judgeKept(Line& line)
{
    const QByteArray library = m_witness->library();
    for (auto kept = line.kept.cbegin(); kept != line.kept.cend(); ++kept, ++m_kept)
        QVERIFY2(library.count(kept.key()) == kept.value(), QByteArray::number(library.count(kept.key())) +
                                                                " of " + kept.key() + " are there, not " +
                                                                QByteArray::number(kept.value()));
}

void TestRandomEdits::allHoldTheSame()
{
    allowWarnings(QString()); // lines that break make many
    if (isEditWindow())
        return runEditWindow();
    if (!OmbraProcess::isAvailable())
        QSKIP("HALCYRA_BIN names no folder with ombra in it");
    const int rounds = qEnvironmentVariableIntValue("HALCYRA_EDIT_ROUNDS");
    const quint32 seed = qEnvironmentVariableIsSet("HALCYRA_TEST_SEED")
                             ? quint32(qEnvironmentVariableIntValue("HALCYRA_TEST_SEED"))
                         : rounds > 0 ? QRandomGenerator::global()->generate() >> 8
                                      : 20261125;
    qInfo("seed %u", seed);
    m_random.seed(seed);
    OmbraProcess server;
    QVERIFY2(server.start(), server.output().constData());
    m_witness = std::make_unique<Witness>(server.ports().http);
    QTRY_VERIFY_WITH_TIMEOUT(m_witness->isListening(), 10000);
    const QByteArray list = QByteArray::number(keptList);
    QVERIFY(m_witness->patch("[{\"op\":\"add\",\"path\":\"/playlists/" + list +
                             "\",\"value\":{\"name\":\"kept\",\"entries\":{}}}]"));
    for (const quint32 window : {10, 20})
        m_lines.push_back(std::make_unique<Line>(server.ports(), seed + window));
    for (const auto& line : m_lines)
        QCOMPARE(line->window.ask("settle").value_or("gone"), QByteArray("settled"));

    const int last = rounds > 0 ? rounds : roundsInTheSuite;
    for (int round = 1; round <= last && !QTest::currentTestFailed(); ++round) {
        const int steps = 8 + m_random.bounded(12);
        const int cutAt = m_random.bounded(2 * steps);
        for (int i = 0; i < steps && !QTest::currentTestFailed(); ++i) {
            Line& line = *m_lines[m_random.bounded(2)];
            if (i == cutAt)
                cut(line);
            act(line);
        }
        if (!QTest::currentTestFailed())
            settle();
        m_kept = 0;
        for (const auto& line : m_lines)
            if (!QTest::currentTestFailed())
                judge(*line);
        for (const auto& line : m_lines)
            if (!QTest::currentTestFailed())
                judgeKept(*line);
        if (QTest::currentTestFailed())
            qInfo("failed in round %d of seed %u", round, seed);
    }
    qInfo("%d rounds: %d edits there, %d refused aloud, %d entries kept, %d edits without a mark answered",
          last, m_seen, m_told, m_kept, m_plain);
    QVERIFY(m_seen > last && m_kept > 0 && m_plain > 0);
    m_lines.clear();
    m_witness.reset();
}

} // namespace vantrel::test

using vantrel::test::TestRandomEdits;
HALCYRA_TEST(TestRandomEdits)
#include "test_randomedits.moc"
