#include "tarn/json/path.h"

#include "tests/support/testmain.h"

#include <QTest>

using namespace vantrel;

namespace {

QByteArray joined(const Path& path)
{
    QByteArray text;
    for (const PathElement& element : path)
        text += "[" + QByteArray::fromStdString(element.text()) + "]";
    return text;
}

} // namespace

class PathTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("lenient");
        QTest::addColumn<bool>("isPointer");
        QTest::addColumn<QByteArray>("strict");
        const auto row = [](const char* text, const char* lenient, bool isPointer, const char* strict) {
            QTest::addRow("'%s'", text)
                << QByteArray(text) << QByteArray(lenient) << isPointer << QByteArray(strict);
        };
        row("", "", true, "");
        row("/", "", true, "[]");
        row("/a", "[a]", true, "[a]");
        row("/device/channels/0/", "[device][channels][0]", true, "[device][channels][0][]");
        row("a/b", "[a][b]", false, "");
        row("//", "", true, "[][]");
        row("//a", "[][a]", true, "[][a]");
        row("/a~1b/m~0n/~01", "[a/b][m~n][~1]", true, "[a/b][m~n][~1]");
        row("/a~/b", "[a~][b]", false, "");
        row("/a~2", "[a~2]", false, "");
        row("/é/夜", "[é][夜]", true, "[é][夜]");
    }
    void reads()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, lenient);
        QFETCH(bool, isPointer);
        QFETCH(QByteArray, strict);
        QCOMPARE(joined(Path(text.toStdString())), lenient);
        Path path{"something"};
        QCOMPARE(Path::parse(text.toStdString(), path), isPointer);
        QCOMPARE(joined(path), strict);
        if (isPointer)
            QCOMPARE(QByteArray::fromStdString(path.toString()), text);
    }

    void indexes_data()
    {
        QTest::addColumn<bool>("isIndex");
        QTest::addColumn<qint64>("index");
        const auto row = [](const char* text, bool isIndex, qint64 index) {
            QTest::newRow(text) << isIndex << index;
        };
        row("0", true, 0);
        row("7", true, 7);
        row("10", true, 10);
        row("9223372036854775807", true, 9223372036854775807);
        row("9223372036854775808", false, 0);
        row("", false, 0);
        row("00", false, 0);
        row("01", false, 0);
        row("-1", false, 0);
        row("-0", false, 0);
        row("+1", false, 0);
        row(" 1", false, 0);
        row("1 ", false, 0);
        row("1e0", false, 0);
        row("0x1", false, 0);
        row("-", false, 0);
        row("٣", false, 0);
    }
    void indexes()
    {
        QFETCH(bool, isIndex);
        QFETCH(qint64, index);
        long long out = 0;
        QCOMPARE(PathElement(QTest::currentDataTag()).parseIndex(&out), isIndex);
        QCOMPARE(out, index);
    }

    void joinsAndCuts()
    {
        const Path path = Path("/device/channels") + Path{"0", "a/b"};
        QCOMPARE(path.toString(), std::string("/device/channels/0/a~1b"));
        QCOMPARE(path.parent().toString(), std::string("/device/channels/0"));
        QVERIFY(Path().parent().empty());
        const PathView view(path);
        QCOMPARE(view.first(1).toString(), std::string("/device"));
        QCOMPARE(view.from(2).toPath(), (Path{"0", "a/b"}));
        QVERIFY(PathView(Path()).toString().empty());
    }
};

HALCYRA_TEST(PathTest)
#include "pathtest.moc"
