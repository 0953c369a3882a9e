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

Variant variantFromQVariant(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return Variant::from(value.toBool());
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return Variant::from(static_cast<std::int64_t>(value.toLongLong()));
    case QMetaType::Double:
    case QMetaType::Float:
        return Variant::from(value.toDouble());
    case QMetaType::QString:
        return Variant::from(value.toString());
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return Variant::from(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
    }
    case QMetaType::QColor:
        return Variant::from(value.value<QColor>());
    default:
        return {};
    }
}

} // namespace vantrel
