#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantrel {

class Json;
enum class AudioPlaybackDevice : std::int32_t;
enum class EndAction : std::int32_t;
enum class PlayheadOption : std::int32_t;
enum class ScaleMode : std::int32_t;
enum class SourceMode : std::int32_t;
enum class SourcePlayState : std::int32_t;
enum class TakeTransitionType : std::int32_t;

/// Tags of a Variant; kinds up to String merge in undo, those after it do not.
enum class VariantType : std::int32_t {
    None = 0,
    Bool = 1,
    Int = 2,
    Double = 3,
    String = 4,
    Bytes = 5,
    Color = 6
};

/// The printable name of a tag: "none", "bool", "int", "double", "string", "bytes", "color".
const char* toStr(VariantType type);

/// A colour of the scene, 8 bits a channel; "#rrggbb" as text and as JSON, "#aarrggbb" where alpha is not
/// 255.
struct ColorValue
{
    std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;

    std::string toString() const;
    /// "#rrggbb" or "#aarrggbb" in either case; nothing else.
    static std::optional<ColorValue> parse(std::string_view text);

    friend bool operator==(const ColorValue&, const ColorValue&) = default;
};

/// A property's value: one tag and one payload. Strings and byte arrays are shared between copies.
class Variant
{
public:
    using SharedString = std::shared_ptr<const std::string>;
    using SharedByteArray = std::shared_ptr<const std::vector<std::uint8_t>>;

    Variant() = default;

    VariantType type() const noexcept { return static_cast<VariantType>(m_value.index()); }
    void reset() { m_value = {}; }

    bool asBool() const;
    /// The value as text; decimals of a double limited to precision, -1 meaning all that are needed to read
    /// it back.
    std::string asString(int precision = -1) const;

    /// Conversions for bool, int, std::int64_t, double, std::string, ColorValue, byte vectors and the
    /// enumerations of tarn/media; those of Qt types stand in tarn/qt/variantqt.h. Enumerations are
    /// kept as their texts, SourceMode as its number, and are read from either. Never fails: what has no such
    /// form gives 0, "" or the enumeration's first value.
    template <typename T>
    T as() const;
    template <typename T>
    static Variant from(const T& value);
    static Variant from(const char* text);

    /// The payload of a string without a copy; empty for any other tag.
    std::string_view stringView() const noexcept;
    /// The value as one of another type where that loses nothing: an integer as a double, a whole double as
    /// an integer, a colour's text as a colour. Tag None when it has no such form; NaN and infinities have
    /// none.
    Variant converted(VariantType wanted) const;

    /// From text typed by an operator: tag None when it is no number.
    static Variant parseInt(std::string_view text);
    static Variant parseDouble(std::string_view text);

    friend bool operator==(const Variant& a, const Variant& b);

private:
    template <typename T>
    T asEnum() const;

    std::variant<std::monostate, bool, std::int64_t, double, SharedString, SharedByteArray, ColorValue>
        m_value;
};

template <>
bool Variant::as<bool>() const;
template <>
int Variant::as<int>() const;
template <>
std::int64_t Variant::as<std::int64_t>() const;
template <>
double Variant::as<double>() const;
template <>
std::string Variant::as<std::string>() const;
template <>
ColorValue Variant::as<ColorValue>() const;
template <>
std::vector<std::uint8_t> Variant::as<std::vector<std::uint8_t>>() const;
template <>
EndAction Variant::as<EndAction>() const;
template <>
TakeTransitionType Variant::as<TakeTransitionType>() const;
template <>
PlayheadOption Variant::as<PlayheadOption>() const;
template <>
ScaleMode Variant::as<ScaleMode>() const;
template <>
SourceMode Variant::as<SourceMode>() const;
template <>
SourcePlayState Variant::as<SourcePlayState>() const;
template <>
AudioPlaybackDevice Variant::as<AudioPlaybackDevice>() const;

template <>
Variant Variant::from(const bool& value);
template <>
Variant Variant::from(const int& value);
template <>
Variant Variant::from(const std::int64_t& value);
template <>
Variant Variant::from(const double& value);
template <>
Variant Variant::from(const std::string& value);
template <>
Variant Variant::from(const std::string_view& value);
template <>
Variant Variant::from(const ColorValue& value);
template <>
Variant Variant::from(const std::vector<std::uint8_t>& value);
template <>
Variant Variant::from(const EndAction& value);
template <>
Variant Variant::from(const TakeTransitionType& value);
template <>
Variant Variant::from(const PlayheadOption& value);
template <>
Variant Variant::from(const ScaleMode& value);
template <>
Variant Variant::from(const SourceMode& value);
template <>
Variant Variant::from(const SourcePlayState& value);
template <>
Variant Variant::from(const AudioPlaybackDevice& value);

/// Arguments of a method, or the initial properties of an object, in name order.
using VariantMap = std::map<std::string, Variant>;

} // namespace vantrel
