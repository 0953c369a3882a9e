#include "common/outputs/edidsummary.h"

#include "common/outputs/edidtext.h"
#include "common/outputs/outputtexts.h"
#include "tarn/edid/edid.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QStringList>

#include <algorithm>

namespace vantrel {

namespace {

QString text(const char* source)
{
    return QCoreApplication::translate("EdidSummary", source);
}

QString label(const VideoTiming& mode)
{
    return QString::fromStdString(mode.label());
}

QString model(const Edid& display)
{
    return display.product.empty()
               ? QStringLiteral("%1").arg(display.productCode, 4, 16, QLatin1Char('0')).toUpper()
               : QString::fromStdString(display.product);
}

QString serial(const Edid& display)
{
    if (!display.serialText.empty())
        return QString::fromStdString(display.serialText);
    return display.serialNumber ? QString::number(display.serialNumber) : unknownText;
}

QString made(const Edid& display)
{
    if (display.isModelYear)
        return text("model of %1").arg(display.year);
    return display.week ? text("%1, week %2").arg(display.year).arg(display.week)
                        : QString::number(display.year);
}

QString pictureSize(const Edid& display)
{
    return display.widthMm ? text("%1 x %2 cm").arg(display.widthMm / 10).arg(display.heightMm / 10)
                           : unknownText;
}

QString colors(const Edid& display)
{
    QStringList parts;
    if (display.bpc)
        parts.append(colorDepthText(display.bpc));
    parts.append(QStringLiteral("RGB"));
    QStringList ycc;
    if (display.hasYcc444)
        ycc.append(QStringLiteral("4:4:4"));
    if (display.hasYcc422)
        ycc.append(QStringLiteral("4:2:2"));
    if (display.hasYcc420)
        ycc.append(QStringLiteral("4:2:0"));
    if (!ycc.isEmpty())
        parts.append(QStringLiteral("YCbCr ") + ycc.join(u'/'));
    if (display.hasHdr10)
        parts.append(QStringLiteral("HDR10"));
    if (display.hasHlg)
        parts.append(QStringLiteral("HLG"));
    return parts.join(QStringLiteral(", "));
}

EdidFact modes(const Edid& display)
{
    EdidFact fact{text("Modes:"), unknownText, {}};
    if (display.modes.empty())
        return fact;
    const auto largest = std::ranges::max_element(display.modes, {}, [](const VideoTiming& mode) {
        return std::pair(qint64(mode.width) * mode.height, mode.refreshRate());
    });
    fact.text = text("%1, up to %2").arg(display.modes.size()).arg(label(*largest));
    QStringList all;
    for (const VideoTiming& mode : display.modes)
        all.append(label(mode));
    fact.details = all.join(u'\n');
    return fact;
}

QString audioText(const Edid::Audio& audio)
{
    const QString format = QString::fromStdString(audio.format);
    const QString channels = text("%1 channels").arg(audio.channels);
    const auto highest = std::ranges::max_element(audio.rates);
    return highest == audio.rates.end()
               ? QStringLiteral("%1 %2").arg(format, channels)
               : QStringLiteral("%1 %2, %3 kHz").arg(format, channels).arg(*highest / 1000.0);
}

EdidFact sound(const Edid& display)
{
    QStringList all;
    for (const Edid::Audio& audio : display.audio)
        all.append(audioText(audio));
    if (all.isEmpty())
        return {text("Audio:"), display.hasBasicAudio ? text("LPCM 2 channels") : text("none"), {}};
    return {text("Audio:"), all.join(QStringLiteral("; ")), all.join(u'\n')};
}

QHash<QString, QString> readMakers()
{
    QHash<QString, QString> makers;
    QFile list(QStringLiteral("/usr/share/hwdata/pnp.ids")); // of Debian's hwdata
    if (!list.open(QIODevice::ReadOnly))
        return makers;
    for (QByteArray line = list.readLine(); !line.isEmpty(); line = list.readLine()) {
        if (const qsizetype tab = line.indexOf('\t'); tab == 3)
            makers.insert(QString::fromLatin1(line.left(tab)), QString::fromUtf8(line.mid(tab)).trimmed());
    }
    return makers;
}

} // namespace

QString makerName(const QString& letters)
{
    static const QHash<QString, QString> makers = readMakers();
    return makers.value(letters, letters);
}

QList<EdidFact> edidSummary(const QString& edid)
{
    if (edid.isEmpty())
        return {};
    const auto bytes = bytesOfHex(cleanEdid(edid).toStdString());
    Edid display;
    std::string why;
    if (!bytes || !readEdid(*bytes, display, &why))
        return {
            {text("EDID:"), bytes ? QString::fromStdString(why) : text("It is no hexadecimal text."), {}}};
    return {{text("Maker:"), makerName(QString::fromStdString(display.maker)), {}},
            {text("Model:"), model(display), {}},
            {text("Serial number:"), serial(display), {}},
            {text("Made:"), made(display), {}},
            {text("Picture:"), pictureSize(display), {}},
            {text("Native mode:"), display.preferred ? label(*display.preferred) : unknownText, {}},
            modes(display),
            {text("Colors:"), colors(display), {}},
            sound(display)};
}

} // namespace vantrel
