#include "tarn/log/log.h"
#include "tests/support/testmain.h"
#include "util/smpte_timecode.h"

#include <QTest>

#include <stdexcept>
#include <vector>

using namespace vantrel;

namespace {

/// Counts drop-frame numbers one by one: after each minute but the tenth, numbers 0 and 1 are passed over.
class DropFrameCounter
{
public:
    std::string text() const
    {
        return QString::asprintf("%02d:%02d:%02d;%02d", m_hours, m_minutes, m_seconds, m_frames)
            .toStdString();
    }
    void next()
    {
        if (++m_frames < 30)
            return;
        m_frames = 0;
        if (++m_seconds < 60)
            return;
        m_seconds = 0;
        if (++m_minutes == 60) {
            m_minutes = 0;
            ++m_hours;
        }
        if (m_minutes % 10 != 0)
            m_frames = 2;
    }

private:
    int m_hours = 0, m_minutes = 0, m_seconds = 0, m_frames = 0;
};

} // namespace

class TestSmpteTimecode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nonDropRoundTrips_data()
    {
        QTest::addColumn<int>("fps");
        for (const int fps : {24, 25, 30, 50, 60})
            QTest::addRow("%d", fps) << fps;
    }
    void nonDropRoundTrips()
    {
        QFETCH(int, fps);
        std::string before;
        for (int frame = 0; frame < 24 * 3600 * fps; ++frame) {
            const SmpteTimecode timecode(SmpteTimecodeType::NonDrop, frame, static_cast<unsigned short>(fps));
            const std::string text = timecode.toString();
            if (!(SmpteTimecode::fromString(text, static_cast<unsigned short>(fps)) == timecode) ||
                text <= before)
                QFAIL(qPrintable(QStringLiteral("frame %1 is %2").arg(frame).arg(text.c_str())));
            before = text;
        }
    }

    void dropFrameCountsAsTheReference()
    {
        DropFrameCounter reference;
        for (int frame = 0; frame < 24 * 6 * 17982; ++frame, reference.next()) {
            const SmpteTimecode timecode(SmpteTimecodeType::DropFrame, frame, 30);
            const std::string text = timecode.toString();
            if (text != reference.text() || !(SmpteTimecode::fromString(text, 30) == timecode))
                QFAIL(qPrintable(QStringLiteral("frame %1 is %2").arg(frame).arg(text.c_str())));
        }
        QCOMPARE(reference.text(), std::string("24:00:00;00"));
    }

    void writes_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("frame");
        QTest::addColumn<int>("fps");
        QTest::addColumn<QString>("text");
        QTest::newRow("last of the first minute") << 1 << 1799 << 30 << "00:00:59;29";
        QTest::newRow("first after the drop") << 1 << 1800 << 30 << "00:01:00;02";
        QTest::newRow("ten minutes") << 1 << 17982 << 30 << "00:10:00;00";
        QTest::newRow("60 before its jump") << 1 << 3597 << 60 << "00:00:59;57";
        QTest::newRow("60 after its jump") << 1 << 3598 << 60 << "00:01:00;00";
        QTest::newRow("drop at 25 is none") << 1 << 90000 << 25 << "01:00:00:00";
        QTest::newRow("another type counts as drop, with a colon") << 2 << 1800 << 30 << "00:01:00:02";
        QTest::newRow("one digit") << 0 << 19 << 10 << "00:00:01:9";
        QTest::newRow("three digits") << 0 << 121 << 120 << "00:00:01:001";
        QTest::newRow("five digits") << 0 << 1 << 20000 << "00:00:00:00001";
        QTest::newRow("negative") << 0 << -26 << 25 << "-00:00:01:01";
        QTest::newRow("hours keep 16 bits") << 0 << 2147483647 << 1 << "6699:14:07:0";
    }
    void writes()
    {
        QFETCH(int, type);
        QFETCH(int, frame);
        QFETCH(int, fps);
        const SmpteTimecode timecode(static_cast<SmpteTimecodeType>(type), frame,
                                     static_cast<unsigned short>(fps));
        QTEST(QString::fromStdString(timecode.toString()), "text");
    }

    void reads_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("fps");
        QTest::addColumn<int>("frame");
        QTest::addColumn<QString>("error");
        QTest::newRow("fields out of range carry over") << "00:00:75:40" << 25 << 75 * 25 + 40 << "";
        QTest::newRow("a minus is of the hours alone") << "-01:00:01:00" << 25 << -3599 * 25 << "";
        QTest::newRow("rest is ignored") << "00:00:01:05 or so" << 25 << 30 << "";
        QTest::newRow("sum keeps 32 bits")
            << "32767:00:00:00" << 60000 << static_cast<int>(32767ll * 3600 * 60000) << "";
        QTest::newRow("point") << "00:00:00.00" << 25 << 0 << "invalid timecode separator: .";
        QTest::newRow("garbage") << "garbage" << 25 << 0 << "invalid timecode";
        QTest::newRow("short") << "00:00:00" << 25 << 0 << "invalid timecode";
        QTest::newRow("empty") << "" << 25 << 0 << "invalid timecode";
        QTest::newRow("no frames") << "00:00:00:" << 25 << 0 << "invalid timecode";
    }
    void reads()
    {
        QFETCH(QString, text);
        QFETCH(int, fps);
        QFETCH(int, frame);
        QFETCH(QString, error);
        try {
            const auto timecode =
                SmpteTimecode::fromString(text.toStdString(), static_cast<unsigned short>(fps));
            QCOMPARE(QString(), error);
            QCOMPARE(timecode,
                     SmpteTimecode(SmpteTimecodeType::NonDrop, frame, static_cast<unsigned short>(fps)));
        } catch (const std::runtime_error& e) {
            QCOMPARE(QString::fromUtf8(e.what()), error);
        }
    }

    void dropFrameNeedsAMultipleOf30()
    {
        QStringList lines;
        Log::setSink([&](LogLevel level, const LogLoc& from, std::string_view, std::string_view message) {
            lines += QStringLiteral("%1 %2:%3 %4 %5")
                         .arg(static_cast<int>(level))
                         .arg(QLatin1StringView(from.file.data(), qsizetype(from.file.size())))
                         .arg(from.line)
                         .arg(QLatin1StringView(from.function.data(), qsizetype(from.function.size())),
                              QLatin1StringView(message.data(), qsizetype(message.size())));
        });
        const auto timecode = SmpteTimecode::fromString("00:01:00;02", 25);
        (void)SmpteTimecode(SmpteTimecodeType::DropFrame, 90000, 25).toString();
        Log::setSink({});
        QCOMPARE(timecode, SmpteTimecode(SmpteTimecodeType::DropFrame, 0, 25));
        QCOMPARE(lines, QStringList{QStringLiteral("3 smpte_timecode:57 toDropFrameNumber Drop frame not "
                                                   "supported for fps=25")});
    }
};

HALCYRA_TEST(TestSmpteTimecode)
#include "test_smptetimecode.moc"
