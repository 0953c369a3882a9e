#include "ombra/show/initiallibrary.h"

#include "ombra/show/contenturl.h"
#include "ombra/show/slotfacts.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace vantrel;
using namespace vantrel::ombra;

class InitialLibraryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesTheMediaInOrder()
    {
        const QTemporaryDir folder;
        QStringList files = {QStringLiteral("b clip.mp4"),   QStringLiteral("A/inner.MOV"),
                             QStringLiteral("notes.txt"),    QStringLiteral(".hidden.mp4"),
                             QStringLiteral("still_01.png"), QStringLiteral("A/tone.wav")};
        for (int i = 7; i <= 10; ++i)
            files += QStringLiteral("seq/f_%1.png").arg(i, 4, 10, QLatin1Char('0'));
        for (int i = 995; i <= 1006; ++i) // outgrows its digits, beside another that does not
            files += {QStringLiteral("t/g%1.tif").arg(i),
                      QStringLiteral("t/h%1.tif").arg(i, 4, 10, QLatin1Char('0'))};
        files += {QStringLiteral("t/logo1.png"), QStringLiteral("t/logo2.png"), QStringLiteral("t/logo3.png"),
                  QStringLiteral("u.ts"),        QStringLiteral("v.AIFF"),      QStringLiteral("w.gif"),
                  QStringLiteral("x.webp")};
        for (const QString& name : std::as_const(files)) {
            QVERIFY(QDir(folder.path()).mkpath(QFileInfo(folder.filePath(name)).path()));
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        const MediaLibrary library = makeInitialLibrary(folder.path().toStdString());
        QCOMPARE(library.getCollections().size(), std::size_t(1));
        QCOMPARE(library.findCollection(1)->getName(), std::string("Media"));
        QStringList slots_;
        for (const auto& [index, slot] : library.findCollection(1)->getSlots())
            slots_ += QStringLiteral("%1 %2 %3")
                          .arg(index)
                          .arg(QString::fromStdString(slot.getName()), QString::fromStdString(slot.getUrl()));
        QCOMPARE(slots_,
                 (QStringList{QStringLiteral("1 inner file:///A/inner.MOV"),
                              QStringLiteral("2 tone file:///A/tone.wav"),
                              QStringLiteral("3 b clip file:///b%20clip.mp4"),
                              QStringLiteral("4 f_%04d.png file:///seq/f_%2504d.png"),
                              QStringLiteral("5 still_01 file:///still_01.png"),
                              QStringLiteral("6 g%03d.tif file:///t/g%2503d.tif"),
                              QStringLiteral("7 h%04d.tif file:///t/h%2504d.tif"),
                              QStringLiteral("8 logo1 file:///t/logo1.png"),
                              QStringLiteral("9 logo2 file:///t/logo2.png"),
                              QStringLiteral("10 logo3 file:///t/logo3.png"),
                              QStringLiteral("11 u file:///u.ts"), QStringLiteral("12 v file:///v.AIFF"),
                              QStringLiteral("13 w file:///w.gif"), QStringLiteral("14 x file:///x.webp")}));
        QCOMPARE(library.findSlot(1, 6)->getFirstFrameNum().value_or(0), 995);
        QCOMPARE(library.findSlot(1, 6)->getLastFrameNum().value_or(0), 1006);
        const MediaSlot* sequence = library.findSlot(1, 4);
        QCOMPARE(sequence->getFirstFrameNum().value_or(0), 7);
        QCOMPARE(sequence->getLastFrameNum().value_or(0), 10);
        MediaSlot empty = *library.findSlot(1, 3);
        QVERIFY(applyFacts(probeFacts(folder.path().toStdString(), empty.getUrl()), empty));
        QVERIFY(!empty.getIsPlayable());
    }

    /// The same text as QUrl writes, so that both sides mean one file by one name.
    void urlsAreWrittenAsTheApplicationDoes_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name :
             {"a b.mp4", "50%.mp4", "a#b?c.mp4", "a[1].mp4", "\xC3\xA4\xE2\x82\xAC.mp4", "a&b=c+d.mp4",
              "f_%05d.png", "it's (1), ok!.mov", "a;b:c@d.mp4", "q\"<>|^`{}\\.mp4"})
            QTest::newRow(name) << QString::fromUtf8(name);
    }

    void urlsAreWrittenAsTheApplicationDoes()
    {
        QFETCH(QString, name);
        QString expected = QUrl::fromLocalFile(QStringLiteral("/dir/") + name).toString(QUrl::FullyEncoded);
        expected.replace(u'[', QStringLiteral("%5B")).replace(u']', QStringLiteral("%5D"));
        QCOMPARE(QString::fromStdString(contentUrl("dir/" + name.toStdString())), expected);
    }

    void sequencePatterns_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("patterns");
        QTest::newRow("padded") << QByteArray("frame_00017.png") << QByteArray("frame_%05d.png");
        QTest::newRow("outgrown") << QByteArray("x106.jpg") << QByteArray("x%01d.jpg x%02d.jpg x%03d.jpg");
        QTest::newRow("one digit") << QByteArray("0.jpg") << QByteArray("%01d.jpg");
        QTest::newRow("no digits") << QByteArray("x.jpg") << QByteArray();
        QTest::newRow("not last") << QByteArray("x01b.jpg") << QByteArray();
        QTest::newRow("too many") << QByteArray("x0123456789.jpg") << QByteArray();
        QTest::newRow("no suffix") << QByteArray("x01") << QByteArray();
    }

    void sequencePatterns()
    {
        QFETCH(QByteArray, name);
        std::string all;
        for (const std::string& pattern : ombra::sequencePatterns(name.toStdString()))
            all += (all.empty() ? "" : " ") + pattern;
        QTEST(QByteArray::fromStdString(all), "patterns");
    }
};

HALCYRA_TEST(InitialLibraryTest)
#include "initiallibrarytest.moc"
