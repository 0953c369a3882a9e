#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace vantrel {

/// The key map a fresh installation starts with: a name to a QKeySequence, the platform's standard keys and
/// those of the player.
QMap<QString, QVariant> defaultKeymap();

} // namespace vantrel
