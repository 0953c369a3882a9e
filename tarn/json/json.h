#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace vantrel {

class Variant;
struct JsonNode;
struct JsonTree;

/// What every node on the heap begins with.
struct JsonRefs
{
    std::atomic<std::uint32_t> refs{1};
};

enum class JsonType : std::int32_t {
    Null = 0,
    Bool = 1,
    Int = 2,
    Double = 3,
    String = 4,
    Object = 5,
    Array = 6
};

/// A persistent JSON value. Nodes are immutable and shared: a copy is one pointer, an edit copies the path to
/// the root, in place where nobody else holds the node. Copies may be read from any number of threads; one
/// value belongs to one thread at a time. Integers of 64 bits, signed or unsigned, are exact; strings are
/// valid UTF-8.
class Json
{
public:
    Json() noexcept
        : m_wide{Tag::Null, 0, {0}}
    {
    } // null
    Json(bool value) noexcept
        : m_wide{Tag::Bool, 0, {value ? 1 : 0}}
    {
    }
    Json(int value) noexcept
        : m_wide{Tag::Int, 0, {value}}
    {
    }
    Json(unsigned value) noexcept
        : m_wide{Tag::Int, 0, {value}}
    {
    }
    Json(long value) noexcept
        : m_wide{Tag::Int, 0, {value}}
    {
    }
    Json(long long value) noexcept
        : m_wide{Tag::Int, 0, {value}}
    {
    }
    Json(unsigned long value) noexcept
        : Json(static_cast<unsigned long long>(value))
    {
    }
    Json(unsigned long long
             value) noexcept;    // type() is Int; asUInt() gives it back when it does not fit asInt()
    Json(double value) noexcept; // NaN and infinities become null: JSON has no text for them
    Json(const char* text);      // a null pointer gives null
    Json(std::string_view text); // bytes that are no UTF-8 are replaced by U+FFFD
    Json(const std::string& text)
        : Json(std::string_view(text))
    {
    }
    Json(const void*) = delete; // else any pointer would pass for a bool
    Json(const Json& other) noexcept
    {
        std::memcpy(static_cast<void*>(this), &other, sizeof(Json));
        if (onHeap())
            m_wide.payload.heap->refs.fetch_add(1, std::memory_order_relaxed);
    }
    Json(Json&& other) noexcept
    {
        std::memcpy(static_cast<void*>(this), &other, sizeof(Json));
        other.m_wide = {Tag::Null, 0, {0}};
    }
    Json& operator=(const Json& other) noexcept { return *this = Json(other); }
    Json& operator=(Json&& other) noexcept
    {
        Json old(std::move(*this)); // kept to the end: other may stand below this value
        std::memcpy(static_cast<void*>(this), &other, sizeof(Json));
        other.m_wide = {Tag::Null, 0, {0}};
        return *this;
    }
    ~Json()
    {
        if (onHeap() && dropRef(*m_wide.payload.heap))
            destroy();
    }

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
    std::int64_t asInt(std::int64_t fallback = 0) const noexcept; // a double is truncated when it fits
    std::uint64_t asUInt(std::uint64_t fallback = 0) const noexcept;
    double asDouble(double fallback = 0) const noexcept; // an integer is converted
    /// A string's text; any other value as compact JSON.
    std::string asString() const;
    /// A string's text without a copy, valid as long as this value stands unchanged; empty for others.
    std::string_view stringView() const noexcept;

    /// Members of an object, items of an array; 0 for scalars.
    std::size_t size() const noexcept;

    // Objects. Members are kept, walked and written in byte order of their names.
    const Json* find(std::string_view key) const noexcept; // null when absent, or when this is no object
    Json get(std::string_view key) const;                  // null value when absent
    /// Sets a member; what it holds already costs no copy. A null becomes an object; on any other type
    /// nothing happens.
    void set(std::string_view key, Json value);
    bool erase(std::string_view key);
    /// A member to change in its place, null when absent; good until this value is changed or copied.
    Json* edit(std::string_view key);

    // Arrays.
    const Json* at(std::size_t index) const noexcept; // null when out of range
    void set(std::size_t index, Json value);          // nothing happens when out of range
    void insert(std::size_t index, Json value);       // past the end appends; turns a null into an array
    bool erase(std::size_t index);
    void append(const Json& value); // turns a null into an array
    Json* edit(std::size_t index);  // as for a member

    /// Walks an object's members in order: f(std::string_view key, const Json& value). A function
    /// that returns bool stops the walk with false. The walk sees the value as it was when it began.
    template <typename F>
    void forEachMember(F&& f) const;
    /// Walks an array's items in order: f(const Json& value); as for members.
    template <typename F>
    void forEachItem(F&& f) const;

    /// Whether both are the same node, and so equal without a look inside.
    bool sameNode(const Json& other) const noexcept;
    /// Deep equality; numbers by value (1 equals 1.0). Stops at shared nodes.
    friend bool operator==(const Json& a, const Json& b) noexcept;

    /// RFC 8259 text. Compact: no blanks. Pretty: two blanks an indent.
    std::string toString(bool pretty = false) const;
    /// Strict reading of one value: UTF-8 only, no lone surrogates, no duplicate members, no number out of
    /// range, nothing after the value, at most maxDepth levels. On failure out stays as it was and error,
    /// where given, says what and at which byte.
    static bool parseString(std::string_view text, Json& out, std::string* error = nullptr);
    static constexpr int maxDepth = 512;

    /// Scene values: none is null, bytes are a base64 string, a colour is "#rrggbb".
    static void fromVariant(const Variant& value, Json& out);

private:
    friend struct JsonTree;
    friend struct JsonNode;
    friend class JsonName;
    friend class JsonParser;
    friend class JsonWriter;

    // Order matters: from Text on, the payload is a node.
    enum class Tag : std::uint8_t { Null, Bool, Int, Natural, Double, Short, Text, Object, Array };

    /// The inline string.
    struct Short
    {
        Tag tag;
        std::uint8_t size;
        char text[14];
    };
    /// Everything else. count: bytes of a text, members of an object, items of an array. An empty container
    /// has no node.
    struct Wide
    {
        union Payload {
            std::int64_t integer;
            std::uint64_t natural;
            double real;
            JsonRefs* heap;
        };
        Tag tag;
        std::uint32_t count;
        Payload payload;
    };

    bool onHeap() const noexcept { return m_wide.tag >= Tag::Text && m_wide.payload.heap != nullptr; }
    static bool dropRef(JsonRefs& node) noexcept
    {
        // The last holder needs no locked instruction.
        return node.refs.load(std::memory_order_acquire) == 1 ||
               node.refs.fetch_sub(1, std::memory_order_acq_rel) == 1;
    }
    void destroy() noexcept;

    union {
        Short m_short;
        Wide m_wide;
    };
};

} // namespace vantrel

#include "tarn/json/jsonnode.h"
