#include "tarn/edid/edid.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <numeric>

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

constexpr int variants = 30;

/// With the checksum of each block as it is to be.
QByteArray summed(QByteArray edid)
{
    for (qsizetype at = 0; at + 128 <= edid.size(); at += 128) {
        const int sum = std::accumulate(edid.begin() + at, edid.begin() + at + 127, 0);
        edid[at + 127] = static_cast<char>(-sum);
    }
    return edid;
}

/// The same display with another identity, its descriptors in another order, rubbish in its names, or a bit
/// that has turned over.
QByteArray variant(QByteArray edid, QRandomGenerator& random)
{
    constexpr int descriptors = 54, size = 18;
    const auto flip = [&](int from, int to) {
        const int at = random.bounded(from, to);
        edid[at] = static_cast<char>(edid.at(at) ^ 1 << random.bounded(8));
    };
    switch (random.bounded(4)) {
    case 0:
        flip(8, 18);
        flip(24, 25);
        break;
    case 1:
        edid = edid.left(descriptors) + edid.mid(descriptors + size, 3 * size) + edid.mid(descriptors, size) +
               edid.mid(descriptors + 4 * size);
        break;
    case 2:
        for (int at = descriptors; at < descriptors + 4 * size; at += size) {
            const auto kind = static_cast<uchar>(edid.at(at + 3));
            if (edid.at(at) == 0 && edid.at(at + 1) == 0 && (kind == 0xfc || kind == 0xff))
                edid[at + random.bounded(5, size)] = static_cast<char>(random.bounded(256));
        }
        break;
    default:
        flip(20, int(edid.size()));
        return edid;
    }
    return summed(edid);
}

/// Of the last descriptor of its kind, as the reference decoder tells it.
QString lastText(const QString& told, const char* kind)
{
    QString last;
    auto all = QRegularExpression(QStringLiteral("Display Product %1: '(.*)'\\n").arg(QLatin1String(kind)))
                   .globalMatch(told);
    while (all.hasNext())
        last = all.next().captured(1);
    while (last.endsWith(u' '))
        last.chop(1);
    return last;
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

    /// Beside the reference decoder: the verdict, the preferred mode, and the serial numbers, of displays and
    /// of what becomes of them in the field.
    void agreesWithTheReference_data()
    {
        QTest::addColumn<QByteArray>("display");
        const QDir folder(QFINDTESTDATA("../fuzz/corpus/edid"));
        for (const QString& name : folder.entryList(QDir::Files)) {
            const QByteArray display = contentOf(folder.filePath(name));
            QTest::newRow(qPrintable(name)) << display;
            QRandomGenerator random(quint32(display.size()) + quint8(display.at(127)));
            for (int i = 0; i < variants; ++i)
                QTest::addRow("%s, %d", qPrintable(name), i) << variant(display, random);
        }
    }
    void agreesWithTheReference()
    {
        QFETCH(QByteArray, display);
        const QString tool = QStandardPaths::findExecutable(QStringLiteral("edid-decode"));
        if (tool.isEmpty())
            QSKIP("edid-decode is not installed");
        QProcess reference;
        reference.start(tool, {QStringLiteral("-p"), QStringLiteral("-c"), QStringLiteral("-")});
        QVERIFY(reference.waitForStarted());
        reference.write(display);
        reference.closeWriteChannel();
        QVERIFY(reference.waitForFinished());
        const QString text = QString::fromLatin1(reference.readAllStandardOutput());
        if (!text.contains(QStringLiteral("EDID conformity:")))
            QSKIP("edid-decode gives up on it");
        const auto found = [&text](const QString& pattern) {
            return QRegularExpression(pattern).match(text);
        };
        Edid read;
        const bool isGood = readEdid(bytesOf(display), read, nullptr);
        const bool isDamaged = found(QStringLiteral("\\nChecksum: 0x.. \\(should be")).hasMatch();
        QVERIFY2(isGood != isDamaged, qPrintable(text));
        if (!isGood)
            return;
        QCOMPARE(read.serialNumber,
                 found(QStringLiteral("\\n    Serial Number: (\\d+)")).captured(1).toUInt());
        QCOMPARE(lastText(text, "Serial Number"), QString::fromStdString(read.serialText));
        QCOMPARE(lastText(text, "Name"), QString::fromStdString(read.product));
        QStringList preferred; // by what is read; the first line decides where it can
        for (const char* blocks :
             {"only Block 0 is", "Block 0 and CTA-861 Blocks are", "Block 0 and DisplayID Blocks are"}) {
            const auto mode =
                found(QStringLiteral("Preferred Video Timings? if %1 parsed:\\n[^\\n]*?(\\d+x\\d+i?) "
                                     "+([\\d.]+) Hz")
                          .arg(QLatin1String(blocks)));
            if (mode.hasMatch())
                preferred.append(mode.captured(1) + u' ' + mode.captured(2));
            if (preferred.size() == 1 && blocks[0] == 'o')
                break;
        }
        if (preferred.isEmpty())
            return;
        QVERIFY(read.preferred);
        const QString ours = QStringLiteral("%1x%2%3 %4")
                                 .arg(read.preferred->width)
                                 .arg(read.preferred->height)
                                 .arg(read.preferred->interlaced ? QStringLiteral("i") : QString())
                                 .arg(read.preferred->refreshRate(), 0, 'f', 6);
        QVERIFY2(preferred.contains(ours), qPrintable(ours + u'\n' + text));
    }

private:
    static QByteArray ownDisplay(const char* name)
    {
        return contentOf(QFINDTESTDATA(QStringLiteral("../fuzz/corpus/edid/") + QLatin1String(name)));
    }
};

HALCYRA_TEST(TestEdid)
#include "test_edid.moc"
