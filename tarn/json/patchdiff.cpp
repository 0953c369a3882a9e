#include "tarn/json/jsoncursor.h"
#include "tarn/json/jsonname.h"
#include "tarn/json/patch.h"

#include <algorithm>
#include <vector>

namespace vantrel {

namespace {

using Direction = JsonCursor::Direction;

/// Walks two versions of a document side by side and writes both patches. Operations on different members,
/// and on array items in the order of this walk, do not disturb each other, so that both patches apply in one
/// order.
class Difference
{
public:
    Difference(Patch& redo, Patch* undo)
        : m_redo(redo)
        , m_undo(undo)
    {
    }

    void values(const Json& from, const Json& to)
    {
        if (from.sameNode(to))
            return;
        if (from.isObject() && to.isObject())
            objects(from, to);
        else if (from.isArray() && to.isArray())
            arrays(from, to);
        else if (!(from == to))
            replace(from, to);
    }

private:
    struct Step
    {
        const Json* key; // null for an index
        std::size_t index;
    };

    void objects(const Json& from, const Json& to)
    {
        JsonCursor a(from);
        JsonCursor b(to);
        while (!a.atEnd() || !b.atEnd()) {
            if (b.atEnd())
                one(a, PatchOpType::Remove);
            else if (a.atEnd())
                one(b, PatchOpType::Add);
            else
                both(a, b);
        }
    }

    /// One step while both have more.
    void both(JsonCursor& a, JsonCursor& b)
    {
        const unsigned high = a.height();
        const unsigned other = b.height();
        if (sameSubtree(a, b)) {
            a.advance();
            b.advance();
            return;
        }
        // A member that stands before all of an unopened subtree needs no look into it.
        const int order = high > 0 && other > 0 ? 0 : JsonName::compare(a.key(), b.key());
        if (high == 0 && order < 0) {
            one(a, PatchOpType::Remove);
        } else if (other == 0 && order > 0) {
            one(b, PatchOpType::Add);
        } else if (high == 0 && other == 0) {
            m_path.push_back({&a.key(), 0});
            values(a.value(), b.value());
            m_path.pop_back();
            a.advance();
            b.advance();
        } else {
            openHigher(a, b);
        }
    }

    /// A member that only one side has, or the way to it.
    void one(JsonCursor& cursor, PatchOpType type)
    {
        if (cursor.height() > 0) {
            cursor.open();
            return;
        }
        const bool added = type == PatchOpType::Add;
        m_path.push_back({&cursor.key(), 0});
        emit(m_redo, type, added ? cursor.value() : Json());
        if (m_undo)
            emit(*m_undo, added ? PatchOpType::Remove : PatchOpType::Add, added ? Json() : cursor.value());
        m_path.pop_back();
        cursor.advance();
    }

    void replace(const Json& from, const Json& to)
    {
        emit(m_redo, PatchOpType::Replace, to);
        if (m_undo)
            emit(*m_undo, PatchOpType::Replace, from);
    }

    void arrays(const Json& from, const Json& to)
    {
        const std::size_t common = std::min(from.size(), to.size());
        const bool sameSize = from.size() == to.size();
        const std::size_t prefix = sameSize ? 0 : equalItems(from, to, Direction::Forward, common);
        const std::size_t suffix = sameSize ? 0 : equalItems(from, to, Direction::Backward, common - prefix);
        pairs(from, to, prefix, common - suffix);
        // What one side has more of stands between the pairs and the suffix. Removals go from its end, and
        // what they undo comes back at its start, last item first.
        const std::size_t start = common - suffix;
        for (std::size_t end = from.size() - suffix; end > start; --end)
            surplus(*from.at(end - 1), PatchOpType::Remove, end - 1, start);
        for (std::size_t i = start, end = to.size() - suffix; i < to.size() - suffix; ++i, --end)
            surplus(*to.at(i), PatchOpType::Add, i, end - 1);
    }

    /// How many items, up to most, are equal from one end.
    static std::size_t equalItems(const Json& from, const Json& to, Direction direction, std::size_t most)
    {
        JsonCursor a(from, direction);
        JsonCursor b(to, direction);
        std::size_t count = 0;
        while (count < most && !a.atEnd() && !b.atEnd()) {
            const bool items = a.height() == 0 && b.height() == 0;
            if (items && !(a.value() == b.value()))
                break;
            if (items || sameSubtree(a, b)) {
                count += items ? 1 : a.value().size();
                a.advance();
                b.advance();
            } else {
                openHigher(a, b);
            }
        }
        return std::min(count, most);
    }

    /// The items of both at the positions from first up to last.
    void pairs(const Json& from, const Json& to, std::size_t first, std::size_t last)
    {
        JsonCursor a(from);
        JsonCursor b(to);
        for (std::size_t index = 0; index < last && !a.atEnd() && !b.atEnd();) {
            const bool items = a.height() == 0 && b.height() == 0;
            const std::size_t size = items ? 1 : a.value().size();
            const bool before = a.height() == b.height() && size == b.value().size() && index + size <= first;
            if (items && index >= first) {
                m_path.push_back({nullptr, index});
                values(a.value(), b.value());
                m_path.pop_back();
            } else if (!items && !before && !sameSubtree(a, b)) {
                openHigher(a, b);
                continue;
            }
            a.advance();
            b.advance();
            index += size;
        }
    }

    void surplus(const Json& item, PatchOpType type, std::size_t redoIndex, std::size_t undoIndex)
    {
        const bool added = type == PatchOpType::Add;
        m_path.push_back({nullptr, redoIndex});
        emit(m_redo, type, added ? item : Json());
        m_path.back().index = undoIndex;
        if (m_undo)
            emit(*m_undo, added ? PatchOpType::Remove : PatchOpType::Add, added ? Json() : item);
        m_path.pop_back();
    }

    static bool sameSubtree(const JsonCursor& a, const JsonCursor& b) noexcept
    {
        return a.height() > 0 && a.height() == b.height() &&
               JsonNode::of(a.value()) == JsonNode::of(b.value());
    }

    static void openHigher(JsonCursor& a, JsonCursor& b) noexcept
    {
        const unsigned high = a.height();
        const unsigned other = b.height();
        if (high >= other)
            a.open();
        if (other >= high)
            b.open();
    }

    void emit(Patch& patch, PatchOpType type, const Json& value) const
    {
        PatchOp op;
        op.op = type;
        op.value = value;
        op.path.reserve(m_path.size());
        for (const Step& step : m_path)
            op.path.append(step.key ? std::string(step.key->stringView()) : std::to_string(step.index));
        patch.append(std::move(op));
    }

    Patch& m_redo;
    Patch* m_undo;
    std::vector<Step> m_path; // made into a Path only where an operation is written
};

} // namespace

void Patch::diff(const Json& from, const Json& to, Patch& out)
{
    Difference(out, nullptr).values(from, to);
}

void Patch::diff(const Json& from, const Json& to, Patch& redo, Patch& undo)
{
    Difference(redo, &undo).values(from, to);
}

} // namespace vantrel
