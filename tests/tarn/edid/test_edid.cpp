#include "tarn/edid/edid.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <cmath>

using namespace vantrel;

namespace {

std::vector<std::uint8_t> bytesOf(const QByteArray& text)
{
    return {text.begin(), text.end()};
}

/// Of a display, behind the one byte that is the fuzz target's.
QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().mid(1) : QByteArray();
}

} // namespace

class TestEdid : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatADisplaySays()
    {
        Edid display;
        QVERIFY(readEdid(bytesOf(ownDisplay("ombra-1")), display, nullptr));
        QCOMPARE(display.maker, std::string("OMB"));
        QCOMPARE(display.product, std::string("Ombra Wall"));
        QCOMPARE(display.serialText, std::string("OW4K-00021"));
        QCOMPARE(display.year, 2026);
        QCOMPARE(display.interface, std::string("DisplayPort"));
        QCOMPARE(display.bpc, 10);
        QCOMPARE(display.widthMm, 1210);
        QCOMPARE(display.limits.maxDotClock, 600'000'000);
        QCOMPARE(display.preferred->label(), std::string("1920 x 1080p 50 Hz"));
        QVERIFY(display.hasBasicAudio);
        QCOMPARE(display.audio.size(), std::size_t{1});
        QCOMPARE(display.audio[0].rates, std::vector<int>({32000, 44100, 48000}));
        QCOMPARE(display.audio[0].bits, std::vector<int>({16, 20, 24}));
        QVERIFY(std::ranges::find(display.modes, *findVic(97)) != display.modes.end());
        QCOMPARE(whyNotShown(display, *findVic(97)), std::string());
        QCOMPARE(whyNotShown(display, *findVic(117)), // 3840x2160p100
                 std::string("3840 x 2160p 100 Hz needs 1188 MHz, and the display takes 600 MHz at most."));
    }

    void saysWhatIsNoEdid_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("why");
        const QByteArray good = ownDisplay("ombra-0");
        QByteArray damaged = good;
        damaged[200] = static_cast<char>(damaged[200] ^ 1);
        QByteArray old = good; // of a version that nobody has seen
        old[18] = 2;
        old[127] = static_cast<char>(old[127] - 1);
        const QByteArray length = " bytes, and an EDID has 1 to 256 blocks of 128 bytes.";
        QTest::newRow("nothing") << QByteArray() << QByteArray("It does not begin as an EDID does.");
        QTest::newRow("text") << QByteArray(128, 'x') << QByteArray("It does not begin as an EDID does.");
        QTest::newRow("half a block") << good.left(64) << "It has 64" + length;
        QTest::newRow("10 MB") << good.repeated(40'000) << "It has 10240000" + length;
        QTest::newRow("damaged") << damaged << QByteArray("The checksum of its block 1 is wrong.");
        QTest::newRow("version") << old << QByteArray("It is of version 2, which nobody knows.");
    }
    void saysWhatIsNoEdid()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, why);
        Edid display;
        std::string reason;
        QVERIFY(!readEdid(bytesOf(bytes), display, &reason));
        QCOMPARE(QByteArray::fromStdString(reason), why);
        QCOMPARE(display.modes.size(), std::size_t{0});
    }

    /// By VESA's own sheet for CVT.
    void computesTimings()
    {
        const VideoTiming reduced = cvtTiming(1920, 1200, 60, true);
        QCOMPARE(reduced, *findDmt(0x44));
        const VideoTiming tube = cvtTiming(1600, 1200, 60, false);
        QCOMPARE(tube.dotClock, 161'000'000);
        QCOMPARE(tube.hTotal, 2160);
        QCOMPARE(tube.vTotal, 1245);
        QCOMPARE(findVic(20)->id(), std::string("1920x1080i50"));
        QCOMPARE(findVic(20)->lineRate(), 28125.0);
        QVERIFY(!findVic(0) && !findVic(200'000) && !findDmt(0x59));
    }

    /// Beside the reference decoder: what it prefers, and its serial numbers.
    void agreesWithTheReference_data()
    {
        QTest::addColumn<QString>("path");
        const QDir folder(QFINDTESTDATA("../fuzz/corpus/edid"));
        for (const QString& name : folder.entryList(QDir::Files))
            QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }
    void agreesWithTheReference()
    {
        QFETCH(QString, path);
        const QString tool = QStandardPaths::findExecutable(QStringLiteral("edid-decode"));
        if (tool.isEmpty())
            QSKIP("edid-decode is not installed");
        QProcess reference;
        reference.start(tool, {QStringLiteral("-p"), QStringLiteral("-")});
        QVERIFY(reference.waitForStarted());
        reference.write(contentOf(path));
        reference.closeWriteChannel();
        QVERIFY(reference.waitForFinished());
        const QString text = QString::fromUtf8(reference.readAllStandardOutput());
        const auto found = [&text](const char* pattern) {
            return QRegularExpression(QLatin1String(pattern)).match(text);
        };
        Edid display;
        QVERIFY(readEdid(bytesOf(contentOf(path)), display, nullptr));
        const auto mode = found(
            "Preferred Video Timing[^\\n]*\\n(?:.*\\n)*?\\s+DTD   1:\\s+(\\d+)x(\\d+)(i?)\\s+([\\d.]+) Hz");
        QVERIFY2(mode.hasMatch() && display.preferred, qPrintable(text));
        QCOMPARE(display.preferred->width, mode.captured(1).toInt());
        QCOMPARE(display.preferred->height, mode.captured(2).toInt());
        QCOMPARE(display.preferred->interlaced, !mode.captured(3).isEmpty());
        QVERIFY(std::abs(display.preferred->refreshRate() - mode.captured(4).toDouble()) < 1e-4);
        QCOMPARE(display.serialNumber, found("\\n    Serial Number: (\\d+)").captured(1).toUInt());
        QCOMPARE(QString::fromStdString(display.product),
                 found("Display Product Name: '(.*?) *'").captured(1));
    }

private:
    static QByteArray ownDisplay(const char* name)
    {
        return contentOf(QFINDTESTDATA(QStringLiteral("../fuzz/corpus/edid/") + QLatin1String(name)));
    }
};

HALCYRA_TEST(TestEdid)
#include "test_edid.moc"
