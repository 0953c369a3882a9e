// A show of 100,000 slots through the running application: how long its export and its import take, how long
// the main thread stands still meanwhile, and how late the pictures of the server come.
#include "bench/json_library.h"
#include "tarn/preview/previewclient.h"
#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

using namespace vantrel;
using namespace vantrel::test;
using vantrel::bench::report;

namespace {

const QString slotsView = QStringLiteral("MediaPanel-slots-view");
const QString doneCount = QStringLiteral("NotificationStatusBar-count-1");
const std::string program = "/device/channels/0/program";

/// Reads the preview stream as a window does, and notes the longest time between two pictures of program.
class Pictures
{
public:
    explicit Pictures(quint16 port)
    {
        const boost::asio::ip::tcp::endpoint server(boost::asio::ip::address_v4::loopback(), port);
        m_isOpen = m_client.connect(server, 5000, nullptr);
        m_link = std::thread([this] { m_client.run(); });
        m_reader = std::thread([this] { read(); });
    }
    ~Pictures()
    {
        m_stop = true;
        m_client.disconnect();
        m_link.join();
        m_reader.join();
    }
    bool isOpen() const { return m_isOpen; }
    void reset()
    {
        m_longest = 0;
        m_count = 0;
    }
    double longestMs() const { return m_longest; }
    int count() const { return m_count; }

private:
    void read()
    {
        using Clock = std::chrono::steady_clock;
        Clock::time_point last = Clock::now();
        PreviewFrame frame;
        while (!m_stop) {
            if (!m_client.pollFrame(frame, 20) || frame.source != program ||
                frame.formatCode() != Surface::formatRgb24 || frame.frame.getStreamIndex() != 0)
                continue;
            const Clock::time_point now = Clock::now();
            m_longest =
                std::max(m_longest.load(), std::chrono::duration<double, std::milli>(now - last).count());
            last = now;
            ++m_count;
        }
    }

    PreviewClient m_client;
    std::atomic<bool> m_stop = false;
    std::atomic<double> m_longest = 0;
    std::atomic<int> m_count = 0;
    bool m_isOpen = false;
    std::thread m_link, m_reader;
};

/// The medium of each slot, so that none is missing.
bool makeMedia(const Json& library, const QDir& folder)
{
    bool isMade = true;
    library.get("collections").forEachMember([&](std::string_view, const Json& collection) {
        collection.get("slots").forEachMember([&](std::string_view, const Json& slot) {
            const QString path = QUrl(QString::fromStdString(slot.get("contentUrl").asString()))
                                     .path(QUrl::FullyDecoded)
                                     .mid(1);
            QFile file(folder.filePath(path));
            isMade =
                folder.mkpath(QFileInfo(path).path()) && (file.exists() || file.open(QIODevice::WriteOnly));
            return isMade;
        });
        return isMade;
    });
    return isMade;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The server, the application and what is measured of both.
class Evening
{
public:
    bool start();
    bool clears();
    bool exports(const QString& file);
    bool imports(const QString& file, bool isOnAir);
    bool playsTheFirst();
    QString file(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    QByteArray served(const char* path, const QByteArray& method = "GET", const QByteArray& body = {});
    std::string library(const std::string& names) const;

    double ms = 0;      // until the window has said so
    double stallMs = 0; // of its main thread
    double gapMs = 0;   // between two pictures
    int pictures = 0;

private:
    void begin();
    bool end();
    bool isTold(bool isSo, int msLimit)
    {
        return QTest::qWaitFor([&] { return m_robot.find(doneCount)["visible"].toBool() == isSo; }, msLimit);
    }
    bool hasSlots() { return !m_robot.cells(slotsView).isEmpty(); }

    QTemporaryDir m_folder;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
    std::unique_ptr<Pictures> m_pictures;
    QElapsedTimer m_clock;
};

/// 100,000 slots; the first one plays.
std::string Evening::library(const std::string& names) const
{
    Json library;
    Json::parseString(bench::LibraryText({100'000, 100}).make(), library);
    Json collections = library.get("collections");
    collections.forEachMember([&, all = collections](std::string_view index, const Json& collection) {
        Json changed = collection;
        changed.set("name", names + std::string(index));
        collections.set(index, changed);
        return true;
    });
    Json first = collections.get("1");
    Json slots_ = first.get("slots");
    Json slot = slots_.get("1");
    slot.set("contentUrl", "file:///clip.mp4");
    slot.set("type", "videoFile");
    slot.set("isPlayable", true);
    slot.set("mediaDuration", 240.0);
    slot.set("inpoint", 0);
    slot.set("outpoint", Json());
    slots_.set("1", slot);
    first.set("slots", slots_);
    collections.set("1", first);
    library.set("collections", collections);
    return library.toString();
}

QByteArray Evening::served(const char* path, const QByteArray& method, const QByteArray& body)
{
    QTcpSocket socket;
    socket.connectToHost(m_ombra.host(), m_ombra.ports().http);
    socket.write(method + " /api/brume/v1" + path +
                 " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\nContent-Type: application/json\r\n"
                 "Content-Length: " +
                 QByteArray::number(body.size()) + "\r\n\r\n" + body);
    socket.waitForDisconnected(60000);
    const QByteArray answer = socket.readAll();
    return answer.mid(answer.indexOf("\r\n\r\n") + 4);
}

bool Evening::start()
{
    const QDir folder(m_folder.path());
    const std::string text = library("Collection ");
    Json json;
    if (!folder.mkpath("media") || !makeNumberedClip(folder.filePath("media/clip.mp4"), Qt::red, 6000) ||
        !Json::parseString(text, json) || !makeMedia(json, QDir(folder.filePath("media"))))
        return false;
    m_ombra.setMediaFolder(folder.filePath("media"));
    if (!m_ombra.start(60000) || served("/medialibrary", "POST", QByteArray::fromStdString(text)) != "{}")
        return false;
    // Once each slot's file has been looked at the show changes no more by itself.
    for (QByteArray before; before != served("/medialibrary"); QTest::qWait(2000))
        before = served("/medialibrary");
    m_pictures = std::make_unique<Pictures>(m_ombra.ports().preview);
    return m_pictures->isOpen() && m_app.start(AppProcess::connectTo(m_ombra.ports())) &&
           m_robot.connectTo(m_app.uiTestPort()) && QTest::qWaitFor([this] { return hasSlots(); }, 20000);
}

bool Evening::playsTheFirst()
{
    if (!m_robot.doubleClickCell(slotsView, 0, 0) || !m_robot.click("TakeControls-Take-Button"))
        return false;
    m_pictures->reset();
    return QTest::qWaitFor([this] { return m_pictures->count() > 50; }, 20000);
}

void Evening::begin()
{
    m_robot.figures(true);
    m_pictures->reset();
    m_clock.start();
}

/// Once the window has told that it is done, and shows what came of it.
bool Evening::end()
{
    if (!isTold(true, 60000))
        return false;
    ms = double(m_clock.nsecsElapsed()) / 1e6;
    QTest::qWait(1500); // what is left to do would show as well
    stallMs = m_robot.figures()["longestOwnStallMs"].toDouble();
    gapMs = m_pictures->longestMs();
    pictures = m_pictures->count();
    return true;
}

bool Evening::clears()
{
    m_robot.key("Ctrl+N");
    if (m_robot.waitFor("ClearShowDialog").isEmpty())
        return false;
    begin();
    m_robot.key("Enter");
    // The window is left alone meanwhile: to tell what stands in its cells takes it milliseconds.
    if (!QTest::qWaitFor([this] { return served("/collections") == "{}"; }, 30000))
        return false;
    QTest::qWait(1500);
    stallMs = m_robot.figures()["longestOwnStallMs"].toDouble();
    return QTest::qWaitFor([this] { return !hasSlots(); }, 20000);
}

bool Evening::exports(const QString& file)
{
    m_robot.key("Ctrl+Shift+E");
    if (!isTold(false, 20000) || m_robot.waitFor("fileNameEdit").isEmpty())
        return false;
    m_robot.key("CtrlA");
    m_robot.type(file);
    m_robot.key("Enter");
    m_robot.find("fileNameEdit"); // the dialog has closed by then, which is no part of it
    begin();
    return end();
}

bool Evening::imports(const QString& file, bool isOnAir)
{
    m_robot.key("Ctrl+I");
    if (!isTold(false, 20000) || !m_robot.click("ImportShowDialog-path"))
        return false;
    m_robot.type(file);
    if (isOnAir && !m_robot.click("ImportShowDialog-playback")) // program plays on
        return false;
    if (!isOnAir)
        begin();
    if (!m_robot.click("ImportShowDialog-accept-button"))
        return false;
    if (isOnAir && m_robot.waitFor("ImportOnAirDialog").isEmpty())
        return false;
    if (isOnAir) {
        begin();
        m_robot.key("Enter");
    }
    return end() && QTest::qWaitFor([this] { return hasSlots(); }, 20000);
}

void tell(const Evening& evening, const std::string& what, bool isTimed, bool isOnAir)
{
    constexpr double atMost = 3000, picture = 16, late = 60;
    if (isTimed)
        report(what + "/100000-slots", "the limit of 3 s", evening.ms, atMost, "ms", atMost / evening.ms, 1);
    report(what + "-longest-stall", "the limit of 16 ms", evening.stallMs, picture, "ms",
           picture / evening.stallMs, 1);
    if (isOnAir)
        report(what + "-pictures-apart", "one picture and a half", evening.gapMs, late, "ms",
               late / evening.gapMs, 1);
}

/// The same settings with another library.
bool writeOther(const Evening& evening, const QByteArray& first, const QString& name)
{
    Json other, library;
    if (!Json::parseString(first.toStdString(), other) ||
        !Json::parseString(evening.library("Another "), library))
        return false;
    other.set("library", library);
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(QByteArray::fromStdString(other.toString())) > 0;
}

bool measure()
{
    Evening evening;
    const QString first = evening.file("first.show"), other = evening.file("other.show");
    if (!evening.start() || !evening.playsTheFirst() || !evening.exports(first))
        return false;
    tell(evening, "show/export", true, true);
    const QByteArray exported = contentOf(first);
    if (!evening.clears())
        return false;
    tell(evening, "show/clear", false, false);
    if (!evening.imports(first, false) || evening.served("/show/current") != exported)
        return false;
    tell(evening, "show/import", true, false);
    if (!writeOther(evening, exported, other) || !evening.playsTheFirst() || !evening.imports(other, true))
        return false;
    tell(evening, "show/import-on-air", true, true);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (measure())
        return 0;
    std::fprintf(stderr, "a measurement could not be made\n");
    return 1;
}
