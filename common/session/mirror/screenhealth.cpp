#include "common/session/mirror/screenhealth.h"

#include <QCoreApplication>
#include <QStringList>

#include <cmath>

namespace vantrel {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("ScreenHealth", text);
}

QString hertz(double rate)
{
    return tr("%1 Hz").arg(std::round(rate * 100) / 100, 0, 'g', 6);
}

QString pictures(int count)
{
    return count == 1 ? tr("1 picture") : tr("%1 pictures").arg(count);
}

QString ofTheTime(double load)
{
    return tr("%1 % of the time there is").arg(std::lround(load * 100));
}

} // namespace

QString ScreenHealth::rateText() const
{
    if (!isThere())
        return {};
    return bySoftware ? tr("%1, painted by the processor").arg(hertz(rate))
                      : tr("%1, painted by the graphics card").arg(hertz(rate));
}

QString ScreenHealth::lostText() const
{
    if (!isThere())
        return {};
    return lost() == 0 ? tr("none in the last minute") : tr("%1 in the last minute").arg(lost());
}

QString ScreenHealth::decodingText() const
{
    return isThere() ? ofTheTime(decodeLoad) : QString();
}

QString ScreenHealth::paintingText() const
{
    return isThere() ? ofTheTime(paintLoad) : QString();
}

QString ScreenHealth::summary() const
{
    if (!isThere())
        return {};
    if (lost() > 0)
        return tr("Screen: %1 lost").arg(pictures(lost()));
    return decodesAtItsLimit()  ? tr("Screen: decoding at its limit")
           : paintsAtItsLimit() ? tr("Screen: painting at its limit")
                                : tr("Screen: %1").arg(hertz(rate));
}

QString ScreenHealth::details() const
{
    if (!isThere())
        return {};
    QStringList sentences;
    if (dropped > 0)
        sentences.append(
            tr("Within the last minute %1 could not be painted in time. Choose a smaller mode for "
               "the output, or end what else the server's machine does.")
                .arg(pictures(dropped)));
    else if (paintsAtItsLimit())
        sentences.append(tr("Painting takes %1: pictures may soon be dropped. Choose a smaller mode for the "
                            "output, or end what else the server's machine does.")
                             .arg(paintingText()));
    if (late > 0)
        sentences.append(
            tr("Within the last minute %1 could not be decoded in time. Make the medium smaller, "
               "or of a format that is easier to decode.")
                .arg(pictures(late)));
    else if (decodesAtItsLimit())
        sentences.append(tr("Decoding takes %1: pictures may soon be late. Make the medium smaller, or of a "
                            "format that is easier to decode.")
                             .arg(decodingText()));
    if (sentences.isEmpty())
        sentences.append(tr("Program is shown on a screen of the server: %1. Pictures lost: %2.")
                             .arg(rateText(), lostText()));
    return sentences.join(u' ');
}

} // namespace vantrel
