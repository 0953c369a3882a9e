#pragma once

#include <QMetaType>
#include <QString>

namespace vantrel {

/// What a transfer does when something of the name is there already.
enum class ConflictPolicy {
    Refuse = 0,   // fails and touches neither: what happens while nobody watches
    Ask = 1,      // waits for an answer, item by item
    Replace = 2,  // a file takes the other's place once it is whole, a folder is merged into the other
    KeepBoth = 3, // takes a free name, "name (2)"
    Skip = 4,     // leaves out the one item and goes on
};

/// What a transfer that asks wants to know.
struct TransferConflict
{
    /// The item that is there already.
    QString path;
    bool isDirectory = false;

    bool operator==(const TransferConflict&) const = default;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::ConflictPolicy)
Q_DECLARE_METATYPE(vantrel::TransferConflict)
