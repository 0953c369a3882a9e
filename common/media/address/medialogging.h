#pragma once

#include <QByteArray>
#include <QLoggingCategory>

namespace vantrel {

Q_DECLARE_LOGGING_CATEGORY(lcMedia)

/// Of the items of one act so many have a line each in the log: thousands of lines would hold the window.
constexpr int mostLogged = 20;

/// A server's text as a log line may quote it.
QByteArray shortened(const QByteArray& text);

} // namespace vantrel
