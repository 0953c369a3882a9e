#include "common/ui/binding/propertyconversion.h"

#include "tarn/qt/variantqt.h"

#include <cmath>

namespace vantrel {

QVariant propertyToQVariant(const Variant& value)
{
    switch (value.type()) {
    case VariantType::Bool:
    case VariantType::Int:
    case VariantType::Double:
        return variantToQVariant(value);
    default:
        return QString::fromStdString(value.asString(-1));
    }
}

bool propertyFromQVariant(const QVariant& value, VariantType type, Variant& out)
{
    bool fits = value.isValid();
    switch (type) {
    case VariantType::Bool:
        fits = fits && value.canConvert<bool>();
        out = Variant::from(value.toBool());
        return fits;
    case VariantType::Int: {
        const qlonglong number = value.toLongLong(&fits);
        out = Variant::from(std::int64_t(number));
        return fits;
    }
    case VariantType::Double: {
        const double number = value.toDouble(&fits);
        out = Variant::from(number);
        return fits && std::isfinite(number);
    }
    case VariantType::String:
        fits = fits && value.canConvert<QString>();
        out = Variant::from(value.toString());
        return fits;
    default:
        return false;
    }
}

} // namespace vantrel
