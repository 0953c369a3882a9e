#pragma once

#include "tarn/json/jsonnode.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace vantrel {

/// The operations on the trees that objects and arrays are. Entries are addressed by position, members also
/// by name. Functions that change a tree copy the nodes on the way that somebody else holds too.
struct JsonTree
{
    /// Where a name stands, or would stand.
    struct Rank
    {
        std::size_t position;
        bool found;
    };

    static const Json* find(const Json& object, std::string_view key) noexcept;
    static const Json* at(const Json& tree, std::size_t position) noexcept; // in range
    static Rank rank(const Json& object, std::string_view key) noexcept;

    static Json* edit(Json& object, std::string_view key); // present
    static Json* edit(Json& tree, std::size_t position);   // in range

    /// Moves the width values of entry in; position is at most the size.
    static void insert(Json& tree, std::size_t position, Json* entry);
    static void erase(Json& tree, std::size_t position); // in range

    /// Moves count entries, for an object in order of their names, out of entries into a new container. What
    /// is left behind at entries is raw memory.
    static Json build(JsonType type, Json* entries, std::size_t count);

    static Json makeText(std::string_view validUtf8);
    /// The same, but sharing the node of an equal long text made lately: names recur.
    static Json makeKey(std::string_view validUtf8);

    /// Whether the trees below two containers are one, and so their contents.
    static bool sameTree(const Json& a, const Json& b) noexcept
    {
        return a.m_wide.payload.heap == b.m_wide.payload.heap;
    }
    static std::uint32_t count(const Json& tree) noexcept { return tree.m_wide.count; }
    /// For a test: what is wrong with the shape of a container's tree; empty when all is well.
    static std::string fault(const Json& tree);

    static JsonNode* unique(Json& tree, unsigned room);
    static void release(JsonNode* node) noexcept;

private:
    static JsonNode* allocate(unsigned width, unsigned level, unsigned capacity);
    static Json wrap(Json::Tag tag, JsonNode* node) noexcept;
    static void recount(Json& tree) noexcept;
    static void refreshKey(JsonNode& parent, unsigned child) noexcept;
    static void pushEntry(JsonNode& node, Json* entry) noexcept;
    static bool insertHere(Json& tree, unsigned index, Json* entry, Json& right);
    static bool insertBelow(Json& tree, std::size_t position, Json* entry, Json& right);
    static void eraseHere(JsonNode& node, unsigned index) noexcept;
    static void eraseBelow(Json& tree, std::size_t position);
    static void mend(JsonNode& parent, unsigned child);
    static JsonNode* dropValue(Json& value) noexcept;
    static void faultBelow(const JsonNode& node, bool root, std::string& fault);
};

} // namespace vantrel
