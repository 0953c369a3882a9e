#include "common/session/settings/configuration.h"

#include "common/session/settings/keymap.h"
#include "common/session/settings/timecodeviewmode.h"
#include "tarn/media/playenums.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QPointer>

Q_DECLARE_METATYPE(vantrel::TakeTransitionType)
Q_DECLARE_METATYPE(vantrel::PlayheadOption)

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.configuration")

QPointer<Configuration>& current()
{
    static QPointer<Configuration> settings;
    return settings;
}

} // namespace

Configuration::Configuration()
    : QSettings(QSettings::IniFormat, QSettings::UserScope, QCoreApplication::organizationName(),
                QCoreApplication::applicationName())
{
    // Enumerations are stored under their type's name, which must be known before the file is read.
    qRegisterMetaType<FontSize>();
    qRegisterMetaType<TakeTransitionType>();
    qRegisterMetaType<PlayheadOption>();
    qRegisterMetaType<TimecodeViewMode>();
    qRegisterMetaType<ConfigurationOption>();
    qCDebug(log) << "Configuration file:" << QSettings::fileName();
    current() = this;
}

Configuration::~Configuration() = default;

QVariant Configuration::value(ConfigurationOption option) const
{
    const QVariant stored = QSettings::value(key(option));
    return stored.isValid() ? stored : defaultValue(option);
}

void Configuration::setValue(ConfigurationOption option, const QVariant& value)
{
    QSettings::setValue(key(option), value);
    Q_EMIT optionChanged(option, value);
}

void Configuration::resetValue(ConfigurationOption option)
{
    setValue(option, defaultValue(option));
}

QVariant Configuration::defaultValue(ConfigurationOption option)
{
    switch (option) {
    case CONNECTION_HOST:
        return QStringLiteral("192.168.10.10");
    case CONNECTION_NAME:
        return QStringLiteral("Server");
    case PREVIEW_QUALITY:
        return QStringLiteral("high");
    case TEXT_SIZE:
        return QVariant::fromValue(FontSize::Medium);
    case KEYMAP:
        return defaultKeymap();
    case DRAGGER_ROUND_TO_STEP_SIZE:
        return true;
    case TIMECODE_DISPLAY_MODE:
        return 0;
    case TAKE_FROM:
        return QVariant::fromValue(PlayheadOption::FromInpoint);
    case TAKE_TRANSITION:
        return QVariant::fromValue(TakeTransitionType::Crossfade);
    case TAKE_DURATION:
        return 1;
    case TAKE_PRESET_TOGGLE:
        return true;
    case SERVER_CREDENTIALS_USERNAME:
        return QStringLiteral("opsadmin");
    case SERVER_CREDENTIALS_PASSWORD:
        return QStringLiteral("tnempius");
    case TRANSFER_LIMIT_WHILE_PLAYING:
        return 0;
    case REFRESH_RATE:
    case BIT_DEPTH:
        break;
    }
    qCWarning(log) << "Unknown configuration option" << static_cast<int>(option);
    return QString();
}

QString Configuration::key(ConfigurationOption option)
{
    static constexpr const char* keys[] = {
        "CONNECTION_HOST",
        "CONNECTION_NAME",
        "REFRESH_RATE",
        "BIT_DEPTH",
        "PREVIEW_QUALITY",
        "TEXT_SIZE",
        "KEYMAP",
        "DRAGGER_ROUND_TO_STEP_SIZE",
        "TIMECODE_DISPLAY_MODE",
        "TAKE_FROM",
        "TAKE_TRANSITION",
        "TAKE_DURATION",
        "TAKE_PRESET_TOGGLE",
        "SERVER_CREDENTIALS_USERNAME",
        "SERVER_CREDENTIALS_PASSWORD",
        "TRANSFER_LIMIT_WHILE_PLAYING",
    };
    const auto number = static_cast<std::size_t>(option);
    return QString::fromLatin1(number < std::size(keys) ? keys[number] : "UNKNOWN_CONFIGURATION_OPTION");
}

Configuration* configuration()
{
    return current();
}

QVariant configurationValue(ConfigurationOption option)
{
    const Configuration* settings = configuration();
    return settings ? settings->value(option) : Configuration::defaultValue(option);
}

FontSize currentFontSize()
{
    return fontSizeFrom(configurationValue(TEXT_SIZE));
}

} // namespace vantrel
