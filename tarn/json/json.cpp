#include "tarn/json/json.h"

#include "tarn/json/jsoncursor.h"
#include "tarn/json/jsonparser.h"
#include "tarn/json/jsontree.h"
#include "tarn/json/jsonwriter.h"
#include "tarn/json/utf8.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace vantrel {

namespace {

/// The integer that a double is when cut towards zero, if Integer holds it.
template <typename Integer>
bool truncated(double value, Integer& out) noexcept
{
    constexpr double low = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr double high =
        2.0 * static_cast<double>(Integer(1) << (std::numeric_limits<Integer>::digits - 1));
    const double cut = std::trunc(value);
    if (!(cut >= low && cut < high))
        return false;
    out = static_cast<Integer>(cut);
    return true;
}

template <typename Integer>
bool sameNumber(Integer integer, double real) noexcept
{
    Integer cut = 0;
    return std::trunc(real) == real && truncated(real, cut) && cut == integer;
}

} // namespace

Json::Json(unsigned long long value) noexcept
    : m_wide{Tag::Int, 0, {0}}
{
    m_wide.payload.natural = value;
    if (value > static_cast<unsigned long long>(std::numeric_limits<std::int64_t>::max()))
        m_wide.tag = Tag::Natural;
}

Json::Json(double value) noexcept
    : m_wide{Tag::Null, 0, {0}}
{
    if (!std::isfinite(value))
        return;
    m_wide.tag = Tag::Double;
    m_wide.payload.real = value;
}

Json::Json(const char* text)
    : m_wide{Tag::Null, 0, {0}}
{
    if (text)
        *this = Json(std::string_view(text));
}

Json::Json(std::string_view text)
    : m_wide{Tag::Null, 0, {0}}
{
    *this = utf8::isValid(text) ? JsonTree::makeText(text) : JsonTree::makeText(utf8::repaired(text));
}

void Json::destroy() noexcept
{
    if (m_wide.tag == Tag::Text)
        std::free(m_wide.payload.heap);
    else
        JsonTree::release(JsonNode::of(*this));
}

Json Json::object()
{
    Json json;
    json.m_wide.tag = Tag::Object;
    return json;
}

Json Json::object(std::initializer_list<std::pair<std::string_view, Json>> members)
{
    Json json = object();
    for (const auto& [key, value] : members)
        json.set(key, value);
    return json;
}

Json Json::array()
{
    Json json;
    json.m_wide.tag = Tag::Array;
    return json;
}

Json Json::array(std::initializer_list<Json> items)
{
    Json json = array();
    for (const Json& item : items)
        json.append(item);
    return json;
}

JsonType Json::type() const noexcept
{
    switch (m_wide.tag) {
    case Tag::Null:
        return JsonType::Null;
    case Tag::Bool:
        return JsonType::Bool;
    case Tag::Int:
    case Tag::Natural:
        return JsonType::Int;
    case Tag::Double:
        return JsonType::Double;
    case Tag::Short:
    case Tag::Text:
        return JsonType::String;
    case Tag::Object:
        return JsonType::Object;
    case Tag::Array:
        return JsonType::Array;
    }
    return JsonType::Null;
}

void Json::setType(JsonType type)
{
    switch (type) {
    case JsonType::Null:
        *this = Json();
        break;
    case JsonType::Bool:
        *this = Json(false);
        break;
    case JsonType::Int:
        *this = Json(0);
        break;
    case JsonType::Double:
        *this = Json(0.0);
        break;
    case JsonType::String:
        *this = Json(std::string_view());
        break;
    case JsonType::Object:
        *this = object();
        break;
    case JsonType::Array:
        *this = array();
        break;
    }
}

bool Json::asBool(bool fallback) const noexcept
{
    return m_wide.tag == Tag::Bool ? m_wide.payload.integer != 0 : fallback;
}

std::int64_t Json::asInt(std::int64_t fallback) const noexcept
{
    if (m_wide.tag == Tag::Int)
        return m_wide.payload.integer;
    std::int64_t cut = 0;
    return m_wide.tag == Tag::Double && truncated(m_wide.payload.real, cut) ? cut : fallback;
}

std::uint64_t Json::asUInt(std::uint64_t fallback) const noexcept
{
    if (m_wide.tag == Tag::Natural || (m_wide.tag == Tag::Int && m_wide.payload.integer >= 0))
        return m_wide.payload.natural;
    std::uint64_t cut = 0;
    return m_wide.tag == Tag::Double && truncated(m_wide.payload.real, cut) ? cut : fallback;
}

double Json::asDouble(double fallback) const noexcept
{
    if (m_wide.tag == Tag::Double)
        return m_wide.payload.real;
    if (m_wide.tag == Tag::Int)
        return static_cast<double>(m_wide.payload.integer);
    return m_wide.tag == Tag::Natural ? static_cast<double>(m_wide.payload.natural) : fallback;
}

std::string Json::asString() const
{
    return isString() ? std::string(stringView()) : toString();
}

std::size_t Json::size() const noexcept
{
    return m_wide.tag >= Tag::Object ? m_wide.count : 0;
}

const Json* Json::find(std::string_view key) const noexcept
{
    return m_wide.tag == Tag::Object ? JsonTree::find(*this, JsonName(key)) : nullptr;
}

Json Json::get(std::string_view key) const
{
    const Json* value = find(key);
    return value ? *value : Json();
}

Json* Json::edit(std::string_view key)
{
    const JsonName name(key);
    const bool there = isObject() && JsonTree::find(*this, name);
    return there ? JsonTree::edit(*this, name) : nullptr;
}

void Json::set(std::string_view key, Json value)
{
    if (isNull())
        *this = object();
    if (!isObject())
        return;
    const JsonName name(key);
    if (const Json* old = JsonTree::find(*this, name)) {
        if (!old->sameNode(value))
            *JsonTree::edit(*this, name) = std::move(value);
    } else if (utf8::isValid(key)) {
        Json member[2] = {JsonTree::makeKey(key), std::move(value)};
        JsonTree::insert(*this, JsonTree::Place(name), member);
    } else {
        set(utf8::repaired(key), std::move(value));
    }
}

bool Json::erase(std::string_view key)
{
    const JsonName name(key);
    if (!isObject() || !JsonTree::find(*this, name))
        return false;
    JsonTree::erase(*this, JsonTree::Place(name));
    return true;
}

const Json* Json::at(std::size_t index) const noexcept
{
    return isArray() && index < size() ? JsonTree::at(*this, index) : nullptr;
}

Json* Json::edit(std::size_t index)
{
    return isArray() && index < size() ? JsonTree::edit(*this, index) : nullptr;
}

void Json::set(std::size_t index, Json value)
{
    if (Json* place = edit(index))
        *place = std::move(value);
}

void Json::insert(std::size_t index, Json value)
{
    if (isNull())
        *this = array();
    if (isArray())
        JsonTree::insert(*this, JsonTree::Place(index < size() ? index : size()), &value);
}

bool Json::erase(std::size_t index)
{
    if (!isArray() || index >= size())
        return false;
    JsonTree::erase(*this, JsonTree::Place(index));
    return true;
}

void Json::append(const Json& value)
{
    insert(size(), value);
}

bool Json::sameNode(const Json& other) const noexcept
{
    if (m_wide.tag != other.m_wide.tag)
        return false;
    switch (m_wide.tag) {
    case Tag::Null:
        return true;
    case Tag::Short:
        return stringView() == other.stringView();
    case Tag::Double:
        return m_wide.payload.real == other.m_wide.payload.real;
    default:
        return m_wide.payload.natural == other.m_wide.payload.natural;
    }
}

bool operator==(const Json& a, const Json& b) noexcept
{
    using Tag = Json::Tag;
    if (a.sameNode(b))
        return true;
    const Tag tag = a.m_wide.tag;
    const auto& pa = a.m_wide.payload;
    const auto& pb = b.m_wide.payload;
    if (tag != b.m_wide.tag) {
        if (tag == Tag::Double)
            return b == a;
        if (b.m_wide.tag != Tag::Double)
            return false;
        return tag == Tag::Int ? sameNumber(pa.integer, pb.real)
                               : tag == Tag::Natural && sameNumber(pa.natural, pb.real);
    }
    if (tag == Tag::Text)
        return a.stringView() == b.stringView();
    if (tag < Tag::Object || a.size() != b.size())
        return false;
    JsonCursor x(a);
    JsonCursor y(b);
    while (JsonCursor::skipShared(x, y)) {
        if (tag == Tag::Object && JsonName::compare(x.key(), y.key()) != 0)
            return false;
        if (!(x.value() == y.value()))
            return false;
        x.advance();
        y.advance();
    }
    return true;
}

std::string Json::toString(bool pretty) const
{
    JsonWriter writer(pretty);
    writer.value(*this);
    return writer.take();
}

bool Json::parseString(std::string_view text, Json& out, std::string* error)
{
    return JsonParser(text).parse(out, error);
}

} // namespace vantrel
