#pragma once

#include <QByteArray>
#include <QLoggingCategory>

namespace vantrel {

Q_DECLARE_LOGGING_CATEGORY(lcMedia)

/// A server's text as a log line may quote it.
QByteArray shortened(const QByteArray& text);

} // namespace vantrel
