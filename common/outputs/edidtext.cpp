#include "common/outputs/edidtext.h"

#include "common/outputs/outputslogging.h"

#include <QStringList>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int blockDigits = 128;
const QString header = QStringLiteral("00FFFFFFFFFFFF00");

bool isHexDigit(QChar c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F');
}

} // namespace

QString cleanEdid(const QString& text)
{
    QString clean = text;
    for (const char* separator : {" ", "\t", "\r\n", "\r", "\n"})
        clean.remove(QLatin1String(separator));
    return clean.toUpper();
}

bool isEdidBinary(const QString& text)
{
    const QString clean = cleanEdid(text);
    return !std::ranges::all_of(clean, isHexDigit);
}

int calculateChecksum(const QString& text)
{
    int sum = 0;
    for (const QString& piece : text.split(u' ')) {
        bool isNumber = false;
        const int value = piece.toInt(&isNumber, 16);
        if (isNumber)
            sum += value;
        else
            qCWarning(lcOutputs) << "Invalid hex value:" << piece;
    }
    return sum % 256;
}

QString spacedEdid(const QString& text)
{
    const QString clean = cleanEdid(text);
    QStringList bytes;
    bytes.reserve(clean.size() / 2);
    for (qsizetype i = 0; i < clean.size(); i += 2)
        bytes.append(clean.mid(i, 2));
    return bytes.join(u' ');
}

bool isValidEdid(const QString& text)
{
    const QString clean = cleanEdid(text);
    if (!clean.startsWith(header)) {
        qCWarning(lcOutputs) << "Invalid EDID header: " << clean.left(header.size());
        return false;
    }
    if (clean.size() % blockDigits != 0) {
        qCWarning(lcOutputs) << "Invalid EDID length: " << clean.size();
        return false;
    }
    if (const int sum = calculateChecksum(spacedEdid(clean)); sum != 0) {
        qCWarning(lcOutputs) << "Invalid EDID checksum:" << sum;
        return false;
    }
    return true;
}

} // namespace vantrel
