#include "tarn/scene/variant.h"

#include "tarn/media/channelenums.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"
#include "tarn/scene/base64.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace vantrel {

namespace {

std::string doubleText(double value, int precision)
{
    std::array<char, 512> buffer;
    if (precision < 0) {
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
        return {buffer.data(), end};
    }
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                            std::chars_format::fixed, std::min(precision, 60));
    if (error != std::errc{})
        return doubleText(value, -1);
    std::string text(buffer.data(), end);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

// Truncates toward zero; what does not fit stops at the ends, NaN is 0.
std::int64_t toInt64(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775808.0)
        return std::numeric_limits<std::int64_t>::max();
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

template <typename T>
Variant parsed(std::string_view text)
{
    T value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end)
        return {};
    if constexpr (std::is_floating_point_v<T>) {
        if (!std::isfinite(value))
            return {};
    }
    return Variant::from(value);
}

} // namespace

const char* toStr(VariantType type)
{
    static constexpr std::array names = {"none", "bool", "int", "double", "string", "bytes", "color"};
    const auto at = static_cast<std::size_t>(type);
    return at < names.size() ? names[at] : "unknown";
}

std::string ColorValue::toString() const
{
    std::array<char, 12> text;
    if (alpha == 255)
        std::snprintf(text.data(), text.size(), "#%02x%02x%02x", red, green, blue);
    else
        std::snprintf(text.data(), text.size(), "#%02x%02x%02x%02x", alpha, red, green, blue);
    return text.data();
}

std::optional<ColorValue> ColorValue::parse(std::string_view text)
{
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#')
        return {};
    std::uint32_t bits = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 1, end, bits, 16);
    if (error != std::errc{} || stop != end)
        return {};
    const auto byte = [bits](int shift) { return static_cast<std::uint8_t>(bits >> shift); };
    return ColorValue{byte(16), byte(8), byte(0), text.size() == 9 ? byte(24) : std::uint8_t{255}};
}

bool Variant::asBool() const
{
    switch (type()) {
    case VariantType::Bool:
        return std::get<bool>(m_value);
    case VariantType::Int:
        return std::get<std::int64_t>(m_value) != 0;
    case VariantType::Double:
        return std::get<double>(m_value) != 0;
    case VariantType::String:
        return stringView() == "true" || stringView() == "1";
    default:
        return false;
    }
}

std::string Variant::asString(int precision) const
{
    switch (type()) {
    case VariantType::Bool:
        return std::get<bool>(m_value) ? "true" : "false";
    case VariantType::Int:
        return std::to_string(std::get<std::int64_t>(m_value));
    case VariantType::Double:
        return doubleText(std::get<double>(m_value), precision);
    case VariantType::String:
        return *std::get<SharedString>(m_value);
    case VariantType::Bytes:
        return base64::encode(*std::get<SharedByteArray>(m_value));
    case VariantType::Color:
        return std::get<ColorValue>(m_value).toString();
    case VariantType::None:
        break;
    }
    return {};
}

std::string_view Variant::stringView() const noexcept
{
    const auto* text = std::get_if<SharedString>(&m_value);
    return text ? std::string_view(**text) : std::string_view();
}

Variant Variant::converted(VariantType wanted) const
{
    if (wanted == VariantType::Double) {
        const double value = as<double>();
        const bool isNumber = type() == VariantType::Int || type() == VariantType::Double;
        return isNumber && std::isfinite(value) ? from(value) : Variant();
    }
    if (wanted == type())
        return *this;
    if (wanted == VariantType::Int && type() == VariantType::Double) {
        const double value = std::get<double>(m_value);
        return std::abs(value) <= 9007199254740992.0 && std::trunc(value) == value ? from(toInt64(value))
                                                                                   : Variant();
    }
    if (wanted == VariantType::Color && type() == VariantType::String) {
        if (const auto color = ColorValue::parse(stringView()))
            return from(*color);
    }
    return {};
}

Variant Variant::parseInt(std::string_view text)
{
    return parsed<std::int64_t>(text);
}
Variant Variant::parseDouble(std::string_view text)
{
    return parsed<double>(text);
}

bool operator==(const Variant& a, const Variant& b)
{
    if (a.m_value.index() != b.m_value.index())
        return false;
    if (a.type() == VariantType::String)
        return a.stringView() == b.stringView();
    if (const auto* bytes = std::get_if<Variant::SharedByteArray>(&a.m_value))
        return **bytes == *std::get<Variant::SharedByteArray>(b.m_value);
    return a.m_value == b.m_value;
}

template <>
bool Variant::as<bool>() const
{
    return asBool();
}

template <>
std::int64_t Variant::as<std::int64_t>() const
{
    switch (type()) {
    case VariantType::Bool:
        return std::get<bool>(m_value) ? 1 : 0;
    case VariantType::Int:
        return std::get<std::int64_t>(m_value);
    case VariantType::Double:
        return toInt64(std::get<double>(m_value));
    default:
        return 0;
    }
}

template <>
int Variant::as<int>() const
{
    return static_cast<int>(as<std::int64_t>());
}

template <>
double Variant::as<double>() const
{
    const auto* value = std::get_if<double>(&m_value);
    return value ? *value : static_cast<double>(as<std::int64_t>());
}

template <>
std::string Variant::as<std::string>() const
{
    return asString();
}

template <>
ColorValue Variant::as<ColorValue>() const
{
    const Variant color = converted(VariantType::Color);
    const auto* value = std::get_if<ColorValue>(&color.m_value);
    return value ? *value : ColorValue{};
}

template <>
std::vector<std::uint8_t> Variant::as<std::vector<std::uint8_t>>() const
{
    const auto* bytes = std::get_if<SharedByteArray>(&m_value);
    return bytes ? **bytes : std::vector<std::uint8_t>{};
}

template <typename T>
T Variant::asEnum() const
{
    return type() == VariantType::String ? enumFromText<T>(stringView())
                                         : enumFromNumber<T>(as<std::int64_t>());
}

template <>
EndAction Variant::as<EndAction>() const
{
    return asEnum<EndAction>();
}
template <>
TakeTransitionType Variant::as<TakeTransitionType>() const
{
    return asEnum<TakeTransitionType>();
}
template <>
PlayheadOption Variant::as<PlayheadOption>() const
{
    return asEnum<PlayheadOption>();
}
template <>
ScaleMode Variant::as<ScaleMode>() const
{
    return asEnum<ScaleMode>();
}
template <>
SourceMode Variant::as<SourceMode>() const
{
    return asEnum<SourceMode>();
}
template <>
SourcePlayState Variant::as<SourcePlayState>() const
{
    return asEnum<SourcePlayState>();
}
template <>
AudioPlaybackDevice Variant::as<AudioPlaybackDevice>() const
{
    return asEnum<AudioPlaybackDevice>();
}

template <>
Variant Variant::from(const bool& value)
{
    Variant v;
    v.m_value = value;
    return v;
}
template <>
Variant Variant::from(const std::int64_t& value)
{
    Variant v;
    v.m_value = value;
    return v;
}
template <>
Variant Variant::from(const int& value)
{
    return from(std::int64_t{value});
}
template <>
Variant Variant::from(const double& value)
{
    Variant v;
    v.m_value = value;
    return v;
}
template <>
Variant Variant::from(const std::string_view& value)
{
    Variant v;
    v.m_value = std::make_shared<const std::string>(value);
    return v;
}
template <>
Variant Variant::from(const std::string& value)
{
    return from(std::string_view(value));
}
Variant Variant::from(const char* text)
{
    return from(std::string_view(text));
}
template <>
Variant Variant::from(const ColorValue& value)
{
    Variant v;
    v.m_value = value;
    return v;
}
template <>
Variant Variant::from(const std::vector<std::uint8_t>& value)
{
    Variant v;
    v.m_value = std::make_shared<const std::vector<std::uint8_t>>(value);
    return v;
}
template <>
Variant Variant::from(const EndAction& value)
{
    return from(toStr(value));
}
template <>
Variant Variant::from(const TakeTransitionType& value)
{
    return from(toStr(value));
}
template <>
Variant Variant::from(const PlayheadOption& value)
{
    return from(toStr(value));
}
template <>
Variant Variant::from(const ScaleMode& value)
{
    return from(toStr(value));
}
template <>
Variant Variant::from(const SourceMode& value)
{
    return from(static_cast<std::int64_t>(value));
}
template <>
Variant Variant::from(const SourcePlayState& value)
{
    return from(toStr(value));
}
template <>
Variant Variant::from(const AudioPlaybackDevice& value)
{
    return from(toStr(value));
}

} // namespace vantrel
