#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/serverprobe.h"
#include "tests/support/testmain.h"

#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString media = QStringLiteral("MediaPanel-slots-view");
const QString list = QStringLiteral("Preview-PlaylistContainer-playlist");
const QString program = QStringLiteral("Program-PlaylistContainer-playlist");
const QString head = QStringLiteral("Preview-PlaylistEditor");
const QString picture = QStringLiteral("Program-PlaybackWidget-PreviewWidget");

constexpr int nameColumn = 6; // of a list
constexpr int endActionColumn = 1;
constexpr int entries = 10;

bool isRed(const QColor& colour)
{
    return colour.red() > 150 && colour.blue() < 60;
}

bool isBlue(const QColor& colour)
{
    return colour.blue() > 150 && colour.red() < 60;
}

} // namespace

/// A cue list of ten entries, built in the window by mouse alone, another by keyboard alone; both are run to
/// program, undone to nothing and redone. What counts is what the server holds and what the picture shows.
class CueList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void byMouse();
    void byKeyboard();

private:
    QJsonObject library();
    QJsonObject list1() { return library()["playlists"].toObject()["1"].toObject(); }
    QStringList addresses() { return list1()["entries"].toObject().keys(); }
    QString slotOf(const QString& address);
    QJsonObject cell(const QString& view, int row, int column);
    QJsonObject under(const QString& view, int fromBottom);
    bool drag(const QJsonObject& from, const QJsonObject& to);
    bool keep(const std::function<bool(const QJsonObject&)>& isThere = {});
    void wheelUp(const QString& view);
    bool tabTo(const QString& widget);
    void undoAndRedoAll();
    bool onAir(bool (*colour)(const QColor&));
    QString nextText() { return m_robot.text(QStringLiteral("Program-PlaybackWidget-Next")); }

    std::unique_ptr<QTemporaryDir> m_media;
    std::unique_ptr<OmbraProcess> m_ombra;
    std::unique_ptr<AppProcess> m_app;
    RobotClient m_robot;
    QNetworkAccessManager m_network;
    QList<QJsonObject> m_states; // the server's library at the start and after each edit
};

void CueList::init()
{
    m_media = std::make_unique<QTemporaryDir>();
    m_ombra = std::make_unique<OmbraProcess>();
    m_app = std::make_unique<AppProcess>();
    QVERIFY(makeNumberedClip(m_media->filePath(QStringLiteral("1 red.mp4")), QColor(220, 0, 0), 500));
    QVERIFY(makeNumberedClip(m_media->filePath(QStringLiteral("2 blue.mp4")), QColor(0, 0, 220), 500));
    m_ombra->setMediaFolder(m_media->path());
    QVERIFY2(m_ombra->start(), m_ombra->output().constData());
    QVERIFY2(m_app->start(AppProcess::connectTo(m_ombra->ports())), qPrintable(m_app->output()));
    QVERIFY(m_robot.connectTo(m_app->uiTestPort()));
    QTRY_COMPARE_WITH_TIMEOUT(m_robot.cells(media).size(), 2, 15000);
    QVERIFY(!m_robot.waitFor(list).isEmpty());
    m_states.clear();
    QVERIFY(keep());
}

void CueList::cleanup()
{
    QCOMPARE(m_app->stop(), 0);
    m_ombra->stop();
}

QJsonObject CueList::library()
{
    const QUrl url(
        QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(m_ombra->ports().http));
    const std::unique_ptr<QNetworkReply> reply(m_network.get(QNetworkRequest(url)));
    if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 5000))
        return {};
    return QJsonDocument::fromJson(reply->readAll()).object();
}

QString CueList::slotOf(const QString& address)
{
    return list1()["entries"][address]["slotUrl"].toString().section(u'/', -1);
}

QJsonObject CueList::cell(const QString& view, int row, int column)
{
    const QString name = QStringLiteral("%1-row%2-col%3").arg(view).arg(row).arg(column);
    QJsonObject found;
    const auto isThere = [&] {
        for (const QJsonValue& value : m_robot.cells(view)) {
            if (value["objectName"].toString() == name)
                found = value.toObject();
        }
        return !found.isEmpty();
    };
    return QTest::qWaitFor(isThere, 5000) ? found : QJsonObject();
}

/// A point of the view, so many pixels above its lower edge.
QJsonObject CueList::under(const QString& view, int fromBottom)
{
    QJsonObject target = m_robot.waitFor(view);
    const int off = target["height"].toInt() - fromBottom - target["local_y"].toInt();
    for (const QString axis : {"global_y", "local_y"})
        target[axis] = target[axis].toInt() + off;
    return target;
}

bool CueList::drag(const QJsonObject& from, const QJsonObject& to)
{
    if (from.isEmpty() || to.isEmpty())
        return false;
    QJsonObject begun = from;
    begun["global_x"] = from["global_x"].toInt() + 15;
    m_robot.mouse(QStringLiteral("drag_start"), from);
    m_robot.mouse(QStringLiteral("drag_move"), begun);
    m_robot.mouse(QStringLiteral("drag_move"), to);
    m_robot.mouse(QStringLiteral("drag_end"), to);
    return true;
}

/// Waits until the library is another one, and what is wanted.
bool CueList::keep(const std::function<bool(const QJsonObject&)>& isThere)
{
    QJsonObject now;
    const bool isDone = QTest::qWaitFor(
        [&] {
            now = library();
            return !now.isEmpty() && (m_states.isEmpty() || now != m_states.last()) &&
                   (!isThere || isThere(now));
        },
        5000);
    m_states.append(now);
    return isDone;
}

void CueList::wheelUp(const QString& view)
{
    QJsonObject request = m_robot.waitFor(view);
    request["operation"] = QStringLiteral("scroll_vertical");
    request["scroll"] = 12000;
    m_robot.ask(request);
}

bool CueList::tabTo(const QString& widget)
{
    for (int i = 0; i < 100; ++i) {
        if (m_robot.find(widget)["focus"].toBool())
            return true;
        m_robot.key(QStringLiteral("Tab"));
    }
    return false;
}

bool CueList::onAir(bool (*colour)(const QColor&))
{
    return QTest::qWaitFor([&] { return colour(markerOf(m_robot.grab(picture))); }, 10000);
}

void CueList::undoAndRedoAll()
{
    for (qsizetype i = m_states.size() - 2; i >= 0; --i) {
        m_robot.key(QStringLiteral("CtrlZ"));
        QTRY_COMPARE(library(), m_states[i]);
    }
    QVERIFY(m_states.first()["playlists"].toObject().isEmpty());
    QTRY_VERIFY(m_robot.cells(list).isEmpty());
    for (qsizetype i = 1; i < m_states.size(); ++i) {
        m_robot.key(QStringLiteral("CtrlY"));
        QTRY_COMPARE(library(), m_states[i]);
    }
}

void CueList::byMouse()
{
    QVERIFY(m_robot.click(head + QStringLiteral("-new-button")));
    QVERIFY(keep());
    QTRY_VERIFY(m_robot.text(head + QStringLiteral("-dropdown")).endsWith(QStringLiteral("New playlist 1")));
    // Red and blue in turn, each under the last.
    for (int i = 0; i < entries; ++i) {
        QVERIFY(drag(cell(media, i % 2, 0), under(list, 4)));
        QVERIFY2(keep([i](const QJsonObject& now) {
                     return now["playlists"]["1"]["entries"].toObject().size() == i + 1;
                 }),
                 qPrintable(QString::number(i)));
    }
    QCOMPARE(slotOf(QStringLiteral("1")), QStringLiteral("1"));
    QCOMPARE(slotOf(QStringLiteral("10")), QStringLiteral("2"));

    // In the place of the first, by the middle of its row; then on top, by its upper fifth.
    wheelUp(list);
    const QJsonObject first = cell(list, 0, nameColumn);
    QVERIFY(drag(cell(media, 1, 0), first));
    QVERIFY(keep());
    QCOMPARE(slotOf(QStringLiteral("1")), QStringLiteral("2"));
    QJsonObject top = cell(list, 0, nameColumn);
    top["global_y"] = top["global_y"].toInt() - top["height"].toInt() / 2 + 2;
    QVERIFY(drag(cell(media, 0, 0), top));
    QVERIFY(keep());
    QCOMPARE(addresses().size(), entries + 1);
    QVERIFY2(addresses().contains(QStringLiteral("0.999")) ||
                 addresses().first().startsWith(QStringLiteral("0.")),
             qPrintable(addresses().join(u' ')));

    // What the first entry does when it is over.
    wheelUp(list);
    QVERIFY(m_robot.mouse(QStringLiteral("click"), cell(list, 0, nameColumn)));
    QVERIFY(m_robot.mouse(QStringLiteral("click"), cell(list, 0, endActionColumn)));
    QJsonObject pause; // the second of the list that drops down
    QTRY_VERIFY(!(pause = m_robot.find(QStringLiteral("Preview-PlaylistEndAction-dropdown"))).isEmpty());
    pause["global_y"] = pause["global_y"].toInt() + 2 * pause["height"].toInt();
    m_robot.mouse(QStringLiteral("click"), pause);
    QVERIFY(keep());
    QCOMPARE(list1()["entries"][addresses().first()]["endAction"].toString(), QStringLiteral("pause"));

    QVERIFY(m_robot.click(head + QStringLiteral("-pin-button")));
    QVERIFY(m_robot.mouse(QStringLiteral("double_click"), cell(list, 0, nameColumn)));
    QTRY_COMPARE(m_robot.text(QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation")),
                 addresses().first() + u':');
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-DirectCut-Button")));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-Take-Button")));
    QVERIFY(onAir(isRed));
    QTRY_VERIFY(!m_robot.cells(program).isEmpty());
    QTRY_COMPARE(nextText(), QStringLiteral("Next: 1 2 blue"));

    // Another goes on air, and then the whole list by its grip.
    QVERIFY(m_robot.mouse(QStringLiteral("double_click"), cell(list, 1, nameColumn)));
    QTRY_COMPARE(m_robot.text(QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation")),
                 QStringLiteral("1:"));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-Take-Button")));
    QVERIFY(onAir(isBlue));
    QJsonObject grip = m_robot.waitFor(head + QStringLiteral("-grip")); // by its left edge: it is narrow
    grip["global_x"] = grip["global_x"].toInt() - grip["width"].toInt() / 2 + 2;
    QVERIFY(drag(grip, m_robot.waitFor(program)));
    QVERIFY(onAir(isRed));
    undoAndRedoAll();
}

void CueList::byKeyboard()
{
    QVERIFY(tabTo(head + QStringLiteral("-new-button")));
    m_robot.key(QStringLiteral("Space"));
    QVERIFY(keep());
    QVERIFY(!m_robot.waitFor(head + QStringLiteral("-dropdown-edit")).isEmpty());
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(QStringLiteral("show"));
    m_robot.key(QStringLiteral("Enter"));
    QVERIFY(
        keep([](const QJsonObject& now) { return now["playlists"]["1"]["name"] == QLatin1String("show"); }));

    QVERIFY(tabTo(media));
    m_robot.key(QStringLiteral("Down")); // the focus alone selects nothing
    for (int i = 0; i < entries; ++i) {
        m_robot.key(i % 2 == 0 ? QStringLiteral("Up") : QStringLiteral("Down"));
        m_robot.key(QStringLiteral("Insert"));
        QVERIFY2(keep([i](const QJsonObject& now) {
                     return now["playlists"]["1"]["entries"].toObject().size() == i + 1;
                 }),
                 qPrintable(QString::number(i)));
    }
    QVERIFY(tabTo(list));
    // The last one, which is selected, goes up; then it is numbered anew.
    m_robot.key(QStringLiteral("Alt+Up"));
    QVERIFY(keep());
    QCOMPARE(addresses().size(), entries);
    m_robot.key(QStringLiteral("Ctrl+R"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("Playlist-Renumber-Dialog")).isEmpty());
    m_robot.key(QStringLiteral("Tab"));
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(QStringLiteral("50"));
    m_robot.key(QStringLiteral("Enter"));
    QVERIFY(keep([](const QJsonObject& now) {
        return now["playlists"]["1"]["entries"].toObject().contains(QStringLiteral("50"));
    }));
    QTRY_VERIFY(m_robot.find(QStringLiteral("Playlist-Renumber-Dialog")).isEmpty());
    m_robot.key(QStringLiteral("Ctrl+C"));
    m_robot.key(QStringLiteral("Ctrl+V"));
    QVERIFY(keep([](const QJsonObject& now) {
        return now["playlists"]["1"]["entries"].toObject().size() == entries + 1;
    }));
    m_robot.key(QStringLiteral("Delete"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("PlaylistEditor-remove-confirmation")).isEmpty());
    m_robot.key(QStringLiteral("Enter"));
    QVERIFY(keep([](const QJsonObject& now) {
        return now["playlists"]["1"]["entries"].toObject().size() == entries;
    }));

    // To the second entry, which is blue, on preview and on air.
    QVERIFY(tabTo(list));
    for (int i = 0; i < entries; ++i)
        m_robot.key(QStringLiteral("Up"));
    m_robot.key(QStringLiteral("Down"));
    m_robot.key(QStringLiteral("Enter"));
    QTRY_COMPARE(m_robot.text(QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation")),
                 QStringLiteral("2:"));
    m_robot.key(QStringLiteral("F12"));
    QVERIFY(onAir(isBlue));
    QTRY_COMPARE(nextText(), QStringLiteral("Next: 3 1 red"));
    undoAndRedoAll();
}

HALCYRA_TEST(CueList)
#include "cuelist.moc"
