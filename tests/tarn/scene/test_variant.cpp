#include "tarn/media/channelenums.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"
#include "tarn/qt/variantqt.h"
#include "tarn/scene/base64.h"
#include "tarn/scene/variantjson.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <vector>

using namespace vantrel;

class TestVariant : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAsNumbers();
    void writesText_data();
    void writesText();
    void parsesTypedNumbers_data();
    void parsesTypedNumbers();
    void readsEnumerations();
    void refusesOtherTypes_data();
    void refusesOtherTypes();
    void survivesJson();
    void survivesQt();
    void refusesBadBase64();
};

void TestVariant::readsAsNumbers()
{
    struct Case
    {
        Variant value;
        int integer;
        double number;
        bool truth;
    };
    const Case cases[] = {
        {Variant(), 0, 0, false},
        {Variant::from(true), 1, 1, true},
        {Variant::from(std::int64_t{0x1'0000'0007}), 7, 4294967303.0, true},
        {Variant::from(-3), -3, -3, true},
        {Variant::from(-2.9), -2, -2.9, true},
        {Variant::from(0.4), 0, 0.4, true},
        {Variant::from("12"), 0, 0, false},
        {Variant::from("true"), 0, 0, true},
        {Variant::from(ColorValue{1, 2, 3}), 0, 0, false},
    };
    for (const Case& c : cases) {
        QCOMPARE(c.value.as<int>(), c.integer);
        QCOMPARE(c.value.as<double>(), c.number);
        QCOMPARE(c.value.as<bool>(), c.truth);
    }
    QCOMPARE(Variant::from(1e300).as<std::int64_t>(), std::numeric_limits<std::int64_t>::max());
    QCOMPARE(Variant::from(std::nan("")).as<std::int64_t>(), 0);
    Variant value = Variant::from("x");
    const Variant copy = value;
    value.reset();
    QCOMPARE(value.type(), VariantType::None);
    QCOMPARE(copy.asString(), std::string("x"));
}

void TestVariant::writesText_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("precision");
    QTest::addColumn<QString>("text");
    QTest::newRow("all digits") << 0.1 << -1 << "0.1";
    QTest::newRow("all digits of a third") << 1.0 / 3 << -1 << "0.3333333333333333";
    QTest::newRow("rounded") << 1.0 / 3 << 3 << "0.333";
    QTest::newRow("no trailing zeros") << 2.5 << 3 << "2.5";
    QTest::newRow("whole") << 100.0 << 3 << "100";
    QTest::newRow("vanishing") << -0.0001 << 3 << "0";
    QTest::newRow("large") << 1e300 << -1 << "1e+300";
}

void TestVariant::writesText()
{
    QFETCH(double, number);
    QFETCH(int, precision);
    QTEST(QString::fromStdString(Variant::from(number).asString(precision)), "text");
}

void TestVariant::parsesTypedNumbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isInt");
    QTest::addColumn<bool>("isDouble");
    QTest::newRow("digits") << QByteArray("12") << true << true;
    QTest::newRow("negative") << QByteArray("-12") << true << true;
    QTest::newRow("decimal") << QByteArray("1.5") << false << true;
    QTest::newRow("comma") << QByteArray("1,5") << false << false;
    QTest::newRow("exponent") << QByteArray("1e3") << false << true;
    QTest::newRow("trailing") << QByteArray("12a") << false << false;
    QTest::newRow("blank") << QByteArray(" 12") << false << false;
    QTest::newRow("empty") << QByteArray("") << false << false;
    QTest::newRow("infinite") << QByteArray("inf") << false << false;
    QTest::newRow("not a number") << QByteArray("nan") << false << false;
    QTest::newRow("too large") << QByteArray("9223372036854775808") << false << true;
    QTest::newRow("far too large") << QByteArray("1e999") << false << false;
}

void TestVariant::parsesTypedNumbers()
{
    QFETCH(QByteArray, text);
    const std::string_view view(text.constData(), static_cast<std::size_t>(text.size()));
    QTEST(Variant::parseInt(view).type() == VariantType::Int, "isInt");
    QTEST(Variant::parseDouble(view).type() == VariantType::Double, "isDouble");
    if (Variant::parseInt(view).type() == VariantType::Int)
        QCOMPARE(Variant::parseInt(view).asString(), text.toStdString());
}

void TestVariant::readsEnumerations()
{
    const test::LogCapture log;
    QCOMPARE(Variant::from("goTo").as<EndAction>(), EndAction::GoTo);
    QCOMPARE(Variant::from(3).as<EndAction>(), EndAction::Repeat);
    QCOMPARE(Variant::from(EndAction::Stop).asString(), std::string("stop"));
    QCOMPARE(Variant::from(ScaleMode::Default).as<ScaleMode>(), ScaleMode::Default);
    QCOMPARE(Variant::from(SourceMode::Playlist), Variant::from(2));
    QCOMPARE(Variant::from("dante").as<AudioPlaybackDevice>(), AudioPlaybackDevice::Dante);
    QCOMPARE(log.lines(), QStringList());

    QCOMPARE(Variant::from("backwards").as<EndAction>(), EndAction::Next);
    QCOMPARE(Variant::from("").as<AudioPlaybackDevice>(), AudioPlaybackDevice::Off);
    QCOMPARE(Variant::from(17).as<SourcePlayState>(), SourcePlayState::Play);
    QCOMPARE(toStr(static_cast<PlayheadOption>(9)), "inpoint");
    QCOMPARE(log.lines(),
             QStringList({QStringLiteral("enums: Missing enum mapping. Defaulting to 'next'"),
                          QStringLiteral("enums: Missing enum mapping. Defaulting to 'off'"),
                          QStringLiteral("enums: Missing enum mapping. Defaulting to 'play'"),
                          QStringLiteral("enums: Missing enum mapping. Defaulting to 'inpoint'")}));
}

void TestVariant::refusesOtherTypes_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<bool>("fits");
    const auto row = [](const char* json, VariantType wanted, bool fits) {
        QTest::addRow("%s as %s", json, toStr(wanted))
            << QByteArray(json) << static_cast<int>(wanted) << fits;
    };
    row("1", VariantType::Double, true);
    row("1.0", VariantType::Int, true);
    row("1.5", VariantType::Int, false);
    row("1e300", VariantType::Int, false);
    row("18446744073709551615", VariantType::Int, false);
    row("1", VariantType::Bool, false);
    row("true", VariantType::Int, false);
    row("\"1\"", VariantType::Int, false);
    row("\"true\"", VariantType::Bool, false);
    row("1", VariantType::String, false);
    row("null", VariantType::String, false);
    row("null", VariantType::Double, false);
    row("[]", VariantType::String, false);
    row("\"#0aF\"", VariantType::Color, false);
    row("\"#0a0b0C\"", VariantType::Color, true);
    row("\"#800a0b0c\"", VariantType::Color, true);
    row("\"#-a0b0c\"", VariantType::Color, false);
    row("\"red\"", VariantType::Color, false);
    row("\"AAEC\"", VariantType::Bytes, true);
    row("\"AAE\"", VariantType::Bytes, false);
}

void TestVariant::refusesOtherTypes()
{
    QFETCH(QByteArray, json);
    QFETCH(int, wanted);
    QFETCH(bool, fits);
    Json parsed;
    QVERIFY(Json::parseString(json.toStdString(), parsed));
    const auto type = static_cast<VariantType>(wanted);
    QCOMPARE(variantFromJson(parsed, type).type(), fits ? type : VariantType::None);
}

void TestVariant::survivesJson()
{
    const std::vector<Variant> values = {Variant::from(true),
                                         Variant::from(std::numeric_limits<std::int64_t>::min()),
                                         Variant::from(0.1),
                                         Variant::from("é\n\"\xf0\x9f\x8e\xac"),
                                         Variant::from(ColorValue{1, 2, 3, 4}),
                                         Variant::from(ColorValue{255, 0, 128}),
                                         Variant::from(std::vector<std::uint8_t>{0, 255, 7, 9, 10})};
    for (const Variant& value : values) {
        Json json;
        Json::fromVariant(value, json);
        QVERIFY(Json::parseString(json.toString(), json));
        QCOMPARE(variantFromJson(json, value.type()), value);
    }
}

void TestVariant::survivesQt()
{
    QCOMPARE(Variant::from(QStringLiteral("Bühne ✓")).as<QString>(), QStringLiteral("Bühne ✓"));
    QCOMPARE(Variant::from(QColor(1, 2, 3, 4)).as<QColor>(), QColor(1, 2, 3, 4));
    QCOMPARE(Variant::from(QColor()).type(), VariantType::None);
    QCOMPARE(variantToQVariant(Variant::from(true)), QVariant(true));
    QCOMPARE(variantToQVariant(Variant::from(std::int64_t{7})), QVariant(7));
    QCOMPARE(variantToQVariant(Variant::from(std::int64_t{1} << 40)), QVariant(1LL << 40));
    QCOMPARE(variantToQVariant(Variant::from(2.5)), QVariant(2.5));
    QCOMPARE(variantToQVariant(Variant::from("x")), QVariant(QStringLiteral("x")));
    QCOMPARE(variantToQVariant(Variant::from(std::vector<std::uint8_t>{0, 1})),
             QVariant(QByteArray("\0\1", 2)));
    QCOMPARE(variantToQVariant(Variant::from(QColor(9, 8, 7))), QVariant(QColor(9, 8, 7)));
    QVERIFY(!variantToQVariant({}).isValid());
}

void TestVariant::refusesBadBase64()
{
    for (const char* text : {"A", "AA=A", "====", "A===", "AA A", "AAA\n", "AA==AA=="})
        QVERIFY2(!base64::decode(text), text);
    QCOMPARE(base64::encode(*base64::decode("")), std::string());
}

HALCYRA_TEST(TestVariant)
#include "test_variant.moc"
