#include "common/session/settings/storedvalue.h"

#include "common/session/settings/configuration.h"

namespace vantrel {

QVariant storedValue(const QString& key, const QVariant& otherwise)
{
    const QSettings* settings = configuration();
    return settings ? settings->value(key, otherwise) : otherwise;
}

void storeValue(const QString& key, const QVariant& value)
{
    if (QSettings* settings = configuration())
        settings->setValue(key, value);
}

} // namespace vantrel
