#pragma once

#include "tarn/json/jsoncounters.h"
#include "tarn/json/jsonnode.h"

namespace vantrel {

/// A place in the tree of an object or array that opens nodes as late as it can: it stands on a member (or
/// item), or on a whole subtree that nobody has looked into yet. Two cursors on versions of one container
/// pass over what both share in one step. The container must outlive it unchanged.
class JsonCursor
{
public:
    enum class Direction { Forward, Backward };

    explicit JsonCursor(const Json& container, Direction direction = Direction::Forward) noexcept
        : m_backward(direction == Direction::Backward)
    {
        if (const JsonNode* root = JsonNode::of(container))
            push(root);
    }

    bool atEnd() const noexcept { return m_depth == 0; }
    /// 0 on a member or item, otherwise one more than the level of the subtree's root.
    unsigned height() const noexcept { return top().node->level; }
    /// The member's name; on a subtree the first name in it.
    const Json& key() const noexcept { return top().node->key(top().index); }
    const Json& value() const noexcept { return top().node->value(top().index); }

    /// Goes into the subtree.
    void open() noexcept { push(JsonNode::of(value())); }

    /// Passes over the member, item or subtree.
    void advance() noexcept
    {
        while (m_depth > 0) {
            Frame& frame = m_frames[m_depth - 1];
            if (m_backward ? frame.index > 0 : frame.index + 1u < frame.node->count) {
                frame.index += m_backward ? -1 : 1;
                return;
            }
            --m_depth;
        }
    }

    /// For two cursors that have passed as many entries: goes to the next entry that is not in a subtree that
    /// both hold; false at the end.
    static bool skipShared(JsonCursor& a, JsonCursor& b) noexcept
    {
        while (!a.atEnd() && !b.atEnd()) {
            const unsigned high = a.height();
            const unsigned other = b.height();
            if (high == 0 && other == 0)
                return true;
            if (high == other && JsonNode::of(a.value()) == JsonNode::of(b.value())) {
                a.advance();
                b.advance();
                continue;
            }
            if (high >= other)
                a.open();
            if (other >= high)
                b.open();
        }
        return false;
    }

private:
    struct Frame
    {
        const JsonNode* node;
        unsigned index;
    };

    const Frame& top() const noexcept { return m_frames[m_depth - 1]; }
    void push(const JsonNode* node) noexcept
    {
        JsonCounters::visited();
        m_frames[m_depth++] = {node, m_backward ? node->count - 1u : 0u};
    }

    Frame m_frames[JsonNode::maxHeight];
    unsigned m_depth = 0;
    bool m_backward;
};

} // namespace vantrel
