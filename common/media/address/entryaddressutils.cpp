#include "common/media/address/entryaddressutils.h"

#include "common/media/address/medialogging.h"

#include <QStringList>

namespace vantrel {

namespace {

constexpr long long maxRange = 100'000;
constexpr qsizetype maxEntries = 200'000; // of all ranges: more than any list holds

EntryAddress parsed(const QString& text)
{
    EntryAddress address;
    if (!address.parseString(text.trimmed().toStdString()))
        return {};
    return address;
}

void appendRange(QList<EntryAddress>& entries, EntryAddress first, EntryAddress last)
{
    const bool decimals = first.major == last.major;
    const int from = decimals ? first.minor : first.major;
    const int to = decimals ? last.minor : last.major;
    if (static_cast<long long>(to) - from >= maxRange) {
        qCWarning(lcMedia) << "Range of entries is too long:" << from << "to" << to;
        return;
    }
    for (int i = from; i <= to; ++i)
        entries.append(decimals ? EntryAddress(first.major, i) : EntryAddress(i, 0));
}

} // namespace

EntryAddress EntryAddressUtils::typed(const QString& text)
{
    const qsizetype point = text.indexOf(u'.');
    const QString decimal = point < 0 ? QString() : text.mid(point + 1).trimmed();
    return decimal.size() > 1 && decimal.startsWith(u'0') ? EntryAddress() : parsed(text);
}

bool EntryAddressUtils::isAmbiguous(const QString& ranges)
{
    for (const QString& part : ranges.split(u',', Qt::SkipEmptyParts)) {
        const QStringList ends = part.split(u'-', Qt::SkipEmptyParts);
        for (const QString& end : ends) {
            if (parsed(end).isValid() && !typed(end).isValid())
                return true;
        }
        if (ends.size() < 2)
            continue;
        const EntryAddress first = parsed(ends.first()), last = parsed(ends.last());
        if (first.major != last.major && (first.minor != 0 || last.minor != 0))
            return true;
    }
    return false;
}

bool EntryAddressUtils::areEntriesAdjacent(EntryAddress a, EntryAddress b)
{
    if (b.minor - a.minor == 1)
        return a.major == b.major;
    return a.minor == 0 && b.minor == 0 && b.major - a.major == 1;
}

int EntryAddressUtils::getIncrement(EntryAddress a, EntryAddress b)
{
    return a.major == b.major ? 2 : 1;
}

QString EntryAddressUtils::entriesToRanges(const QList<EntryAddress>& entries)
{
    QString text;
    int step = 0;
    for (qsizetype i = 1; i < entries.size(); ++i) {
        const EntryAddress previous = entries[i - 1];
        const EntryAddress current = entries[i];
        const int newStep = getIncrement(previous, current);
        const bool decimals = newStep == 2;
        const bool continues =
            decimals ? current.minor - previous.minor == 1
                     : previous.minor == 0 && current.minor == 0 && current.major - previous.major == 1;
        if (!continues || (step != 0 && step != newStep)) {
            text += QString::fromStdString(previous.toString(false)) + u',';
            step = 0;
        } else if (step == 0) {
            text += QString::fromStdString(previous.toString(false)) + u'-';
            step = newStep;
        }
    }
    if (!entries.isEmpty())
        text += QString::fromStdString(entries.last().toString(false));
    return text;
}

QList<EntryAddress> EntryAddressUtils::rangesToEntries(const QString& text)
{
    QList<EntryAddress> entries;
    for (const QString& part : text.split(u',', Qt::SkipEmptyParts)) {
        if (part.trimmed().isEmpty())
            continue;
        if (!part.contains(u'-')) {
            entries.append(parsed(part));
            continue;
        }
        const QStringList ends = part.split(u'-', Qt::SkipEmptyParts);
        if (ends.isEmpty())
            continue;
        appendRange(entries, parsed(ends.first()), parsed(ends.last()));
        if (entries.size() > maxEntries)
            break;
    }
    return entries;
}

} // namespace vantrel
