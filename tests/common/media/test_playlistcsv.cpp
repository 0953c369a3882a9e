#include "common/media/models/playlist/playlistcsv.h"
#include "tarn/media/mediaenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/testmain.h"

#include <QBuffer>
#include <QTest>

namespace vantrel::test {

class TestPlaylistCsv : public QObject
{
    Q_OBJECT

private:
    static void read(PlaylistCsvImport& import, QByteArray text)
    {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        while (import.readSome(buffer, 1)) {
        }
    }

private Q_SLOTS:
    /// What is exported comes back as it was.
    void roundTrip()
    {
        const auto library = makeLibrary(1, 4);
        library->findSlot(1, 2)->setName("Say \"hello\",\r\nthen go");
        library->findSlot(1, 3)->setDurationType(MediaDurationType::Infinite);
        Playlist list("Show");
        list.addEntry({0, 999}, {slotUrl(1, 2), EndAction::Stop, TakeTransitionType::DirectCut, 0});
        list.addEntry({1, 0}, {slotUrl(1, 3), EndAction::Repeat, TakeTransitionType::DipToColor, 2.125});
        list.addEntry({7, 10}, {slotUrl(1, 4), EndAction::GoTo, TakeTransitionType::Crossfade, 3600});
        library->addPlaylist(1, list);
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QString error;
        QVERIFY(PlaylistCsv::write(buffer, *library, 1, &error));
        QVERIFY(buffer.data().contains(
            "\r\n1,c1s3,brume://collections/1/slots/3,infinite,dipToColor,repeat,2.125\r\n"));
        PlaylistCsvImport import(*library);
        read(import, buffer.data());
        QCOMPARE(import.refusal() + QString::number(import.problemCount()), QStringLiteral("0"));
        const auto entries = import.entries();
        QCOMPARE(entries.size(), qsizetype(list.getEntries().size()));
        for (const auto& [address, entry] : entries)
            QVERIFY(*list.findEntry(address) == entry);
        QVERIFY(!PlaylistCsv::write(buffer, *library, 2, &error));
        QCOMPARE(error, QStringLiteral("There is no playlist 2 to export."));
    }

    /// Each line that cannot be taken is named with its number and the reason; the others are taken.
    void namesWhatItCannotTake()
    {
        const auto library = makeLibrary(1, 4);
        PlaylistCsvImport import(*library);
        read(import, "Media,address,transition,End Action,transition duration,note\r\n"
                     "brume://collections/1/slots/1,1\n"
                     "brume://collections/1/slots/2,1,,,,again\n"
                     "brume://collections/1/slots/9,2\n"
                     "\n"
                     "clip.mp4,3\n"
                     "brume://collections/1/slots/1,1.2.3\n"
                     "brume://collections/1/slots/1,4,wipe\n"
                     "brume://collections/1/slots/1,5,direct cut,explode\n"
                     "brume://collections/1/slots/1,6,,,soon\n"
                     "a\"b,7\n"
                     "\"a\"b,8\n"
                     "brume://collections/1/slots/4,9,Direct Cut,STOP,0.5\n"
                     "brume://collections/1/slots/4,9.05\n"
                     "\"never closed,10\n"
                     "brume://collections/1/slots/4,11\n");
        QCOMPARE(import.refusal(), QString());
        QStringList problems;
        for (const auto& problem : import.problems())
            problems << QStringLiteral("%1 %2").arg(problem.line).arg(problem.text);
        QCOMPARE(
            problems.join(u'\n'),
            QStringLiteral(
                "3 The address 1 is that of line 2 already.\n"
                "4 The server has no slot 9 in collection 1.\n"
                "6 \"clip.mp4\" names no slot: write brume://collections/1/slots/2, for example.\n"
                "7 \"1.2.3\" is no address: write a number such as 5 or 5.1.\n"
                "8 \"wipe\" is no transition: it is crossfade, dipToColor or directCut.\n"
                "9 \"explode\" is no end action: it is next, pause, stop or repeat.\n"
                "10 \"soon\" is no duration of a transition: it is 0 to 3600 seconds.\n"
                "11 The line cannot be read: a quote stands inside a field that does not begin with one.\n"
                "12 The line cannot be read: something follows a closing quote.\n"
                "14 \"9.05\" is no address: write a number such as 5 or 5.1.\n"
                "15 The lines up to 16 cannot be read: a quote is never closed."));
        QCOMPARE(import.problemCount(), 12);
        QCOMPARE(import.entries().size(), 2);
        const PlaylistEntry last = import.entries()[1].second;
        QCOMPARE(last.getTransitionType(), TakeTransitionType::DirectCut);
        QCOMPARE(last.getEndAction(), EndAction::Stop);
        QCOMPARE(last.getTransitionDuration(), 0.5);
    }

    void refusals_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("refusal");
        QTest::newRow("empty") << QByteArray("\r\n") << QStringLiteral("The file is empty.");
        QTest::newRow("semicolons") << QByteArray("address;media\n1;x\n")
                                    << QStringLiteral("The first line names no column \"address\".");
        QTest::newRow("no media") << QByteArray("address\n1\n")
                                  << QStringLiteral("The first line names no column \"media\".");
        QTest::newRow("binary") << QByteArray(4096, '\xff')
                                << QStringLiteral("The first line names no column \"address\".");
        QTest::newRow("100 MB") << QByteArray("address,media\n") + QByteArray(100'000'000, '1')
                                << QStringLiteral("The file is larger than 16 MB.");
    }
    void refusals()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, refusal);
        const auto library = makeLibrary(1, 1);
        PlaylistCsvImport import(*library);
        read(import, text);
        QVERIFY2(import.refusal().startsWith(refusal), qPrintable(import.refusal()));
        QVERIFY(import.entries().isEmpty());
        QCOMPARE(import.problemCount(), 0);
    }

    /// A long file is read in slices; of a million bad lines some are kept, and all counted.
    void readsInSlices()
    {
        const auto library = makeLibrary(1, 1);
        QByteArray text("address,media\n");
        while (text.size() < 12'000'000)
            text += "x,y\n";
        PlaylistCsvImport import(*library);
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        int slices = 1;
        while (import.readSome(buffer, 5))
            ++slices;
        QVERIFY(slices > 3);
        QCOMPARE(import.problems().size(), PlaylistCsvImport::maxProblems);
        QCOMPARE(import.problemCount(), (text.size() - 14) / 4);
        QCOMPARE(import.bytesRead(), text.size());
    }
};

HALCYRA_TEST(TestPlaylistCsv)

} // namespace vantrel::test

#include "test_playlistcsv.moc"
