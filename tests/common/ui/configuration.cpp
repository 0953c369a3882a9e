#include "common/session/settings/configuration.h"

#include "common/session/settings/keymap.h"
#include "common/session/settings/timecodeviewmode.h"
#include "common/ui/style/fontsizefollower.h"
#include "tarn/media/playenums.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QKeySequence>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;

class ConfigurationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesDefaults_data()
    {
        QTest::addColumn<int>("option");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("name") << int(CONNECTION_NAME) << "CONNECTION_NAME"
                              << QVariant(QStringLiteral("Server"));
        QTest::newRow("quality") << int(PREVIEW_QUALITY) << "PREVIEW_QUALITY"
                                 << QVariant(QStringLiteral("high"));
        QTest::newRow("text size") << int(TEXT_SIZE) << "TEXT_SIZE" << QVariant(1);
        QTest::newRow("rounding") << int(DRAGGER_ROUND_TO_STEP_SIZE) << "DRAGGER_ROUND_TO_STEP_SIZE"
                                  << QVariant(true);
        QTest::newRow("time") << int(TIMECODE_DISPLAY_MODE) << "TIMECODE_DISPLAY_MODE" << QVariant(0);
        QTest::newRow("take from") << int(TAKE_FROM) << "TAKE_FROM" << QVariant(0);
        QTest::newRow("transition") << int(TAKE_TRANSITION) << "TAKE_TRANSITION" << QVariant(0);
        QTest::newRow("duration") << int(TAKE_DURATION) << "TAKE_DURATION" << QVariant(1);
        QTest::newRow("preset") << int(TAKE_PRESET_TOGGLE) << "TAKE_PRESET_TOGGLE" << QVariant(true);
        QTest::newRow("user") << int(SERVER_CREDENTIALS_USERNAME) << "SERVER_CREDENTIALS_USERNAME"
                              << QVariant(QStringLiteral("opsadmin"));
        QTest::newRow("password") << int(SERVER_CREDENTIALS_PASSWORD) << "SERVER_CREDENTIALS_PASSWORD"
                                  << QVariant(QStringLiteral("tnempius"));
        QTest::newRow("limit") << int(TRANSFER_LIMIT_WHILE_PLAYING) << "TRANSFER_LIMIT_WHILE_PLAYING"
                               << QVariant(0);
    }

    void givesDefaults()
    {
        QFETCH(int, option);
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        const test::TestSettings settings;
        const QVariant found = settings->value(static_cast<ConfigurationOption>(option));
        QCOMPARE(Configuration::key(static_cast<ConfigurationOption>(option)), key);
        if (value.typeId() == QMetaType::Int)
            QCOMPARE(found.toInt(), value.toInt());
        else
            QCOMPARE(found, value);
        QVERIFY2(!settings->contains(key), "reading an option must not write it");
    }

    void warnsOfOptionsWithoutDefault()
    {
        const test::TestSettings settings;
        for (const auto option : {REFRESH_RATE, BIT_DEPTH, static_cast<ConfigurationOption>(99)}) {
            test::expectWarning(QStringLiteral("Unknown configuration option"));
            QCOMPARE(settings->value(option), QVariant(QString()));
        }
        QCOMPARE(Configuration::key(static_cast<ConfigurationOption>(99)),
                 QStringLiteral("UNKNOWN_CONFIGURATION_OPTION"));
    }

    void announcesWritesAndResets()
    {
        const test::TestSettings settings;
        QSignalSpy spy(&*settings, &Configuration::optionChanged);
        settings->setValue(TAKE_DURATION, 2.5);
        settings->resetValue(TAKE_DURATION);
        QCOMPARE(spy.size(), 2);
        QCOMPARE(spy.at(0).at(0).value<ConfigurationOption>(), TAKE_DURATION);
        QCOMPARE(spy.at(0).at(1).toDouble(), 2.5);
        QCOMPARE(spy.at(1).at(1).toInt(), 1);
        QCOMPARE(static_cast<QSettings&>(*settings).value(QStringLiteral("TAKE_DURATION")).toInt(), 1);
    }

    void keepsTypedValuesInTheFile()
    {
        test::TestSettings settings;
        QMap<QString, QVariant> keymap = defaultKeymap();
        keymap[QStringLiteral("undo")] = QVariant::fromValue(QKeySequence(QStringLiteral("Ctrl+U")));
        settings->setValue(TEXT_SIZE, QVariant::fromValue(FontSize::Huge));
        settings->setValue(KEYMAP, keymap);
        settings->beginGroup(QStringLiteral("Playback_0"));
        settings->setValue(TAKE_TRANSITION, QVariant::fromValue(TakeTransitionType::DirectCut));
        settings->endGroup();
        settings.reopen();
        QVERIFY(currentFontSize() == FontSize::Huge);
        QCOMPARE(settings->value(KEYMAP).toMap().value(QStringLiteral("undo")).value<QKeySequence>(),
                 QKeySequence(QStringLiteral("Ctrl+U")));
        QCOMPARE(settings->value(TAKE_TRANSITION).toInt(), 0); // the group's value stays in the group
        settings->beginGroup(QStringLiteral("Playback_0"));
        QCOMPARE(settings->value(TAKE_TRANSITION).toInt(), 2);
        settings->endGroup();
    }

    void readsNonsenseAsMedium_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<int>("size");
        QTest::newRow("text number") << QVariant(QStringLiteral("2")) << 2;
        QTest::newRow("number") << QVariant(0) << 0;
        QTest::newRow("too big") << QVariant(4) << 1;
        QTest::newRow("negative") << QVariant(-1) << 1;
        QTest::newRow("word") << QVariant(QStringLiteral("large")) << 1;
    }

    void readsNonsenseAsMedium()
    {
        QFETCH(QVariant, stored);
        QFETCH(int, size);
        test::TestSettings settings;
        static_cast<QSettings&>(*settings).setValue(QStringLiteral("TEXT_SIZE"), stored);
        settings.reopen();
        QCOMPARE(static_cast<int>(currentFontSize()), size);
    }

    void followersHearOfTextSizesOnly()
    {
        const test::TestSettings settings;
        QList<FontSize> heard;
        {
            const QObject context;
            followFontSize(const_cast<QObject*>(&context), [&heard](FontSize size) { heard.append(size); });
            settings->setValue(PREVIEW_QUALITY, QStringLiteral("low"));
            settings->setValue(TEXT_SIZE, QVariant::fromValue(FontSize::Large));
        }
        settings->setValue(TEXT_SIZE, QVariant::fromValue(FontSize::Small)); // the context is gone
        QVERIFY(heard == (QList<FontSize>{FontSize::Medium, FontSize::Large}));
    }
};

HALCYRA_TEST(ConfigurationTest)
#include "configuration.moc"
