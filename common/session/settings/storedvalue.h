#pragma once

#include <QString>
#include <QVariant>

namespace vantrel {

/// What is no option but remembered, such as the place of a splitter, by its key in the settings' file; the
/// value given while there is none, or no settings.
QVariant storedValue(const QString& key, const QVariant& otherwise = {});
void storeValue(const QString& key, const QVariant& value);

} // namespace vantrel
