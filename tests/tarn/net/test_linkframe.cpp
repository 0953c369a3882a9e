#include "tarn/net/linkframe.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <random>

using namespace vantrel;
using Result = linkframe::Decoder::Result;

class TestLinkFrame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesLengthAndText();
    void readsInAnyPieces();
    void refusesBadFrames_data();
    void refusesBadFrames();
    void splitsWhatIsTooLarge();
};

void TestLinkFrame::writesLengthAndText()
{
    Patch patch;
    patch.append(PatchOp::get(""));
    const std::string frame = linkframe::encode(patch);
    const std::string text = patch.toString();
    QCOMPARE(frame, std::string("\0\0\0", 3) + static_cast<char>(text.size()) + text);
    QCOMPARE(linkframe::encode(Patch()), std::string("\0\0\0\2[]", 6));
}

void TestLinkFrame::readsInAnyPieces()
{
    std::string stream;
    for (int i = 0; i < 200; ++i) {
        Patch patch;
        for (int k = 0; k < i % 4; ++k)
            patch.append(
                {PatchOpType::Replace, Path{"n", std::to_string(i)}, {}, Json(std::string(17 * k, 'x'))});
        stream += linkframe::encode(patch);
    }
    for (unsigned seed = 0; seed < 10; ++seed) {
        std::mt19937 random(seed);
        linkframe::Decoder decoder;
        int read = 0;
        for (std::size_t at = 0; at < stream.size();) {
            const std::size_t count =
                std::min<std::size_t>(stream.size() - at, seed == 0 ? 1 : random() % 400);
            decoder.feed(std::string_view(stream).substr(at, count));
            at += count;
            Patch patch;
            Result result;
            while ((result = decoder.next(patch)) == Result::Patch) {
                QCOMPARE(patch.size(), static_cast<std::size_t>(read % 4));
                if (!patch.empty())
                    QCOMPARE(patch[0].path.back().text(), std::to_string(read));
                ++read;
            }
            QCOMPARE(result, Result::NeedMore);
        }
        QCOMPARE(read, 200);
    }
}

void TestLinkFrame::refusesBadFrames_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto frame = [](const QByteArray& text) {
        return QByteArray("\0\0\0", 3) + static_cast<char>(text.size()) + text;
    };
    QTest::newRow("too large") << QByteArray("\x04\0\0\x01", 4);
    QTest::newRow("of another protocol") << QByteArray("GET / HTTP/1.1\r\n\r\n");
    QTest::newRow("empty") << frame("");
    QTest::newRow("no JSON") << frame("[{]");
    QTest::newRow("no array") << frame(R"({"op":"get","path":""})");
    QTest::newRow("unknown operation") << frame(R"([{"op":"reformat","path":"/"}])");
    QTest::newRow("no path") << frame(R"([{"op":"remove"}])");
    QTest::newRow("bad UTF-8") << frame("[{\"op\":\"get\",\"path\":\"/\xc3\x28\"}]");
    QTest::newRow("lone surrogate") << frame(R"([{"op":"get","path":"/\ud800"}])");
    QTest::newRow("text after the value") << frame("[] []");
}

void TestLinkFrame::refusesBadFrames()
{
    QFETCH(QByteArray, bytes);
    linkframe::Decoder decoder;
    const std::string good = linkframe::encode(Patch());
    decoder.feed(good + bytes.toStdString());
    Patch patch;
    QCOMPARE(decoder.next(patch), Result::Patch);
    QCOMPARE(decoder.next(patch), Result::Error);
    QVERIFY(!decoder.message().empty());
    decoder.feed(good);
    QCOMPARE(decoder.next(patch), Result::Error); // for good
}

void TestLinkFrame::splitsWhatIsTooLarge()
{
    Patch patch;
    const Json text(std::string(linkframe::maxPayload / 3, 'x'));
    for (int i = 0; i < 4; ++i)
        patch.append({PatchOpType::Add, Path{std::to_string(i)}, {}, text});
    linkframe::Decoder decoder;
    decoder.feed(linkframe::encode(patch));
    Patch piece;
    std::vector<std::string> names;
    while (decoder.next(piece) == Result::Patch) {
        for (const PatchOp& op : piece)
            names.push_back(op.path.back().text());
    }
    QCOMPARE(names, std::vector<std::string>({"0", "1", "2", "3"}));
}

HALCYRA_TEST(TestLinkFrame)
#include "test_linkframe.moc"
