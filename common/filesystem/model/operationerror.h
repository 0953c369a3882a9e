#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>

namespace vantrel {

/// Why an operation failed, for the operator. Simple rich text: names and paths in it are escaped.
struct OperationError
{
    QString message;
    /// The number of Notification::WarningMessage.
    int type = 2;
    /// Local time at which it arose.
    QDateTime dateTime;

    bool operator==(const OperationError&) const = default;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::OperationError)
