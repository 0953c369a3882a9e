#include "tests/robot/monkeyhand.h"
#include "tests/robot/servertruth.h"
#include "tests/support/appprocess.h"
#include "tests/support/hostilepeer.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <utility>

using namespace vantrel::test;

namespace {

constexpr int actsBetweenChecks = 15;
constexpr int actsBetweenDisturbances = 25;
constexpr int longRoundMs = 60000;
constexpr int shortRoundMs = 6000;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr qint64 longestAnswerMs = 5000;
#else
constexpr qint64 longestAnswerMs = 1000;
#endif

/// Warnings that tell the truth: of edits without a connection, and of those whose premise is gone.
const QStringList trueWarnings = {
    QStringLiteral("This plugin does not support "), // the offscreen platform's
    QStringLiteral("No api available, check connection?"),
    QStringLiteral("Failed to acquire media name"), // a cued slot was cleared
    QStringLiteral("Selected entry not valid."),    // the operator is told
    QStringLiteral("Undo failed! "),
    QStringLiteral("Redo failed! "),
    QStringLiteral("Failed to open import file: "),         // the operator is told
    QStringLiteral("QUnifiedTimer::stopAnimationDriver: "), // Qt's own, of several declarative views
};

/// Those of a server that is dead, or means harm.
const QStringList disturbedWarnings = {
    QStringLiteral("The preview ended: "),
    QStringLiteral("The link ended: "),
    QStringLiteral("net: Connecting to "),
    QStringLiteral("Failed due network error"),
    QStringLiteral("metadataprovider.cpp"),
    QStringLiteral("scene: Skipping "),
    QStringLiteral("SSE stream: "),
    QStringLiteral("Failed to get media library"),
    QStringLiteral("Failed to parse m"), // a message, the media library
    QStringLiteral("Failed to init "),   // of a command that lost its premise between press and run
    QStringLiteral("Failed to convert  QT JSON to SDK JSON"),
    QStringLiteral("Getting system property failed"),
    QStringLiteral("PlayMediaCommand"), // while there is no channel to play on
    QStringLiteral("No object found for path /device/channels/"),
    QStringLiteral("No object set"), // as the two above
    QStringLiteral("Playback object for index '0' not found"),
    QStringLiteral("this method must only be called once"), // Qt's own, of a reply that fails twice
    QStringLiteral("Not a JPEG file: "),                    // of the library that decodes pictures
};

constexpr qsizetype linesUntilTold = 6;

bool isOfAnEdit(const QString& line)
{
    return line.contains(QLatin1String("/media/edit/"));
}

/// An edit done again on a library that has changed says what it does not find, and the operator is told
/// right behind it.
bool isTold(const QStringList& lines, qsizetype at)
{
    if (!isOfAnEdit(lines.at(at)))
        return false;
    const auto after = lines.mid(at + 1, linesUntilTold);
    return std::ranges::any_of(
        after, [](const QString& line) { return line.contains(QLatin1String("WARNING: Not done: ")); });
}

bool isAmong(const QStringList& parts, const QString& line)
{
    return std::ranges::any_of(parts, [&line](const QString& part) { return line.contains(part); });
}

} // namespace

/// A monkey at the desk, while its server is killed, started again and now and then replaced by one that
/// means harm. After each few acts the window must answer, tell the truth about the server, and walk its
/// undo history. HALCYRA_TEST_SEED repeats a seed; HALCYRA_MONKEY_MINUTES goes on with new seeds for so long.
class Monkey : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void lives_data();
    void lives();
    void cleanup();

private:
    void startAll(quint32 seed);
    void act();
    void disturb();
    void restoreServer();
    void check();
    void checkLog();
    bool isSoOnTheServer(const QString& line) const;
    void checkTruth();
    void walkUndo();
    QJsonObject state() { return m_robot->ask({{"operation", "state"}}).first().toObject(); }
    void tell(const QString& event)
    {
        m_story.append(QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz ")) + event);
    }
    void tellStory();

    QTemporaryDir m_media;
    std::unique_ptr<OmbraProcess> m_ombra;
    std::unique_ptr<AppProcess> m_app;
    std::unique_ptr<RobotClient> m_robot;
    std::unique_ptr<MonkeyHand> m_hand;
    std::unique_ptr<HostilePeer> m_hostile;
    QStringList m_story;
    QString m_fault;
    bool m_isDisturbed = false; // since the last look at a server that is well
    qsizetype m_logRead = 0;
    int m_acts = 0;
    int m_disturbances = 0;
    int m_checks = 0;
    qint64 m_longestAnswer = 0;
    double m_longestStall = 0;
};

void Monkey::initTestCase()
{
    allowWarnings(QString()); // the test's own sockets to a server that dies
    // A line of log for each widget of each look would be most of the work.
    qputenv("QT_LOGGING_RULES", "vantrel.uitest=false");
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("1 red.mp4")), QColor(220, 0, 0), 250));
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("2 blue.mp4")), QColor(0, 0, 220), 50));
    QImage still(320, 180, QImage::Format_RGB32);
    still.fill(QColor(0, 220, 0));
    QVERIFY(still.save(m_media.filePath(QStringLiteral("3 green.png"))));
    QFile broken(m_media.filePath(QStringLiteral("4 broken.mp4")));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("no film");
}

void Monkey::lives_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("duration"); // milliseconds
    const int minutes = qEnvironmentVariableIntValue("HALCYRA_MONKEY_MINUTES");
    const auto row = [](quint32 seed, int duration) {
        QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << seed << duration;
    };
    if (qEnvironmentVariableIsSet("HALCYRA_TEST_SEED")) {
        row(qEnvironmentVariable("HALCYRA_TEST_SEED").toUInt(), minutes > 0 ? minutes * 60000 : longRoundMs);
    } else if (minutes > 0) {
        for (int i = 0; i < minutes * 60000 / longRoundMs; ++i)
            row(QRandomGenerator::global()->generate(), longRoundMs);
    } else {
        for (const quint32 seed : {11U, 22U, 33U})
            row(seed, shortRoundMs);
    }
}

void Monkey::startAll(quint32 seed)
{
    m_story.clear();
    m_fault.clear();
    m_isDisturbed = false;
    m_logRead = 0;
    m_acts = m_checks = 0;
    m_disturbances = int(seed % 3);
    m_longestAnswer = 0;
    m_longestStall = 0;
    m_ombra = std::make_unique<OmbraProcess>();
    m_ombra->setMediaFolder(m_media.path());
    QVERIFY2(m_ombra->start(), m_ombra->output().constData());
    m_app = std::make_unique<AppProcess>();
    QVERIFY2(m_app->start(AppProcess::connectTo(m_ombra->ports())), qPrintable(m_app->output()));
    m_robot = std::make_unique<RobotClient>();
    QVERIFY(m_robot->connectTo(m_app->uiTestPort()));
    m_hand = std::make_unique<MonkeyHand>(*m_robot, seed);
    QTRY_VERIFY_WITH_TIMEOUT(m_robot->cells(QStringLiteral("MediaPanel-slots-view")).size() >= 3, 15000);
    m_robot->figures(true);
}

void Monkey::lives()
{
    QFETCH(quint32, seed);
    QFETCH(int, duration);
    startAll(seed);
    const QDeadlineTimer end(duration);
    while (!end.hasExpired() && m_fault.isEmpty() && !QTest::currentTestFailed()) {
        for (int i = 0; i < actsBetweenChecks && m_app->isRunning(); ++i)
            act();
        check();
    }
    if (m_fault.isEmpty()) {
        restoreServer();
        checkTruth();
    }
    if (m_fault.isEmpty() && m_app->stop() != 0)
        m_fault = QStringLiteral("it does not end");
    qInfo("seed %u: %d acts, %d checks, longest answer %lld ms, longest stall %.0f ms", seed, m_acts,
          m_checks, m_longestAnswer, m_longestStall);
    if (!m_fault.isEmpty() || QTest::currentTestFailed())
        tellStory();
    QVERIFY2(m_fault.isEmpty(), qPrintable(m_fault));
}

void Monkey::cleanup()
{
    m_hostile.reset();
    m_hand.reset();
    m_robot.reset();
    m_app.reset();
    m_ombra.reset();
}

void Monkey::act()
{
    if (m_acts % actsBetweenDisturbances == actsBetweenDisturbances - 1)
        disturb();
    QElapsedTimer clock;
    clock.start();
    const QString told = m_hand->act();
    tell(QStringLiteral("%1 (%2 ms)").arg(told).arg(clock.elapsed()));
    ++m_acts;
    QCoreApplication::processEvents(); // the hostile peer lives here
}

/// The server is gone: back at once, later, or replaced.
void Monkey::disturb()
{
    m_isDisturbed = true;
    m_hostile.reset();
    m_ombra->kill();
    switch (m_disturbances++ % 3) {
    case 0:
        tell(QStringLiteral("SERVER KILLED, BACK AT ONCE"));
        m_ombra->start();
        break;
    case 1:
        tell(QStringLiteral("SERVER KILLED"));
        break;
    default:
        tell(QStringLiteral("SERVER REPLACED BY A HOSTILE ONE"));
        m_hostile = std::make_unique<HostilePeer>(m_ombra->ports(), quint32(m_hand->random(1 << 30)));
        if (!m_hostile->isListening)
            m_hostile.reset();
    }
}

void Monkey::restoreServer()
{
    m_hostile.reset();
    if (!m_ombra->isRunning())
        tell(QStringLiteral("SERVER BACK"));
    if (!m_ombra->isRunning() && !m_ombra->start())
        m_fault = QStringLiteral("the server does not start again: ") +
                  QString::fromUtf8(m_ombra->output().right(2000));
    for (int i = 0; i < 4 && m_fault.isEmpty(); ++i) {
        if (QTest::qWaitFor([this] { return state()["connected"].toBool(); }, i == 0 ? 4000 : 6000))
            return;
        tell(QStringLiteral("CONNECTING, at ") + m_hand->visibleDialogs());
        tell(m_hand->connectToServer()); // an operator who has disconnected
    }
    if (m_fault.isEmpty())
        m_fault = QStringLiteral("no connection comes about; ") + m_hand->visibleDialogs();
}

void Monkey::check()
{
    ++m_checks;
    const auto fail = [this](const QString& fault) { m_fault = m_fault.isEmpty() ? fault : m_fault; };
    const QJsonObject figures = m_robot->figures(true);
    if (figures.isEmpty()) {
        const QString end = m_app->endWithin(5000);
        return fail(end.isEmpty() ? QStringLiteral("it hangs") : end);
    }
    m_longestStall = std::max(m_longestStall, figures["longestOwnStallMs"].toDouble());
    // Without the time for which other programs of a busy machine had the processors.
    const double others = figures["longestStallMs"].toDouble() - figures["longestOwnStallMs"].toDouble();
    const qint64 answer = m_hand->takeLongestAnswer() - qint64(others);
    m_longestAnswer = std::max(m_longestAnswer, answer);
    if (answer > longestAnswerMs)
        fail(QStringLiteral("an answer took %1 ms").arg(answer));
    checkLog();
    // Not after each few acts: the acts in between meet a dead server too.
    if (m_fault.isEmpty() && m_hand->random(3) == 0) {
        restoreServer();
        checkTruth();
        if (m_fault.isEmpty() && m_hand->random(2))
            walkUndo();
        checkLog();
        m_isDisturbed = false;
    }
}

void Monkey::checkLog()
{
    const QString log = m_app->output();
    const QStringList lines = log.mid(m_logRead).split(u'\n');
    const qsizetype before = std::exchange(m_logRead, log.size());
    qsizetype read = before;
    static const QRegularExpression colours(QStringLiteral("\033\\[[0-9;]*m"));
    for (qsizetype at = 0; at < lines.size(); ++at) {
        const QString line = QString(lines.at(at)).remove(colours);
        const bool isWarning = line.contains(QLatin1String(" *W* ")) || line.contains(QLatin1String(" *C* "));
        const bool isFault = line.contains(QLatin1String("ERROR: ")) ||
                             line.contains(QLatin1String("runtime error")) ||
                             line.contains(QLatin1String(" *F* "));
        const bool isExpected = isAmong(trueWarnings, line) || isTold(lines, at) || isSoOnTheServer(line) ||
                                (m_isDisturbed && isAmong(disturbedWarnings, line));
        const bool isCutOff = isWarning && !isExpected && isOfAnEdit(line) &&
                              lines.size() - at <= linesUntilTold && read > before;
        if (isCutOff) { // what follows it has yet to come through the pipe
            m_logRead = read;
            return;
        }
        read += lines.at(at).size() + 1;
        if ((isFault || (isWarning && !isExpected)) && m_fault.isEmpty())
            m_fault = QStringLiteral("in the log: ") + line;
    }
}

/// Who clears a show and then does again what was undone has entries of slots that are no more.
bool Monkey::isSoOnTheServer(const QString& line) const
{
    static const QRegularExpression missing(QStringLiteral(" \\*W\\* .* - Missing slot: '([^']*)' "));
    const QRegularExpressionMatch match = missing.match(line);
    if (!match.hasMatch())
        return false;
    ServerTruth truth(m_ombra->ports());
    return truth.fetch() && truth.lacksSlot(match.captured(1));
}

void Monkey::checkTruth()
{
    ServerTruth truth(m_ombra->ports());
    QString fault;
    const auto isTrue = [&] {
        const QJsonObject window = state();
        if (!truth.fetch())
            fault = QStringLiteral("the server does not answer");
        else if (fault = truth.libraryFault(window["library"].toString()); fault.isEmpty())
            fault = truth.sceneFault(window["scene"].toString());
        return fault.isEmpty();
    };
    if (m_fault.isEmpty() && !QTest::qWaitFor(isTrue, 8000))
        m_fault = QStringLiteral("the window lies: ") + fault;
}

void Monkey::walkUndo()
{
    if (!m_hand->calm()) {
        m_fault = QStringLiteral("no Escape closes ") + m_hand->visibleDialogs();
        return;
    }
    const QJsonObject keymap = state()["keymap"].toObject();
    m_robot->ask({{"operation", "raise"}, {"objectName", "MainWindow"}});
    m_robot->ask({{"operation", "focus"}, {"objectName", "MainWindow"}});
    for (const auto& [name, step] : {std::pair("undo", -1), std::pair("redo", 1)}) {
        const QString key = keymap[QLatin1String(name)].toString();
        for (int i = 0; i < 40 && !key.isEmpty(); ++i) {
            const QJsonObject before = state();
            const int end = step < 0 ? 0 : before["undoCount"].toInt();
            if (before["undoIndex"].toInt() == end)
                break;
            m_robot->key(key);
            const QJsonObject after = state();
            if ((after["undoIndex"].toInt() - before["undoIndex"].toInt()) * step <= 0) {
                m_fault = QStringLiteral("%1 went from %2 to %3 of %4")
                              .arg(QLatin1String(name))
                              .arg(before["undoIndex"].toInt())
                              .arg(after["undoIndex"].toInt())
                              .arg(after["undoCount"].toInt());
                return;
            }
        }
        tell(QStringLiteral("WALKED BY ") + QLatin1String(name));
        checkTruth();
    }
}

void Monkey::tellStory()
{
    const QStringList last = m_story.last(std::min<qsizetype>(m_story.size(), 60));
    qInfo().noquote() << "the last acts:\n" << last.join(u'\n');
    QFile log(QDir::temp().filePath(QStringLiteral("halcyra-monkey-%1.log")
                                        .arg(QString::fromUtf8(QTest::currentDataTag()).section(u' ', 1))));
    if (log.open(QIODevice::WriteOnly))
        log.write(m_app->output().toUtf8());
    qInfo().noquote() << "the application's log is in" << log.fileName();
    qInfo().noquote() << "the server's log:\n" << QString::fromUtf8(m_ombra->output().right(4000));
}

HALCYRA_TEST(Monkey)
#include "monkey.moc"
