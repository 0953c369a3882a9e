#pragma once

#include "common/session/settings/fontsize.h"

#include <QSettings>
#include <QVariant>

namespace vantrel {

/// The settings of the operator's machine; the numbers are fixed, other programs' records name options by
/// them.
enum ConfigurationOption : int {
    CONNECTION_HOST = 0,
    CONNECTION_NAME = 1,
    REFRESH_RATE = 2,
    BIT_DEPTH = 3,
    PREVIEW_QUALITY = 4,
    TEXT_SIZE = 5,
    KEYMAP = 6,
    DRAGGER_ROUND_TO_STEP_SIZE = 7,
    TIMECODE_DISPLAY_MODE = 8,
    TAKE_FROM = 9,
    TAKE_TRANSITION = 10,
    TAKE_DURATION = 11,
    TAKE_PRESET_TOGGLE = 12,
    SERVER_CREDENTIALS_USERNAME = 13,
    SERVER_CREDENTIALS_PASSWORD = 14,
    TRANSFER_LIMIT_WHILE_PLAYING = 15, // MB/s, 0 for none
};

/// Local settings in an INI file of the user scope. One stands in a running program, owned by the session; it
/// is reached through configuration(). Groups work as in QSettings: an option is read and written in the
/// current one. Main thread only.
class Configuration : public QSettings
{
    Q_OBJECT

public:
    Configuration();
    ~Configuration() override;

    using QSettings::setValue;
    using QSettings::value;

    /// The stored value, or the default. An option without a default logs a warning and gives an empty text.
    QVariant value(ConfigurationOption option) const;
    /// Writes and emits optionChanged, also for an unchanged value.
    void setValue(ConfigurationOption option, const QVariant& value);
    /// Writes the default, so that the file says so.
    void resetValue(ConfigurationOption option);
    static QVariant defaultValue(ConfigurationOption option);
    /// The option's key in the file.
    static QString key(ConfigurationOption option);

Q_SIGNALS:
    void optionChanged(vantrel::ConfigurationOption opt, QVariant value);
};

/// The program's settings; null before they are made. Widgets then take the defaults, through
/// configurationValue.
Configuration* configuration();

/// The option's value in the program's settings, or its default when there are none.
QVariant configurationValue(ConfigurationOption option);

/// The text size in force.
FontSize currentFontSize();

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::ConfigurationOption)
