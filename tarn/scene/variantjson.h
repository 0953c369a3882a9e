#pragma once

#include "tarn/json/json.h"
#include "tarn/scene/variant.h"

namespace vantrel {

/// The inverse of Json::fromVariant for a property of this type: tag None when the JSON is of another kind,
/// for it is refused and never read as something else. With None as the wanted type each scalar keeps its
/// own.
Variant variantFromJson(const Json& json, VariantType wanted);

} // namespace vantrel
