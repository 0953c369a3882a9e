#include "tarn/json/jsontree.h"

#include "tarn/json/jsoncounters.h"
#include "tarn/json/jsonkeycache.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <vector>

namespace vantrel {

namespace {

constexpr std::size_t fillTarget = 24; // entries in a node that is built in one go: room for edits to come

void move(Json* to, const Json* from, std::size_t values) noexcept
{
    std::memmove(static_cast<void*>(to), from, values * sizeof(Json));
}

void* allocateBytes(std::size_t size)
{
    void* memory = std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

} // namespace

JsonNode* JsonTree::allocate(unsigned width, unsigned level, unsigned capacity)
{
    void* memory = allocateBytes(sizeof(JsonNode) + capacity * width * sizeof(Json));
    auto* node = new (memory) JsonNode;
    node->width = static_cast<std::uint8_t>(width);
    node->level = static_cast<std::uint8_t>(level);
    node->capacity = static_cast<std::uint8_t>(capacity);
    JsonCounters::made();
    return node;
}

Json JsonTree::wrap(Json::Tag tag, JsonNode* node) noexcept
{
    Json tree;
    tree.m_wide.tag = tag;
    tree.m_wide.payload.heap = node;
    recount(tree);
    return tree;
}

/// Whoever goes through all values of a node touches a count elsewhere in memory for each: have them all on
/// the way before the first is needed. The first entry may be gone already.
void JsonTree::fetchAhead(const JsonNode& node) noexcept
{
    for (unsigned i = 1; i < node.count; ++i) {
        if (node.value(i).onHeap())
            __builtin_prefetch(node.value(i).m_wide.payload.heap, 1);
    }
}

/// The root of tree as a node that only tree holds, with room for more entries, though never past maxEntries.
JsonNode* JsonTree::unique(Json& tree, unsigned room)
{
    JsonNode* node = JsonNode::of(tree);
    const unsigned wanted = std::min(node->count + room, JsonNode::maxEntries);
    if (node->refs.load(std::memory_order_acquire) == 1) {
        if (wanted <= node->capacity)
            return node;
        const unsigned grown = std::min(wanted + wanted / 4, JsonNode::maxEntries);
        JsonNode* bigger = allocate(node->width, node->level, grown);
        move(bigger->slots(), node->slots(), std::size_t(node->count) * node->width);
        bigger->count = node->count;
        std::free(node);
        tree.m_wide.payload.heap = bigger;
        return bigger;
    }
    JsonNode* copy = allocate(node->width, node->level, wanted);
    fetchAhead(*node);
    for (unsigned i = 0; i < unsigned(node->count) * node->width; ++i)
        new (copy->slots() + i) Json(node->slots()[i]);
    copy->count = node->count;
    if (Json::dropRef(*node))
        release(node);
    tree.m_wide.payload.heap = copy;
    return copy;
}

/// Gives up value without a descent: the node that died with it, if one did, for the caller to release.
JsonNode* JsonTree::dropValue(Json& value) noexcept
{
    if (!value.onHeap() || !Json::dropRef(*value.m_wide.payload.heap))
        return nullptr;
    if (value.m_wide.tag != Json::Tag::Text)
        return JsonNode::of(value);
    std::free(value.m_wide.payload.heap);
    return nullptr;
}

/// Frees a dead node and what dies with it. Dead nodes wait in a list that runs through the room of their
/// first entries, so that no depth of nesting can exhaust the stack.
void JsonTree::release(JsonNode* node) noexcept
{
    JsonNode* waiting = nullptr;
    const auto push = [&waiting](JsonNode* dead) {
        while (dead) {
            if (dead->width == 2)
                dropValue(dead->key(0));
            JsonNode* next = dropValue(dead->value(0));
            std::memcpy(static_cast<void*>(dead->slots()), &waiting, sizeof waiting);
            waiting = dead;
            dead = next;
        }
    };
    push(node);
    while (waiting) {
        JsonNode* dead = waiting;
        std::memcpy(&waiting, static_cast<void*>(dead->slots()), sizeof waiting);
        fetchAhead(*dead);
        for (unsigned i = dead->width; i < unsigned(dead->count) * dead->width; ++i) {
            if (JsonNode* next = dropValue(dead->slots()[i]))
                push(next);
        }
        std::free(dead);
    }
}

unsigned JsonTree::Place::child(const JsonNode& node, bool inserting) noexcept
{
    if (m_name)
        return m_name->childOf(node);
    unsigned i = 0;
    for (; i + 1u < node.count; ++i) {
        const std::size_t size = count(node.value(i));
        if (m_position < size || (inserting && m_position == size))
            break;
        m_position -= size;
    }
    return i;
}

unsigned JsonTree::Place::index(const JsonNode& leaf) const noexcept
{
    return m_name ? m_name->lowerBound(leaf) : static_cast<unsigned>(m_position);
}

const Json* JsonTree::find(const Json& object, const JsonName& name) noexcept
{
    const JsonNode* node = JsonNode::of(object);
    if (!node)
        return nullptr;
    while (node->level > 0)
        node = JsonNode::of(node->value(name.childOf(*node)));
    const unsigned i = name.lowerBound(*node);
    return i < node->count && name.compare(node->key(i)) == 0 ? &node->value(i) : nullptr;
}

const Json* JsonTree::at(const Json& tree, std::size_t position) noexcept
{
    Place place(position);
    const JsonNode* node = JsonNode::of(tree);
    while (node->level > 0)
        node = JsonNode::of(node->value(place.child(*node, false)));
    return &node->value(place.index(*node));
}

Json* JsonTree::edit(Json& object, const JsonName& name)
{
    Json* tree = &object;
    if (!JsonNode::of(object))
        return nullptr;
    for (;;) {
        JsonNode* node = unique(*tree, 0);
        if (node->level > 0) {
            tree = &node->value(name.childOf(*node));
            continue;
        }
        const unsigned i = name.lowerBound(*node);
        return i < node->count && name.compare(node->key(i)) == 0 ? &node->value(i) : nullptr;
    }
}

Json* JsonTree::edit(Json& root, std::size_t position)
{
    Place place(position);
    Json* tree = &root;
    for (;;) {
        JsonNode* node = unique(*tree, 0);
        if (node->level == 0)
            return &node->value(place.index(*node));
        tree = &node->value(place.child(*node, false));
    }
}

void JsonTree::recount(Json& tree) noexcept
{
    const JsonNode* node = JsonNode::of(tree);
    std::uint32_t sum = node->count;
    if (node->level > 0) {
        sum = 0;
        for (unsigned i = 0; i < node->count; ++i)
            sum += count(node->value(i));
    }
    tree.m_wide.count = sum;
}

void JsonTree::refreshKey(JsonNode& parent, unsigned child) noexcept
{
    if (parent.width == 1)
        return;
    const Json& first = JsonNode::of(parent.value(child))->key(0);
    if (std::memcmp(static_cast<const void*>(&first), &parent.key(child), sizeof(Json)) != 0)
        parent.key(child) = first;
}

void JsonTree::pushEntry(JsonNode& node, Json* entry) noexcept
{
    move(node.entry(node.count), entry, node.width);
    ++node.count;
}

/// Puts entry into the root of tree, which is unique. A full root is split: true, and its upper half in
/// right.
bool JsonTree::insertHere(Json& tree, unsigned index, Json* entry, Json& right)
{
    JsonNode* node = unique(tree, 1);
    const bool split = node->count == JsonNode::maxEntries;
    JsonNode* target = node;
    if (split) {
        constexpr unsigned half = JsonNode::maxEntries / 2;
        JsonNode* upper = allocate(node->width, node->level, half + 1);
        move(upper->slots(), node->entry(half), std::size_t(half) * node->width);
        node->count = upper->count = half;
        right.m_wide = {tree.m_wide.tag, 0, {0}};
        right.m_wide.payload.heap = upper;
        if (index > half) {
            target = upper;
            index -= half;
        }
    }
    move(target->entry(index + 1), target->entry(index), std::size_t(target->count - index) * target->width);
    move(target->entry(index), entry, target->width);
    ++target->count;
    if (split) {
        recount(tree);
        recount(right);
    }
    return split;
}

bool JsonTree::insertBelow(Json& tree, Place place, Json* entry, Json& right)
{
    JsonNode* node = unique(tree, 1);
    ++tree.m_wide.count;
    if (node->level == 0)
        return insertHere(tree, place.index(*node), entry, right);
    const unsigned i = place.child(*node, true);
    Json pair[2];
    const bool split = insertBelow(node->value(i), place, entry, pair[1]);
    refreshKey(*node, i);
    if (!split)
        return false;
    if (node->width == 2)
        pair[0] = JsonNode::of(pair[1])->key(0);
    const bool splitToo = insertHere(tree, i + 1, pair + 2 - node->width, right);
    pair[0].m_wide = {Json::Tag::Null, 0, {0}}; // both live in the tree now
    pair[1].m_wide = {Json::Tag::Null, 0, {0}};
    return splitToo;
}

void JsonTree::insert(Json& tree, Place place, Json* entry)
{
    const unsigned width = tree.m_wide.tag == Json::Tag::Object ? 2 : 1;
    if (tree.m_wide.count == UINT32_MAX)
        throw std::length_error("json: too many entries");
    if (!tree.m_wide.payload.heap) {
        JsonNode* node = allocate(width, 0, 1);
        pushEntry(*node, entry);
        tree.m_wide.payload.heap = node;
        tree.m_wide.count = 1;
    } else {
        Json right;
        if (insertBelow(tree, place, entry, right)) {
            JsonNode* root = allocate(width, JsonNode::of(tree)->level + 1u, 4);
            for (Json* half : {&tree, &right}) {
                Json pair[2] = {width == 2 ? JsonNode::of(*half)->key(0) : Json(), std::move(*half)};
                pushEntry(*root, pair + 2 - width);
                pair[0].m_wide = pair[1].m_wide = {Json::Tag::Null, 0, {0}};
            }
            tree = wrap(width == 2 ? Json::Tag::Object : Json::Tag::Array, root);
        }
    }
    for (unsigned i = 0; i < width; ++i)
        entry[i].m_wide = {Json::Tag::Null, 0, {0}};
}

void JsonTree::eraseHere(JsonNode& node, unsigned index) noexcept
{
    for (unsigned i = 0; i < node.width; ++i)
        node.entry(index)[i].~Json();
    move(node.entry(index), node.entry(index + 1), std::size_t(node.count - index - 1) * node.width);
    --node.count;
}

/// Brings a child that fell below minEntries back: joins it with a neighbour, or shares evenly.
void JsonTree::mend(JsonNode& parent, unsigned child)
{
    const unsigned l = child > 0 ? child - 1 : 0;
    Json& left = parent.value(l);
    Json& right = parent.value(l + 1);
    const unsigned total = unsigned(JsonNode::of(left)->count) + JsonNode::of(right)->count;
    const bool join = total <= JsonNode::maxEntries;
    const unsigned kept = join ? total : total / 2;
    JsonNode* a = unique(left, kept > JsonNode::of(left)->count ? kept - JsonNode::of(left)->count : 0);
    JsonNode* b = unique(right, kept < a->count ? a->count - kept : 0);
    if (kept >= a->count) {
        const unsigned moved = kept - a->count;
        move(a->entry(a->count), b->slots(), std::size_t(moved) * a->width);
        move(b->slots(), b->entry(moved), std::size_t(b->count - moved) * a->width);
    } else {
        const unsigned moved = a->count - kept;
        move(b->entry(moved), b->slots(), std::size_t(b->count) * a->width);
        move(b->slots(), a->entry(kept), std::size_t(moved) * a->width);
    }
    a->count = static_cast<std::uint8_t>(kept);
    b->count = static_cast<std::uint8_t>(total - kept);
    recount(left);
    if (join) {
        std::free(b);
        right.m_wide = {Json::Tag::Null, 0, {0}};
        eraseHere(parent, l + 1);
    } else {
        recount(right);
        refreshKey(parent, l + 1);
    }
    refreshKey(parent, l);
}

void JsonTree::eraseBelow(Json& tree, Place place)
{
    JsonNode* node = unique(tree, 0);
    --tree.m_wide.count;
    if (node->level == 0) {
        eraseHere(*node, place.index(*node));
        return;
    }
    const unsigned i = place.child(*node, false);
    eraseBelow(node->value(i), place);
    refreshKey(*node, i);
    if (JsonNode::of(node->value(i))->count < JsonNode::minEntries)
        mend(*node, i);
}

void JsonTree::erase(Json& tree, Place place)
{
    eraseBelow(tree, place);
    JsonNode* node = JsonNode::of(tree);
    if (node->count == 0) {
        std::free(node);
        tree.m_wide.payload.heap = nullptr;
    } else if (node->level > 0 && node->count == 1) {
        Json only = std::move(node->value(0));
        tree = std::move(only);
    }
}

JsonNode* JsonTree::fill(unsigned width, unsigned level, const Json* entries, std::size_t count)
{
    JsonNode* node = allocate(width, level, static_cast<unsigned>(count));
    move(node->slots(), entries, count * width);
    node->count = static_cast<std::uint8_t>(count);
    return node;
}

Json JsonTree::build(JsonType type, Json* entries, std::size_t total)
{
    const unsigned width = type == JsonType::Object ? 2 : 1;
    Json tree;
    tree.m_wide.tag = type == JsonType::Object ? Json::Tag::Object : Json::Tag::Array;
    if (total == 0)
        return tree;
    if (total > UINT32_MAX)
        throw std::length_error("json: too many entries");
    std::vector<Json> level; // the entries to put into nodes next, where they are not those given
    const auto forget = [](std::vector<Json>& moved) {
        for (Json& json : moved)
            json.m_wide = {Json::Tag::Null, 0, {0}};
    };
    unsigned height = 0;
    for (; total > JsonNode::maxEntries; ++height) {
        const std::size_t nodes = (total + fillTarget - 1) / fillTarget;
        std::vector<Json> above;
        above.reserve(nodes * width);
        for (std::size_t i = 0; i < nodes; ++i) {
            const std::size_t share = total / nodes + (i < total % nodes ? 1 : 0);
            JsonNode* node = fill(width, height, entries, share);
            entries += share * width;
            if (width == 2)
                above.push_back(node->key(0));
            above.push_back(wrap(tree.m_wide.tag, node));
        }
        forget(level);
        level = std::move(above);
        entries = level.data();
        total = nodes;
    }
    tree.m_wide.payload.heap = fill(width, height, entries, total);
    forget(level);
    recount(tree);
    return tree;
}

Json JsonTree::makeText(std::string_view text)
{
    Json json;
    if (text.size() <= sizeof(Json::Short::text)) {
        json.m_short.tag = Json::Tag::Short;
        json.m_short.size = static_cast<std::uint8_t>(text.size());
        std::memset(json.m_short.text, 0, sizeof json.m_short.text);
        if (!text.empty())
            std::memcpy(json.m_short.text, text.data(), text.size());
        return json;
    }
    if (text.size() > UINT32_MAX)
        throw std::length_error("json: text too long");
    auto* node = new (allocateBytes(sizeof(JsonText) + text.size())) JsonText;
    std::memcpy(node->bytes(), text.data(), text.size());
    json.m_wide.tag = Json::Tag::Text;
    json.m_wide.count = static_cast<std::uint32_t>(text.size());
    json.m_wide.payload.heap = node;
    return json;
}

Json JsonTree::makeKey(std::string_view text)
{
    return text.size() <= sizeof(Json::Short::text) ? makeText(text) : JsonKeyCache::get(text);
}

void JsonTree::faultBelow(const JsonNode& node, bool root, std::string& fault)
{
    if (node.count > JsonNode::maxEntries || node.count > node.capacity)
        fault = "a node above its capacity";
    if (node.count < (root ? (node.level > 0 ? 2u : 1u) : JsonNode::minEntries))
        fault = "a node with too few entries";
    for (unsigned i = 0; i < node.count && fault.empty(); ++i) {
        if (node.width == 2 && i > 0 && !(node.key(i - 1).stringView() < node.key(i).stringView()))
            fault = "names out of order";
        if (node.level == 0)
            continue;
        const JsonNode& child = *JsonNode::of(node.value(i));
        Json counted = node.value(i);
        recount(counted);
        if (child.level + 1 != node.level || child.width != node.width)
            fault = "a child of another level or kind";
        else if (counted.m_wide.count != count(node.value(i)))
            fault = "a wrong count";
        else if (node.width == 2 && child.key(0).stringView() != node.key(i).stringView())
            fault = "a name that is not the first below it";
        else
            faultBelow(child, false, fault);
        if (fault.empty() && node.width == 2 && i + 1u < node.count &&
            !(child.key(child.count - 1u).stringView() < node.key(i + 1).stringView()))
            fault = "subtrees that overlap";
    }
}

std::string JsonTree::fault(const Json& tree)
{
    std::string fault;
    if (!tree.isObject() && !tree.isArray())
        return fault;
    const JsonNode* node = JsonNode::of(tree);
    if (!node)
        return count(tree) == 0 ? fault : "an empty tree that counts entries";
    Json counted = tree;
    recount(counted);
    if (counted.m_wide.count != count(tree))
        return "a wrong count";
    faultBelow(*node, true, fault);
    return fault;
}

} // namespace vantrel
