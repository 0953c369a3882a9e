#pragma once

#include "tarn/json/jsonname.h"
#include "tarn/json/jsonnode.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace vantrel {

/// The operations on the trees that objects and arrays are. Entries are addressed by position, members also
/// by name. Functions that change a tree copy the nodes on the way that somebody else holds too.
struct [[gnu::visibility("hidden")]] JsonTree
{
    /// The way to an entry: by name in an object, by position in an array.
    class Place
    {
    public:
        explicit Place(const JsonName& name) noexcept
            : m_name(&name)
        {
        }
        explicit Place(std::size_t position) noexcept
            : m_position(position)
        {
        }

        /// Index of the child of an inner node to go on with. Inserting at the border of two goes to the
        /// first.
        unsigned child(const JsonNode& node, bool inserting) noexcept;
        /// Index in a leaf.
        unsigned index(const JsonNode& leaf) const noexcept;

    private:
        const JsonName* m_name = nullptr;
        std::size_t m_position = 0;
    };

    static const Json* find(const Json& object, const JsonName& name) noexcept;
    static const Json* at(const Json& tree, std::size_t position) noexcept; // in range

    static Json* edit(Json & object, const JsonName& name); // null when absent
    static Json* edit(Json & tree, std::size_t position);   // in range

    /// Moves the width values of entry in. A member's name must be new, a position at most the size.
    static void insert(Json & tree, Place place, Json * entry);
    static void erase(Json & tree, Place place); // present

    /// Moves count entries, for an object in order of their names, out of entries into a new container. What
    /// is left behind at entries is raw memory.
    static Json build(JsonType type, Json * entries, std::size_t count);

    static Json makeText(std::string_view validUtf8);
    /// The same, but sharing the node of an equal long text made lately: names recur.
    static Json makeKey(std::string_view validUtf8);

    static std::uint32_t count(const Json& tree) noexcept
    {
        return tree.m_wide.count;
    }
    /// For a test: what is wrong with the shape of a container's tree; empty when all is well.
    [[gnu::visibility("default")]] static std::string fault(const Json& tree);

    static JsonNode* unique(Json & tree, unsigned room);
    static void release(JsonNode * node) noexcept;

private:
    static JsonNode* allocate(unsigned width, unsigned level, unsigned capacity);
    static JsonNode* fill(unsigned width, unsigned level, const Json* entries, std::size_t count);
    static Json wrap(Json::Tag tag, JsonNode * node) noexcept;
    static void recount(Json & tree) noexcept;
    static void refreshKey(JsonNode & parent, unsigned child) noexcept;
    static void pushEntry(JsonNode & node, Json * entry) noexcept;
    static bool insertHere(Json & tree, unsigned index, Json* entry, Json& right);
    static bool insertBelow(Json & tree, Place place, Json * entry, Json & right);
    static void eraseHere(JsonNode & node, unsigned index) noexcept;
    static void eraseBelow(Json & tree, Place place);
    static void mend(JsonNode & parent, unsigned child);
    static void fetchAhead(const JsonNode& node) noexcept;
    static JsonNode* dropValue(Json & value) noexcept;
    static void faultBelow(const JsonNode& node, bool root, std::string& fault);
};

} // namespace vantrel
