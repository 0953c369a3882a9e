#include "common/qml/notificationstyle.h"

#include "common/media/address/showntext.h"
#include "common/ui/style/colors.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTextDocumentFragment>

namespace vantrel {

QString NotificationStyle::icon(Notification::MessageType type)
{
    switch (type) {
    case Notification::ErrorMessage:
        return QStringLiteral("error");
    case Notification::WarningMessage:
        return QStringLiteral("warning");
    case Notification::CheckedMessage:
        return QStringLiteral("checked");
    case Notification::InfoMessage:
        break;
    }
    return QStringLiteral("info");
}

QColor NotificationStyle::color(Notification::MessageType type)
{
    switch (type) {
    case Notification::ErrorMessage:
        return colors::getColor(colors::Red_error);
    case Notification::WarningMessage:
        return colors::getColor(colors::Zt_spot_color);
    case Notification::CheckedMessage:
        return colors::getColor(colors::Green_green);
    case Notification::InfoMessage:
        break;
    }
    return colors::getColor(colors::Zt_blue_lighter);
}

QString NotificationStyle::name(Notification::MessageType type)
{
    switch (type) {
    case Notification::ErrorMessage:
        return QCoreApplication::translate("Notification", "Errors");
    case Notification::WarningMessage:
        return QCoreApplication::translate("Notification", "Warnings");
    case Notification::CheckedMessage:
        return QCoreApplication::translate("Notification", "Completed");
    case Notification::InfoMessage:
        break;
    }
    return QCoreApplication::translate("Notification", "Messages");
}

QString NotificationStyle::plainText(const QString& richText)
{
    // A name such as "Clip <2>" that came unescaped is no markup; its characters stay.
    static const QRegularExpression noTag(
        QStringLiteral("<(?!/?(?:b|i|u|p|a|br|hr|h[1-6]|ul|ol|li|em|strong|span|font|div|pre|code|tt|qt|html|"
                       "head|body|table|tr|td|th)(?:\\s[^<>]*)?/?>)"),
        QRegularExpression::CaseInsensitiveOption);
    const bool isPlain = !richText.contains(u'<') && !richText.contains(u'&');
    const QString text =
        isPlain ? richText
                : QTextDocumentFragment::fromHtml(QString(richText).replace(noTag, QStringLiteral("&lt;")))
                      .toPlainText();
    QStringList lines = text.split(u'\n');
    for (QString& line : lines)
        line = shownText(line);
    return lines.join(u'\n');
}

QString NotificationStyle::plainTitle(const QString& title, int repeats)
{
    const QString text = plainText(title);
    return repeats > 1 ? QCoreApplication::translate("Notification", "%1 (%2 times)").arg(text).arg(repeats)
                       : text;
}

} // namespace vantrel
