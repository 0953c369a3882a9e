#include "tarn/qt/variantqt.h"

#include <QByteArray>

#include <limits>

namespace vantrel {

QVariant variantToQVariant(const Variant& value)
{
    switch (value.type()) {
    case VariantType::Bool:
        return value.asBool();
    case VariantType::Int: {
        const auto number = value.as<std::int64_t>();
        if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
            return static_cast<int>(number);
        return static_cast<qlonglong>(number);
    }
    case VariantType::Double:
        return value.as<double>();
    case VariantType::String:
        return value.as<QString>();
    case VariantType::Bytes: {
        const auto bytes = value.as<std::vector<std::uint8_t>>();
        return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    }
    case VariantType::Color:
        return value.as<QColor>();
    case VariantType::None:
        break;
    }
    return {};
}

} // namespace vantrel
