#include "common/outputs/outputtexts.h"

#include <QMap>
#include <QStringList>

namespace vantrel {

QString textOrUnknown(const QString& text)
{
    return text.isEmpty() ? unknownText : text;
}

QString sizeText(int width, int height)
{
    return width == 0 && height == 0 ? unknownText : QStringLiteral("%1 x %2").arg(width).arg(height);
}

QString polarityText(int horizontal, int vertical)
{
    QStringList marks;
    const auto add = [&marks](int sign, const char* name) {
        if (sign != 0)
            marks.append((sign > 0 ? u'+' : u'-') + QLatin1String(name));
    };
    add(horizontal, "H");
    add(vertical, "V");
    return textOrUnknown(marks.join(u' '));
}

QString colorDepthText(int bpc)
{
    return bpc == 0 ? unknownText : QStringLiteral("%1 bits (%2 bpc)").arg(bpc * 3).arg(bpc);
}

QString formatLinkRate(int code)
{
    static const QMap<int, QString> rates{
        {6, QStringLiteral("1.62 Gbps (RBR)")},
        {8, QStringLiteral("2.16 Gbps")},
        {9, QStringLiteral("2.43 Gbps")},
        {10, QStringLiteral("2.70 Gbps (HBR)")},
        {12, QStringLiteral("3.24 Gbps (RBR2)")},
        {16, QStringLiteral("4.32 Gbps")},
        {20, QStringLiteral("5.40 Gbps (HBR2)")},
        {30, QStringLiteral("8.10 Gbps (HBR3)")},
        {1000, QStringLiteral("10.0 Gbps (UHBR10)")},
        {1350, QStringLiteral("13.5 Gbps (UHBR13.5)")},
        {2000, QStringLiteral("20.0 Gbps (UHBR10)")}, // as the server's own pages have it
    };
    if (const auto known = rates.constFind(code); known != rates.cend())
        return *known;
    return code > 255 ? QStringLiteral("%1 Gbps").arg(code / 100.0, 0, 'f', 2) : QStringLiteral("?");
}

QString linkText(int lanes, int rate)
{
    return lanes == 0 || rate == 0 ? unknownText
                                   : QStringLiteral("%1 x %2").arg(lanes).arg(formatLinkRate(rate));
}

} // namespace vantrel
