#pragma once

#include <QStringList>

namespace vantrel {

/// Tells that something of a show was done, and which media it lacks then. what: plain text.
void tellDone(const QString& what, const QStringList& missing = {});

} // namespace vantrel
