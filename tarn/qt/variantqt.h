#pragma once

#include "tarn/scene/variant.h"

#include <QColor>
#include <QString>
#include <QVariant>

namespace vantrel {

/// Text in UTF-8, as Variant::asString gives it.
template <>
inline QString Variant::as<QString>() const
{
    return QString::fromStdString(asString());
}

template <>
inline Variant Variant::from(const QString& value)
{
    const QByteArray utf8 = value.toUtf8();
    return from(std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
}

template <>
inline QColor Variant::as<QColor>() const
{
    const auto color = as<ColorValue>();
    return {color.red, color.green, color.blue, color.alpha};
}

/// An invalid colour gives tag None.
template <>
inline Variant Variant::from(const QColor& value)
{
    if (!value.isValid())
        return {};
    const auto byte = [](int channel) { return static_cast<std::uint8_t>(channel); };
    return from(ColorValue{byte(value.red()), byte(value.green()), byte(value.blue()), byte(value.alpha())});
}

/// bool, int (qlonglong where it does not fit), double, QString, QByteArray, QColor; tag None is an invalid
/// QVariant.
QVariant variantToQVariant(const Variant& value);

} // namespace vantrel
