#include "tarn/media/imgseqanalyzer.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QRegularExpression>
#include <QTest>

#include <algorithm>

using namespace vantrel;

namespace {

using Paths = std::vector<std::filesystem::path>;

/// "shot.[8-10].exr" are three names, "[0008-0010]" are as wide as they are written.
Paths namesOf(const QString& list)
{
    static const QRegularExpression range(QStringLiteral(R"(\[(\d+)-(\d+)\])"));
    Paths names;
    for (const QString& one : list.split(u'|', Qt::SkipEmptyParts)) {
        const auto match = range.match(one);
        if (!match.hasMatch()) {
            names.push_back(one.toStdString());
            continue;
        }
        for (int i = match.captured(1).toInt(); i <= match.captured(2).toInt(); ++i) {
            const QString number = QString::number(i).rightJustified(
                match.captured(1).startsWith(u'0') ? match.capturedLength(1) : 1, u'0');
            names.push_back(
                QString(one).replace(match.capturedStart(), match.capturedLength(), number).toStdString());
        }
    }
    return names;
}

QString described(const ImageSequenceInfo& info)
{
    QString text = QStringLiteral("%1 %2-%3")
                       .arg(QString::fromStdString(info.format.toString()), QString::number(info.firstFrame),
                            QString::number(info.lastFrame));
    for (const FrameRange& gap : info.missing)
        text += QStringLiteral(" -%1-%2").arg(gap.first).arg(gap.last);
    return text;
}

QString found(const Paths& paths, const ImgSeqAnalyzer::Lister& lister = {})
{
    QStringList texts;
    for (const ImageSequenceInfo& info : ImgSeqAnalyzer().findSequences(paths, lister)) {
        // What reads the patterns elsewhere takes each, and gives the same picture names.
        static const QRegularExpression pattern(QStringLiteral(R"(^(.*?)(?:\%(\d{2,})d)(\.\w+))"));
        const QString name = QString::fromStdString(info.sourceName.substr(info.sourceName.rfind('/') + 1));
        const auto match = pattern.match(name);
        if (!match.hasMatch() || match.captured(2).toInt() != info.format.width() ||
            !QString::fromStdString(info.format.prefix()).endsWith(match.captured(1)))
            texts += QStringLiteral("unreadable:");
        texts += described(info);
    }
    return texts.join(u'|');
}

} // namespace

class TestSequences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groups_data()
    {
        QTest::addColumn<QString>("names");
        QTest::addColumn<QString>("sequences");
        const auto row = [](const char* what, const char* names, const char* sequences) {
            QTest::newRow(what) << QString::fromUtf8(names) << QString::fromUtf8(sequences);
        };
        row("padded", "clip_[00001-00012].png", "clip_%05d.png 1-12");
        row("unpadded", "img-[7-10].jpg", "img-%01d.jpg 7-10");
        row("from 1001", "shot.[1001-1003].exr", "shot.%04d.exr 1001-1003");
        row("number alone", "[0001-0003].dpx", "%04d.dpx 1-3");
        row("number first", "[0001-0003].shot.left.exr", "%04d.shot.left.exr 1-3");
        row("a single one", "shot.0001.exr|logo.png", "");
        row("gaps", "a.0001.exr|a.0004.exr|a.0005.exr|a.0010.exr", "a.%04d.exr 1-10 -2-3 -6-9");
        row("stepped", "a.0010.exr|a.0020.exr|a.0030.exr", "a.%04d.exr 10-30 -11-19 -21-29");
        row("outgrows its digits", "g[995-1006].tif", "g%03d.tif 995-1006");
        row("outgrows its padding", "g.[0001-0003].png|g.[9998-10001].png", "g.%04d.png 1-10001 -4-9997");
        row("outgrows over a gap", "g998.png|g1001.png|g1002.png", "g%03d.png 998-1002 -999-1000");
        row("unpadded and sparse", "f1.png|f10.png|f100.png", "f%01d.png 1-100 -2-9 -11-99");
        row("two widths, padded", "a_[001-003].png|a_[0001-0002].png", "a_%03d.png 1-3|a_%04d.png 1-2");
        row("two widths, unpadded", "a.[101-104].png|a.[1001-1004].png",
            "a.%03d.png 101-104|a.%04d.png 1001-1004");
        row("padded beside unpadded", "a_[1-12].png|a_[001-003].png", "a_%01d.png 1-12|a_%03d.png 1-3");
        row("goes on with the nearer", "a[998-1001].png|a[0001-0002].png",
            "a%03d.png 998-1001|a%04d.png 1-2");
        row("two suffixes", "a.[01-03].exr|a.[01-02].png|a.[04-05].PNG",
            "a.%02d.PNG 4-5|a.%02d.exr 1-3|a.%02d.png 1-2");
        row("versions beside frames", "012_vb_110_v001.[0001-0002].png|012_vb_110_v002.[1-3].png",
            "012_vb_110_v001.%04d.png 1-2|012_vb_110_v002.%01d.png 1-3");
        row("versions alone", "logo_v[01-04].png|logo.ver[1-3].png", "");
        row("frames behind a v", "v[0001-0100].png", "v%04d.png 1-100");
        row("the last number runs", "sh010_take2_[0101-0103].tif|sh020_take1_[0101-0102].tif",
            "sh010_take2_%04d.tif 101-103|sh020_take1_%04d.tif 101-102");
        row("the first number runs", "file[1-4].03.png|file.info.03.png", "file%01d.03.png 1-4");
        row("layers", "s.[0001-0005].1.exr|s.[0001-0005].2.exr", "s.%04d.1.exr 1-5|s.%04d.2.exr 1-5");
        row("tiles over time", "t.1001.[0001-0002].exr|t.1002.[0001-0002].exr|t.1003.[0001-0002].exr",
            "t.1001.%04d.exr 1-2|t.1002.%04d.exr 1-2|t.1003.%04d.exr 1-2");
        row("tiles", "map_x0_y0.png|map_x0_y1.png|map_x1_y0.png|map_x1_y1.png", "");
        row("eyes", "s_L.[001-002].exr|s_R.[001-002].exr|s_left.[001-002].exr",
            "s_L.%03d.exr 1-2|s_R.%03d.exr 1-2|s_left.%03d.exr 1-2");
        row("sizes", "logo_1920x1080.png|logo_1920x1200.png|logo@2x.png|logo@3x.png", "");
        row("days", "cam_20240130.jpg|cam_20240131.jpg|d_2024-01-30.jpg|d_2024-01-31.jpg", "");
        row("photographs", "IMG_20240131_101500.jpg|IMG_20240131_101732.jpg", "");
        row("days beside frames", "r_20240130_[0001-0002].png|r_20240131_[0001-0002].png",
            "r_20240130_%04d.png 1-2|r_20240131_%04d.png 1-2");
        row("frames of a day", "r_20240131_[000001-000003].png", "r_20240131_%06d.png 1-3");
        row("below zero", "s.-0002.exr|s.-0001.exr|s.[0000-0002].exr", "s.%04d.exr 0-2");
        row("a dash in front", "s-[001-002].png", "s-%03d.png 1-2");
        row("per cent signs",
            "50%_[01-02].png|a%04d.[01-02].png|b%04dc.[01-02].png|c%04d.x.[01-02].png|[01-02].%04d.png",
            "50%_%02d.png 1-2|a%04d.%02d.png 1-2|b%04dc.%02d.png 1-2");
        row("brackets", "a[x](1).[01-02].png|copy (1).png|copy (2).png|b[1].png|b[2].png",
            "a[x](1).%02d.png 1-2");
        row("no suffix behind it", "[0001-0003]_left.png", "");
        row("other files", "clip_[01-03].mov|notes[1-3].txt|a[1-2].png|._a[1-2].png", "a%01d.png 1-2");
        row("very long numbers",
            "b123456789012345678901_[1-2].png|b123456789012345678902_3.png|c1700000000000_[1-2].png",
            "b123456789012345678901_%01d.png 1-2|c1700000000000_%01d.png 1-2");
        row("too many digits", "t_1700000000000.png|t_1700000000001.png", "");
        // The folder's name ends where the other picture's first number stands.
        row("alike but for a folder", "t0_n[1-2].png|t/_n[1-2].png", "t/_n%01d.png 1-2|t0_n%01d.png 1-2");
        row("in the order of people", "c10_[01-02].png|c2_[01-02].png", "c2_%02d.png 1-2|c10_%02d.png 1-2");
    }

    void groups()
    {
        QFETCH(QString, names);
        QFETCH(QString, sequences);
        Paths paths = namesOf(names);
        QCOMPARE(found(paths), sequences);
        std::ranges::reverse(paths);
        paths.insert(paths.end(), paths.begin(), paths.end()); // in any order, and however often
        QCOMPARE(found(paths), sequences);
    }

    void asksForFolders()
    {
        const auto lister = [](const std::filesystem::path& path) -> Paths {
            if (path == "/a" || path == "/p.png/")
                return {path / "s.01.png", path / "s.02.png", path / "n.mov"};
            if (path == "/b")
                return {"s.01.png", "s.02.png"};
            if (path == "/gone")
                throw std::filesystem::filesystem_error("gone", path, {});
            return {};
        };
        const test::LogCapture log;
        QCOMPARE(
            found({"/b", "/gone", "/c/s.03.png", "/a", "/clip.mov", "/p.png/", "/c/s.04.png", "/a/s.03.png"},
                  lister),
            QStringLiteral("/a/s.%02d.png 1-3|/b/s.%02d.png 1-2|/c/s.%02d.png 3-4|/p.png/s.%02d.png 1-2"));
        QCOMPARE(found({}, lister), QString());
        QCOMPARE(log.lines().size(), 1);
    }

    void readsPatterns_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("picture"); // 7
        QTest::newRow("plain") << QByteArray("/a/c_%05d.png") << QByteArray("/a/c_00007.png");
        QTest::newRow("suffix first") << QByteArray("a%02dx.%03d.png") << QByteArray("a%02dx.007.png");
        QTest::newRow("no suffix") << QByteArray("%04d_left.png") << QByteArray("0007_left.png");
        QTest::newRow("in the folder") << QByteArray("/%02d.d/a.png") << QByteArray();
        QTest::newRow("one digit") << QByteArray("a%5d.png") << QByteArray();
        QTest::newRow("too wide") << QByteArray("a%99d.x.%02d.png") << QByteArray();
        QTest::newRow("far too wide") << QByteArray("a%99999999999d.png") << QByteArray();
        QTest::newRow("signed") << QByteArray("a%-5d.png") << QByteArray();
        QTest::newRow("cut off") << QByteArray("a%05") << QByteArray();
    }

    void readsPatterns()
    {
        QFETCH(QByteArray, text);
        const auto format = ImageSequenceFormat::parse(text.toStdString());
        QTEST(format ? QByteArray::fromStdString(format->file(7)) : QByteArray(), "picture");
        if (format)
            QCOMPARE(QByteArray::fromStdString(format->toString()), text);
    }
};

HALCYRA_TEST(TestSequences)
#include "test_sequences.moc"
