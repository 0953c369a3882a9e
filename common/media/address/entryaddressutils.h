#pragma once

#include "tarn/media/entryaddress.h"

#include <QList>
#include <QString>

namespace vantrel {

/// Writes and reads lists of entry addresses as ranges ("1-3,5.1-5.2,7").
class EntryAddressUtils
{
public:
    EntryAddressUtils() = delete;

    /// An address as people write it; invalid where it could be taken for another one: the decimal is a whole
    /// number, and 3.05 would be 3.5.
    static EntryAddress typed(const QString& text);
    /// Whether ranges hold such an address, or go from one with a decimal to another whole number.
    static bool isAmbiguous(const QString& ranges);

    /// Whether b directly follows a, counting in whole numbers or in decimals.
    static bool areEntriesAdjacent(EntryAddress a, EntryAddress b);
    /// What two addresses step by: 2 for decimals of one number, 1 for whole numbers.
    static int getIncrement(EntryAddress a, EntryAddress b);
    static QString entriesToRanges(const QList<EntryAddress>& entries);
    /// An address that is none comes out invalid; a range of more than 100,000 addresses is left out, since
    /// the text may be anyone's.
    static QList<EntryAddress> rangesToEntries(const QString& text);
};

} // namespace vantrel
