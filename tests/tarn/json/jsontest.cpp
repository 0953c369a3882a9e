#include "tarn/json/json.h"

#include "tests/support/testmain.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <memory>
#include <random>

using namespace vantrel;

namespace {

Json parsed(const std::string& text)
{
    Json json;
    std::string error;
    if (!Json::parseString(text, json, &error))
        qFatal("%s: %s", text.c_str(), error.c_str());
    return json;
}

std::string nested(int levels, const char* open, const char* close)
{
    std::string text;
    for (int i = 0; i < levels; ++i)
        text += open;
    text += "0";
    for (int i = 0; i < levels; ++i)
        text += close;
    return text;
}

} // namespace

class JsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesWhatItRead_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("compact");
        const auto row = [](const char* name, const QByteArray& text, const QByteArray& compact) {
            QTest::newRow(name) << text << compact;
        };
        row("blanks", " \t\r\n{ \"a\" :\t[ 1 , 2 ] , \"b\":null }\n", R"({"a":[1,2],"b":null})");
        row("members in byte order", R"({"b":1,"":2,"a":3,"aa":4,"B":5,"é":6})",
            R"({"":2,"B":5,"a":3,"aa":4,"b":1,"é":6})");
        row("names around the inline length", R"({"123456789012345":1,"12345678901234":2,"1234567890123":3})",
            R"({"1234567890123":3,"12345678901234":2,"123456789012345":1})");
        row("a name with a zero byte", R"({"a\u0000":1,"a":2,"a\u0000b":3})",
            R"({"a":2,"a\u0000":1,"a\u0000b":3})");
        row("empty containers", R"([{},[],""])", R"([{},[],""])");
        row("escapes", "\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0041\\u00e9\\u20AC\\u001f\"",
            "\"\\\"\\\\/\\b\\f\\n\\r\\tAé€\\u001f\"");
        row("a surrogate pair", R"("\uD83D\uDE00\udbff\udfff")", "\"\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF\"");
        row("an escape after each length of plain text",
            R"(["\n","1\n","1234567\n","12345678\n","123456789abcdef\n"])",
            R"(["\n","1\n","1234567\n","12345678\n","123456789abcdef\n"])");
        row("text of more than one byte across word borders", "\"1234567é12345夜6789012345景\"",
            "\"1234567é12345夜6789012345景\"");
        row("delete and quotes stay", "\"\x7f'\"", "\"\x7f'\"");
        row("integers", "[0,-1,1,99,100,999999999999999999,-999999999999999999]",
            "[0,-1,1,99,100,999999999999999999,-999999999999999999]");
        row("the ends of 64 bits",
            "[9223372036854775807,-9223372036854775808,9223372036854775808,18446744073709551615]",
            "[9223372036854775807,-9223372036854775808,9223372036854775808,18446744073709551615]");
        row("doubles stay doubles", "[1.0,-0,-0.0,1e2,0.5e1,100000000000.0]",
            "[1.0,-0.0,-0.0,100.0,5.0,1e+11]");
        row("decimals", "[0.001,-1.25,29.97,59.94,123456.789,0.0001,0.1,12.010]",
            "[0.001,-1.25,29.97,59.94,123456.789,1e-04,0.1,12.01]");
        row("many digits", "[0.1000000000000000055,3.141592653589793238,123456789012345678.5]",
            "[0.1,3.141592653589793,123456789012345680.0]");
        row("far exponents", "[1.7976931348623157e308,5e-324,1E+2,1e-7]",
            "[1.7976931348623157e+308,5e-324,100.0,1e-07]");
        row("a scalar alone", "true", "true");
        row("as deep as allowed", QByteArray::fromStdString(nested(512, "[", "]")),
            QByteArray::fromStdString(nested(512, "[", "]")));
    }
    void writesWhatItRead()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, compact);
        const Json json = parsed(text.toStdString());
        QCOMPARE(QByteArray::fromStdString(json.toString()), compact);
        QVERIFY(parsed(json.toString()) == json);
        QVERIFY(parsed(json.toString(true)) == json);
        // The same bytes at the very end of their memory, and at every alignment: reading goes by words.
        for (std::size_t shift = 0; shift < 9; ++shift) {
            const std::string moved = std::string(shift, ' ') + text.toStdString();
            const std::unique_ptr<char[]> exact(new char[moved.size()]);
            std::memcpy(exact.get(), moved.data(), moved.size());
            Json again;
            QVERIFY(Json::parseString({exact.get(), moved.size()}, again));
            QVERIFY(again == json);
        }
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("error");
        const auto row = [](const char* name, const QByteArray& text, const char* error) {
            QTest::newRow(name) << text << QByteArray(error);
        };
        row("nothing", "", "unexpected end at byte 0");
        row("only blanks", " \n", "unexpected end at byte 2");
        row("two values", "1 2", "text after the value at byte 2");
        row("a zero byte after", QByteArray("1\0", 2), "text after the value at byte 1");
        row("a byte order mark", "\xEF\xBB\xBF{}", "unexpected character at byte 0");
        row("a comment", "[1/*x*/]", "expected");
        row("a trailing comma", "[1,]", "unexpected character");
        row("a leading comma", "[,1]", "unexpected character");
        row("a trailing comma in an object", R"({"a":1,})", "a member's name expected");
        row("no colon", R"({"a" 1})", "':' expected");
        row("no comma", R"({"a":1 "b":2})", "',' or '}' expected");
        row("open array", "[1", "',' or ']' expected");
        row("open object", R"({"a":1)", "',' or '}' expected");
        row("the wrong bracket", "[1}", "',' or ']' expected");
        row("a name that is no string", "{1:2}", "a member's name expected");
        row("single quotes", "'a'", "unexpected character");
        row("a member twice", R"({"a":1,"b":2,"a":3})", "a member given twice");
        row("a member twice by an escape", R"({"ab":1,"\u0061b":3})", "a member given twice");
        row("a long member twice", R"({"a name of many letters":1,"a name of many letters":1})",
            "a member given twice");
        row("half a word", "nul", "unexpected character");
        row("another case", "True", "unexpected character");
        row("not a number", "NaN", "unexpected character");
        row("infinity", "-Infinity", "a digit expected");
        row("a plus", "+1", "unexpected character");
        row("a leading zero", "01", "a number with a leading zero");
        row("a leading zero after minus", "-01", "a number with a leading zero");
        row("hexadecimal", "0x10", "text after the value");
        row("no digit before the point", ".5", "unexpected character");
        row("no digit after the point", "1.", "a digit expected");
        row("no exponent", "1e", "a digit expected");
        row("no exponent after its sign", "1e+", "a digit expected");
        row("just a minus", "-", "a digit expected");
        row("past 64 bits", "18446744073709551616", "a number out of range");
        row("below 64 bits", "-9223372036854775809", "a number out of range");
        row("a long integer", "100000000000000000000000", "a number out of range");
        row("past a double", "1e309", "a number out of range");
        row("so small that it would be zero", "1e-400", "a number out of range");
        row("an open string", "\"abc", "unexpected end in a string");
        row("a string open in an escape", "\"abc\\", "unexpected end in a string");
        row("an unknown escape", R"("\a")", "unknown escape");
        row("three hexadecimal digits", R"("\u123")", "hexadecimal");
        row("a sign in an escape", R"("\u-123")", "hexadecimal");
        row("a lone high surrogate", R"("\ud800")", "lone surrogate");
        row("a lone low surrogate", R"("\udc00")", "lone surrogate");
        row("two high surrogates", R"("\ud800\ud800")", "lone surrogate");
        row("a high surrogate and text", R"("\ud800abcdef")", "lone surrogate");
        row("a line break in a string", "\"a\nb\"", "control character in a string");
        row("a zero byte in a string", QByteArray("\"a\0b\"", 5), "control character in a string");
        row("a stray continuation byte", "\"\x80\"", "no UTF-8");
        row("an overlong slash", "\"\xC0\xAF\"", "no UTF-8");
        row("an overlong three-byte form", "\"\xE0\x80\xAF\"", "no UTF-8");
        row("a surrogate in bytes", "\"\xED\xA0\x80\"", "no UTF-8");
        row("past the last code point", "\"\xF4\x90\x80\x80\"", "no UTF-8");
        row("a cut sequence", "\"\xE5\xA4\"", "no UTF-8");
        row("bytes that are no UTF-8 in a name", "{\"12345678\xFF\":1}", "no UTF-8");
        row("arrays too deep", QByteArray::fromStdString(nested(513, "[", "]")),
            "nested too deep at byte 512");
        row("objects too deep", QByteArray::fromStdString(nested(513, "{\"a\":", "}")), "nested too deep");
        row("a flood of brackets", QByteArray(1000000, '['), "nested too deep");
    }
    void refuses()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, error);
        Json json = Json("as it was");
        std::string said;
        QVERIFY(!Json::parseString(text.toStdString(), json, &said));
        QVERIFY2(QByteArray::fromStdString(said).contains(error), said.c_str());
        QCOMPARE(json.stringView(), std::string_view("as it was"));
    }

    void numbersConvertOnlyWhereTheyFit()
    {
        constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
        constexpr auto highest = std::numeric_limits<std::uint64_t>::max();
        QCOMPARE(Json(highest).type(), JsonType::Int);
        QCOMPARE(Json(highest).asUInt(), highest);
        QCOMPARE(Json(highest).asInt(-7), -7);
        QCOMPARE(Json(lowest).asInt(), lowest);
        QCOMPARE(Json(lowest).asUInt(7), 7u);
        QCOMPARE(Json(-1.9).asInt(), -1);
        QCOMPARE(Json(9223372036854775808.0).asInt(-7), -7);
        QCOMPARE(Json(-9223372036854775808.0).asInt(), lowest);
        QCOMPARE(Json(18446744073709551616.0).asUInt(7), 7u);
        QCOMPARE(Json(3).asDouble(), 3.0);
        QCOMPARE(Json("3").asInt(-7), -7);
        QCOMPARE(Json(true).asInt(-7), -7);
        QVERIFY(Json(std::nan("")).isNull());
        QVERIFY(Json(HUGE_VAL).isNull());
    }

    void equalityIsByValue_data()
    {
        QTest::addColumn<QByteArray>("a");
        QTest::addColumn<QByteArray>("b");
        QTest::addColumn<bool>("equal");
        const auto row = [](const char* a, const char* b, bool equal) {
            QTest::addRow("%s against %s", a, b) << QByteArray(a) << QByteArray(b) << equal;
        };
        row("1", "1.0", true);
        row("0", "-0.0", true);
        row("9007199254740993", "9007199254740992.0", false);
        row("18446744073709551615", "18446744073709551616.0", false);
        row("9223372036854775808", "9223372036854775808.0", true);
        row("-1", "18446744073709551615", false);
        row("1", "true", false);
        row("0", "null", false);
        row("\"1\"", "1", false);
        row("[]", "{}", false);
        row("[1,[2,{\"a\":3}]]", "[1.0,[2,{\"a\":3.0}]]", true);
        row("[1,2]", "[2,1]", false);
        row("{\"a\":1,\"b\":2}", "{\"b\":2,\"a\":1}", true);
        row("{\"a\":null}", "{}", false);
        row("{\"a\":1}", "{\"b\":1}", false);
    }
    void equalityIsByValue()
    {
        QFETCH(QByteArray, a);
        QFETCH(QByteArray, b);
        QFETCH(bool, equal);
        const Json left = parsed(a.toStdString());
        const Json right = parsed(b.toStdString());
        QCOMPARE(left == right, equal);
        QCOMPARE(right == left, equal);
    }

    void textFromOutsideBecomesUtf8()
    {
        QCOMPARE(Json("a\xFFz").stringView(), std::string_view("a\xEF\xBF\xBDz"));
        Json object;
        object.set("k\xFF", 1);
        object.set("k\xFE", 2); // the same name once repaired
        QCOMPARE(object.size(), 1u);
        QCOMPARE(object.get("k\xEF\xBF\xBD").asInt(), 2);
        QVERIFY(parsed(object.toString()) == object);
    }

    void editsOfTheWrongTypeDoNothing()
    {
        Json json = Json::object({{"a", 1}});
        json.append(2);
        json.set(0, 2);
        QVERIFY(!json.erase(0) && !json.at(0) && !json.edit("b"));
        QCOMPARE(json.toString(), std::string(R"({"a":1})"));
        Json list = Json::array({1, 2});
        list.set("a", 1);
        list.set(2, 9);
        QVERIFY(!list.erase("a") && !list.erase(2) && !list.find("a"));
        list.insert(99, 3);
        QCOMPARE(list.toString(), std::string("[1,2,3]"));
        QCOMPARE(Json("text").size(), 0u);
        Json grown;
        grown.append(Json());
        QCOMPARE(grown.toString(), std::string("[null]"));
    }

    void aWalkSeesTheValueAsItBegan()
    {
        Json json = Json::object({{"a", 1}, {"b", 2}, {"c", 3}});
        std::string seen;
        json.forEachMember([&](std::string_view key, const Json& value) {
            json.erase("b");
            json.set("d", 4);
            seen += std::string(key) + value.asString();
            return seen.size() < 6;
        });
        QCOMPARE(seen, std::string("a1b2c3"));
        QCOMPARE(json.toString(), std::string(R"({"a":1,"c":3,"d":4})"));
        int items = 0;
        Json::array({1, 2, 3}).forEachItem([&](const Json& item) { return ++items, item.asInt() < 2; });
        QCOMPARE(items, 2);
    }

    void aValueMayTakeAPartOfItself()
    {
        Json json = parsed(R"({"a":{"b":[1,{"c":"a text that is not inline"}]}})");
        json = *json.find("a");
        json = std::move(*json.edit("b"));
        json.set(0, json);
        QCOMPARE(json.toString(),
                 std::string(R"([[1,{"c":"a text that is not inline"}],{"c":"a text that is not inline"}])"));
    }

    void deepValuesDieWithoutRecursion()
    {
        Json json;
        for (int i = 0; i < 1000000; ++i) {
            Json outer;
            if (i % 2) {
                outer.set("a name that is not inline", std::move(json));
                outer.set("b", 1);
            } else {
                outer.append(json);
            }
            json = std::move(outer);
        }
        json = Json(1);
        QCOMPARE(json.asInt(), 1);
    }

    void prettyText()
    {
        QCOMPARE(QByteArray::fromStdString(parsed(R"({"a":[1,{}],"b":{"c":[]}})").toString(true)),
                 QByteArray("{\n  \"a\": [\n    1,\n    {}\n  ],\n  \"b\": {\n    \"c\": []\n  }\n}"));
    }

    void doublesReadBackExactly()
    {
        std::mt19937_64 random(99);
        for (int i = 0; i < 200000; ++i) {
            const std::uint64_t bits = random();
            double number = 0;
            std::memcpy(&number, &bits, sizeof number);
            if (i % 2) // the numbers that the short way is for, and their neighbours
                number =
                    std::nextafter(static_cast<double>(bits % 2000000000000) / 1000, (i % 3 - 1) * 1e300);
            if (!std::isfinite(number))
                continue;
            Json back;
            const std::string text = Json(number).toString();
            QVERIFY2(Json::parseString(text, back), text.c_str());
            QCOMPARE(back.type(), JsonType::Double);
            QVERIFY2(back.asDouble() == number, text.c_str());
        }
    }
};

HALCYRA_TEST(JsonTest)
#include "jsontest.moc"
