#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace vantrel {

class Variant;

enum class JsonType : std::int32_t { Null = 0, Bool = 1, Int = 2, Double = 3, String = 4, Object = 5, Array = 6 };

/// A persistent JSON value. Nodes are immutable and shared: a copy is one pointer, an edit copies the path to the
/// root, in place where nobody else holds the node. Copies may be read from any number of threads; one value
/// belongs to one thread at a time. Integers of 64 bits, signed or unsigned, are exact; strings are valid UTF-8.
class Json
{
public:
    Json() noexcept;                     // null
    Json(bool value) noexcept;
    Json(int value) noexcept;
    Json(std::int64_t value) noexcept;
    Json(std::uint64_t value) noexcept;  // type() is Int; asUInt() gives it back when it does not fit asInt()
    Json(double value) noexcept;         // NaN and infinities become null: JSON has no text for them
    Json(const char* text);
    Json(std::string_view text);         // bytes that are no UTF-8 are replaced by U+FFFD
    Json(const std::string& text);
    Json(const Json&) noexcept;
    Json(Json&&) noexcept;
    Json& operator=(const Json&) noexcept;
    Json& operator=(Json&&) noexcept;
    ~Json();

    static Json object();
    static Json object(std::initializer_list<std::pair<std::string_view, Json>> members);
    static Json array();
    static Json array(std::initializer_list<Json> items);

    JsonType type() const noexcept;
    bool isNull() const noexcept { return type() == JsonType::Null; }
    bool isString() const noexcept { return type() == JsonType::String; }
    bool isNumber() const noexcept { return type() == JsonType::Int || type() == JsonType::Double; }
    bool isObject() const noexcept { return type() == JsonType::Object; }
    bool isArray() const noexcept { return type() == JsonType::Array; }
    /// Empties the value into one of this type: null, false, 0, 0.0, "", {} or [].
    void setType(JsonType type);

    bool asBool(bool fallback = false) const noexcept;
    std::int64_t asInt(std::int64_t fallback = 0) const noexcept;    // a double is truncated when it fits
    std::uint64_t asUInt(std::uint64_t fallback = 0) const noexcept;
    double asDouble(double fallback = 0) const noexcept;             // an integer is converted
    /// A string's text; any other value as compact JSON.
    std::string asString() const;
    /// A string's text without a copy, valid as long as the node; empty for any other type.
    std::string_view stringView() const noexcept;

    /// Members of an object, items of an array; 0 for scalars.
    std::size_t size() const noexcept;

    // Objects. Members are kept, walked and written in byte order of their names.
    const Json* find(std::string_view key) const noexcept; // null when absent, or when this is no object
    Json get(std::string_view key) const;                   // null value when absent
    void set(std::string_view key, Json value);             // turns a null into an object
    bool erase(std::string_view key);

    // Arrays.
    const Json* at(std::size_t index) const noexcept;       // null when out of range
    void set(std::size_t index, Json value);
    void insert(std::size_t index, Json value);
    bool erase(std::size_t index);
    void append(const Json& value);                         // turns a null into an array

    /// Walks an object's members in order: f(std::string_view key, const Json& value). Return false to stop.
    template <typename F>
    void forEachMember(F&& f) const;
    /// Walks an array's items in order: f(const Json& value).
    template <typename F>
    void forEachItem(F&& f) const;

    /// Whether both are the same node, and so equal without a look inside.
    bool sameNode(const Json& other) const noexcept;
    /// Deep equality; numbers by value (1 equals 1.0). Stops at shared nodes.
    friend bool operator==(const Json& a, const Json& b) noexcept;

    /// RFC 8259 text. Compact: no blanks. Pretty: two blanks an indent.
    std::string toString(bool pretty = false) const;
    /// Strict reading of one value: UTF-8 only, no lone surrogates, no duplicate members, no number out of range,
    /// nothing after the value, at most maxDepth levels. On failure out stays as it was and error, where given,
    /// says what and at which byte.
    static bool parseString(std::string_view text, Json& out, std::string* error = nullptr);
    static constexpr int maxDepth = 512;

    /// Scene values: none is null, bytes are a base64 string, a colour is "#rrggbb".
    static void fromVariant(const Variant& value, Json& out);

private:
    // the node: see jsonnode.h
};

} // namespace vantrel
