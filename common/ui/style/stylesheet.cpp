#include "common/ui/style/stylesheet.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/scaledstyle.h"

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QHash>
#include <QLoggingCategory>
#include <QMetaEnum>
#include <QPalette>
#include <QRegularExpression>

#include <array>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.ui")

constexpr auto sheetPath = ":/style/halcyra.qss";

/// A length that differs by text size: Small, Medium, Large, Huge, in pixels.
struct Length
{
    const char* token;
    std::array<int, 4> pixels;
};

constexpr Length lengths[] = {
    {"caption", {11, 12, 15, 19}}, {"body", {12, 14, 18, 23}},  {"title", {15, 17, 22, 28}},
    {"display", {20, 24, 30, 38}}, {"clock", {30, 34, 44, 56}}, {"pad", {4, 4, 6, 8}},
    {"cellpad", {7, 7, 9, 11}},    {"pady", {4, 6, 8, 10}},     {"pad2", {8, 8, 12, 16}},
    {"control", {16, 20, 26, 34}}, {"check", {14, 16, 20, 26}}, {"checkradius", {7, 8, 10, 13}},
    {"bar", {8, 10, 12, 14}},      {"barradius", {2, 3, 4, 5}}, {"banner", {12, 13, 15, 17}},
};

QHash<QString, QString> tokens(FontSize size)
{
    QHash<QString, QString> table;
    const QMetaEnum codes = QMetaEnum::fromType<colors::ColorCode>();
    for (int i = 0; i < codes.keyCount(); ++i) {
        const QColor colour = colors::getColor(static_cast<colors::ColorCode>(codes.value(i)));
        table.insert(QString::fromLatin1(codes.key(i)), QStringLiteral("rgba(%1,%2,%3,%4)")
                                                            .arg(colour.red())
                                                            .arg(colour.green())
                                                            .arg(colour.blue())
                                                            .arg(colour.alpha()));
    }
    for (const Length& length : lengths)
        table.insert(QString::fromLatin1(length.token),
                     QStringLiteral("%1px").arg(length.pixels[static_cast<std::size_t>(size)]));
    return table;
}

QPalette darkPalette()
{
    using namespace colors;
    QPalette palette(getColor(Slate_grey_900));
    palette.setColor(QPalette::Window, getColor(Slate_grey_900));
    palette.setColor(QPalette::Base, getColor(Deep_navy_blue));
    palette.setColor(QPalette::AlternateBase, getColor(Slate_grey_800));
    palette.setColor(QPalette::Button, getColor(Opaque_frame_2));
    palette.setColor(QPalette::ToolTipBase, getColor(Slate_grey_700));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, getColor(Zt_white_80));
        palette.setColor(QPalette::Disabled, role, getColor(Button_text_disabled));
    }
    palette.setColor(QPalette::PlaceholderText, getColor(Zt_white_50));
    palette.setColor(QPalette::Highlight, getColor(Zt_orange));
    palette.setColor(QPalette::HighlightedText, getColor(Slate_grey_900));
    palette.setColor(QPalette::Link, getColor(Zt_blue_lighter));
    return palette;
}

QFont bodyFont(FontSize size)
{
    QFont font(QStringList{QStringLiteral("Inter"), QApplication::font().family()});
    font.setPixelSize(lengths[1].pixels[static_cast<std::size_t>(size)]);
    return font;
}

} // namespace

QString StyleSheet::load(FontSize size)
{
    QFile file(QString::fromLatin1(sheetPath));
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(log) << "No style sheet:" << file.fileName();
        return {};
    }
    const QString source = QString::fromUtf8(file.readAll());
    const QHash<QString, QString> table = tokens(size);
    static const QRegularExpression token(QStringLiteral("@(\\w+)@"));
    QString sheet;
    sheet.reserve(source.size());
    qsizetype from = 0;
    for (auto found = token.globalMatch(source); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        sheet += QStringView(source).mid(from, match.capturedStart() - from);
        from = match.capturedEnd();
        const auto meaning = table.constFind(match.captured(1));
        if (meaning == table.cend())
            qCWarning(log) << "Unknown token in the style sheet:" << match.captured(1);
        else
            sheet += *meaning;
    }
    sheet += QStringView(source).mid(from);
    return sheet;
}

int StyleSheet::length(const QString& token, FontSize size)
{
    for (const Length& length : lengths) {
        if (token == QLatin1String(length.token))
            return length.pixels[static_cast<std::size_t>(size)];
    }
    return 0;
}

/// The toolkit gives a sheet that follows on another to each widget once for itself and once for each that it
/// lies in; one that follows on none, once.
void StyleSheet::renew(QApplication& application, FontSize size)
{
    application.setStyleSheet({});
    application.setStyleSheet(load(size));
}

void StyleSheet::apply(QApplication& application)
{
    QApplication::setStyle(new ScaledStyle); // the application's from here on
    QApplication::setPalette(darkPalette());
    followFontSize(&application, [&application](FontSize size) {
        QApplication::setFont(bodyFont(size));
        renew(application, size);
    });
}

} // namespace vantrel
