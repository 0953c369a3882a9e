#include "tests/ombra/display/displayprobe.h"
#include "tests/support/testmain.h"

#include <QElapsedTimer>
#include <QFile>

#include <cmath>

using namespace vantrel::ombra::test;
using namespace vantrel::test;

/// What an audience sees: the pixels of a screen that a server of its own process has.
class DisplayTest : public QObject, private DisplayProbe
{
    Q_OBJECT

private:
    /// Whether the newest that the server's disk says of program is that file.
    bool isKept(const QString& file) const
    {
        const QDir folder(m_ombra->stateFolder());
        QByteArray written;
        for (const QString& name : folder.entryList({QStringLiteral("journal-*")}, QDir::Files, QDir::Name)) {
            QFile journal(folder.filePath(name));
            if (journal.open(QIODevice::ReadOnly))
                written += journal.readAll();
        }
        const QByteArray property = "/device/channels/0/program/properties/media\":\"";
        const QByteArray slot =
            "brume://collections/1/slots/" + QByteArray::number(m_files.indexOf(file) + 1) + '"';
        const qsizetype at = written.lastIndexOf(property);
        return at >= 0 && written.mid(at + property.size()).startsWith(slot);
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with the server");
        startScreen();
        startServer({QStringLiteral("--display")});
    }

    void standsInTheScene()
    {
        const std::string program = "/device/system/gpus/0/outputs/0/properties/"; // the only screen there is
        QTRY_COMPARE_WITH_TIMEOUT((m_peer->read(), m_peer->value(program + "softwareRenderer")),
                                  std::string("true"), patience);
        QVERIFY(std::stod(m_peer->value(program + "screenRate")) > 20);
        QCOMPARE(m_peer->value(program + "width"), std::to_string(screenSize.width()));
        QCOMPARE(m_peer->value(program + "connected"), std::string("true"));
        QCOMPARE(m_peer->value("/device/system/gpus/0/outputs/1/properties/connected"), std::string("false"));
    }

    /// Before pictures are lost by it, and no more once nothing moves.
    void tellsWhatPaintingTakes()
    {
        const auto load = [this] {
            m_peer->read();
            return std::atof(m_peer->value("/device/system/gpus/0/outputs/0/properties/paintLoad").c_str());
        };
        write("program/properties/endAction", "repeat");
        play(QStringLiteral("bars709.mkv"));
        QTRY_VERIFY_WITH_TIMEOUT(load() > 0, patience);
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(load(), 0.0, patience);
    }

    /// On a screen without a program alone, and not again after it.
    void showsWhichOutputItIs()
    {
        const std::string output = "/device/system/gpus/0/outputs/0";
        const auto identify = [&](const char* on) {
            invoke(output + "/methods/identify", std::string(R"({"on":)") + on + "}");
        };
        const auto isIdentified = [&] {
            m_peer->read();
            return m_peer->value(output + "/properties/identified") == "true";
        };
        // The outermost pixels, and between the bars of colour and those of grey.
        const auto isCard = [this] {
            const QImage seen = m_screen->grab();
            return seen.pixel(0, 0) == 0xffffffff && seen.pixel(639, 359) == 0xffffffff &&
                   seen.pixel(4, 290) == 0xffffffff && seen.pixel(120, 290) == 0xffffff00 &&
                   seen.pixel(4, 340) == 0xff000000;
        };
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff00ff00, patience);
        identify("true");
        play(QStringLiteral("block.png")); // by then that has been answered
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xffff0000, patience);
        QVERIFY(!isIdentified() && !isCard());
        write("program/properties/media", "");
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff000000, patience);
        identify("true");
        QTRY_VERIFY_WITH_TIMEOUT(isCard() && isIdentified(), patience);
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff00ff00, patience);
        QTRY_VERIFY_WITH_TIMEOUT(!isIdentified(), patience);
        write("program/properties/media", "");
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff000000, patience);
        identify("true");
        QTRY_VERIFY_WITH_TIMEOUT(isCard(), patience);
        identify("false");
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff000000, patience);
    }

    /// Killed and started again; its service makes a pause between the two.
    void comesBackWithinTwoSeconds()
    {
        constexpr QRgb green = 0xff00ff00;
        constexpr int pause = 200; // milliseconds
        const auto middle = [this] { return m_screen->grab().pixel(320, 180); };
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(middle(), green, patience);
        QTRY_VERIFY_WITH_TIMEOUT(isKept(QStringLiteral("green.png")), patience);
        QElapsedTimer clock;
        clock.start();
        m_ombra->kill();
        QTRY_VERIFY_WITH_TIMEOUT(middle() != green, patience);
        QVERIFY(m_ombra->start());
        QTRY_COMPARE_WITH_TIMEOUT(middle(), green, patience);
        const qint64 taken = clock.elapsed() + pause;
        qInfo("program is back after %lld ms", taken);
        QVERIFY(taken < 2000 * vantrel::test::slowness);
        connectPeer();
    }

    /// The end of the desktop is not the end of the server, which goes on and ends when it is told to.
    void survivesTheDesktop()
    {
        m_screen->end();
        QTRY_VERIFY_WITH_TIMEOUT(m_ombra->output().contains("the desktop is gone"), patience);
        QVERIFY(m_ombra->isRunning());
        play(QStringLiteral("green.png"));
        QTRY_COMPARE_WITH_TIMEOUT(
            (m_peer->read(), m_peer->value("/device/channels/0/program/properties/media")),
            "brume://collections/1/slots/" + std::to_string(m_files.indexOf(QStringLiteral("green.png")) + 1),
            patience);
        QElapsedTimer clock;
        clock.start();
        m_ombra->stop(10000);
        QVERIFY(clock.elapsed() < 9000); // and was not killed
    }

    /// Without a screen the log says so once, and the first that comes is taken.
    void takesTheScreenThatComes()
    {
        startServer({QStringLiteral("--display")});
        QTRY_VERIFY_WITH_TIMEOUT(m_ombra->output().contains("no display: "), patience);
        play(QStringLiteral("green.png"));
        QVERIFY(m_screen->start());
        QTRY_COMPARE_WITH_TIMEOUT(m_screen->grab().pixel(320, 180), 0xff00ff00, patience);
        m_ombra->stop();
        QCOMPARE(m_ombra->output().count("no display: "), 1);
    }
};

HALCYRA_TEST(DisplayTest)
#include "displaytest.moc"
