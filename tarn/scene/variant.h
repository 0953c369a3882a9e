#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantrel {

class Json;

/// Tags of a Variant; kinds up to String merge in undo, those after it do not.
enum class VariantType : std::int32_t { None = 0, Bool = 1, Int = 2, Double = 3, String = 4, Bytes = 5, Color = 6 };

/// The printable name of a tag: "none", "bool", "int", "double", "string", "bytes", "color".
const char* toStr(VariantType type);

/// A colour of the scene, 8 bits a channel; "#rrggbb" as text and as JSON, "#aarrggbb" where alpha is not 255.
struct ColorValue
{
    std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
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
    /// The value as text; decimals of a double limited to precision, -1 meaning all that are needed to read it back.
    std::string asString(int precision = -1) const;

    /// Conversions for bool, int, std::int64_t, double, std::string, ColorValue and the enumerations of
    /// tarn/media/enums.h; those of Qt types stand in tarn/qt/variantqt.h.
    template <typename T>
    T as() const;
    template <typename T>
    static Variant from(const T& value);

    /// From text typed by an operator: tag None when it is no number.
    static Variant parseInt(std::string_view text);
    static Variant parseDouble(std::string_view text);

    friend bool operator==(const Variant& a, const Variant& b);

private:
    std::variant<std::monostate, bool, std::int64_t, double, SharedString, SharedByteArray, ColorValue> m_value;
};

/// Arguments of a method, or the initial properties of an object, in name order.
using VariantMap = std::map<std::string, Variant>;

} // namespace vantrel
