#include "tarn/scene/variantjson.h"

#include "tarn/scene/base64.h"

namespace vantrel {

namespace {

Variant natural(const Json& json)
{
    switch (json.type()) {
    case JsonType::Bool:
        return Variant::from(json.asBool());
    case JsonType::Int:
        // An unsigned number above the signed range gives the fallback; only its double is left.
        if (json.asInt(0) != json.asInt(1))
            return Variant::from(json.asDouble());
        return Variant::from(json.asInt());
    case JsonType::Double:
        return Variant::from(json.asDouble());
    case JsonType::String:
        return Variant::from(json.stringView());
    default:
        return {};
    }
}

} // namespace

Variant variantFromJson(const Json& json, VariantType wanted)
{
    if (wanted == VariantType::None)
        return natural(json);
    if (wanted == VariantType::Bytes) {
        const auto bytes = json.isString() ? base64::decode(json.stringView()) : std::nullopt;
        return bytes ? Variant::from(*bytes) : Variant();
    }
    return natural(json).converted(wanted);
}

void Json::fromVariant(const Variant& value, Json& out)
{
    switch (value.type()) {
    case VariantType::None:
        out = Json();
        return;
    case VariantType::Bool:
        out = Json(value.asBool());
        return;
    case VariantType::Int:
        out = Json(value.as<std::int64_t>());
        return;
    case VariantType::Double:
        out = Json(value.as<double>());
        return;
    case VariantType::String:
        out = Json(value.stringView());
        return;
    case VariantType::Bytes:
    case VariantType::Color:
        out = Json(value.asString());
        return;
    }
}

} // namespace vantrel
