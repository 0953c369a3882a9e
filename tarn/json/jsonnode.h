#pragma once

#include "tarn/json/json.h"

#include <type_traits>

namespace vantrel {

/// A long string: its bytes follow, their number stands in the value that holds it.
struct JsonText : JsonRefs
{
    char* bytes() noexcept { return reinterpret_cast<char*>(this + 1); }
};

/// A node of the B+-tree that an object or an array is. A leaf (level 0) holds the members or items, an inner
/// node its subtrees, each as the value that such a container would be, and for objects the first name below
/// it. An entry is width values: a name and a value, or just a value. All nodes but the root hold minEntries
/// or more.
struct JsonNode : JsonRefs
{
    static constexpr unsigned maxEntries = 32;
    static constexpr unsigned minEntries = 16;
    static constexpr unsigned maxHeight = 9; // 16^8 entries are all that a 32-bit count can tell

    std::uint8_t level = 0;
    std::uint8_t count = 0;
    std::uint8_t capacity = 0;
    std::uint8_t width = 1;

    Json* slots() noexcept { return reinterpret_cast<Json*>(this + 1); }
    const Json* slots() const noexcept { return reinterpret_cast<const Json*>(this + 1); }
    Json* entry(unsigned i) noexcept { return slots() + i * width; }
    const Json* entry(unsigned i) const noexcept { return slots() + i * width; }
    Json& key(unsigned i) noexcept { return slots()[i * 2]; }
    const Json& key(unsigned i) const noexcept { return slots()[i * 2]; }
    Json& value(unsigned i) noexcept { return slots()[i * width + width - 1]; }
    const Json& value(unsigned i) const noexcept { return slots()[i * width + width - 1]; }

    static const JsonNode* of(const Json& container) noexcept
    {
        return static_cast<const JsonNode*>(container.m_wide.payload.heap);
    }
    static JsonNode* of(Json& container) noexcept
    {
        return static_cast<JsonNode*>(container.m_wide.payload.heap);
    }

    /// Calls f(entry) for each entry of the leaves below node; false when f stopped the walk.
    template <typename F>
    static bool walk(const JsonNode* node, F& f)
    {
        for (unsigned i = 0; i < node->count; ++i) {
            if (node->level > 0 ? !walk(of(node->value(i)), f) : !f(node->entry(i)))
                return false;
        }
        return true;
    }
};
static_assert(sizeof(Json) == 16 && sizeof(JsonNode) == 8 && sizeof(JsonText) == 4);

inline std::string_view Json::stringView() const noexcept
{
    if (m_wide.tag == Tag::Short)
        return {m_short.text, m_short.size};
    if (m_wide.tag == Tag::Text)
        return {static_cast<JsonText*>(m_wide.payload.heap)->bytes(), m_wide.count};
    return {};
}

template <typename F>
void Json::forEachMember(F&& f) const
{
    if (!isObject() || !onHeap())
        return;
    const Json hold(*this); // an edit of this value from inside f goes to a copy
    auto visit = [&f](const Json* entry) {
        if constexpr (std::is_void_v<std::invoke_result_t<F&, std::string_view, const Json&>>) {
            f(entry[0].stringView(), entry[1]);
            return true;
        } else {
            return static_cast<bool>(f(entry[0].stringView(), entry[1]));
        }
    };
    JsonNode::walk(JsonNode::of(hold), visit);
}

template <typename F>
void Json::forEachItem(F&& f) const
{
    if (!isArray() || !onHeap())
        return;
    const Json hold(*this);
    auto visit = [&f](const Json* entry) {
        if constexpr (std::is_void_v<std::invoke_result_t<F&, const Json&>>) {
            f(*entry);
            return true;
        } else {
            return static_cast<bool>(f(*entry));
        }
    };
    JsonNode::walk(JsonNode::of(hold), visit);
}

} // namespace vantrel
