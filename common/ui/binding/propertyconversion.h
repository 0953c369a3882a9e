#pragma once

#include "tarn/scene/variant.h"

#include <QVariant>

namespace vantrel {

/// bool, int and double as they are, all else as text.
QVariant propertyToQVariant(const Variant& value);
/// For bool, int, double and string; false for other types and for what does not convert.
bool propertyFromQVariant(const QVariant& value, VariantType type, Variant& out);

} // namespace vantrel
