#pragma once

#include <QString>

namespace vantrel {

class BaseOperation;

// What the list of operations says of one, for the operator.

/// "Copy", "Remove" and so on.
QString operationTypeText(const BaseOperation* operation);
/// A time that is left, in whole units: "1 h 5 m", "2 m 10 s", "8 s".
QString etaText(int seconds);
/// What has come of one that is done. skipped: of a folder's files those that were left out, or 1 for a file.
/// others: those that are no media, which stay where they are.
QString outcomeText(bool isFile, bool isVerified, int skipped, int others);
/// Why it failed, without the markup; names in it were escaped. Empty once it is gone.
QString errorsText(const BaseOperation* operation);

} // namespace vantrel
