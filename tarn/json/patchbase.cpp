#include "tarn/json/patchbase.h"

#include <algorithm>

namespace vantrel {

namespace {

const Json* find(const Json& document, const Path& path)
{
    const Json* node = &document;
    for (const PathElement& element : path) {
        long long index = 0;
        if (node->isObject())
            node = node->find(element.text());
        else if (node->isArray() && element.parseIndex(&index))
            node = node->at(static_cast<std::size_t>(index));
        else
            return nullptr;
        if (!node)
            return nullptr;
    }
    return node;
}

bool holdsAt(const Json& document, const Path& path, const std::optional<Json>& value)
{
    const Json* const now = find(document, path);
    return now ? value && *now == *value : !value;
}

/// Whether one path is the other one or leads to it.
bool overlap(const Path& a, const Path& b)
{
    const std::size_t common = std::min(a.size(), b.size());
    return std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(common), b.begin());
}

bool readsFrom(const PatchOp& op)
{
    return op.op == PatchOpType::Move || op.op == PatchOpType::Copy;
}

} // namespace

PatchBase::PatchBase(const Json& document, const Patch& patch)
{
    for (const PatchOp& op : patch) {
        add(document, op.path);
        if (readsFrom(op))
            add(document, op.from);
    }
}

void PatchBase::add(const Json& document, const Path& path)
{
    const Json* const value = find(document, path);
    m_places.push_back({path, value ? std::optional(*value) : std::nullopt});
}

bool PatchBase::holds(const Json& document) const
{
    return std::ranges::all_of(
        m_places, [&](const Place& place) { return holdsAt(document, place.path, place.value); });
}

bool PatchBase::conflicts(const Json& document, const Patch& patch) const
{
    return std::ranges::any_of(m_places, [&](const Place& place) {
        return !holdsAt(document, place.path, place.value) &&
               std::any_of(patch.begin(), patch.end(),
                           [&](const PatchOp& op) { return overlap(op.path, place.path); });
    });
}

} // namespace vantrel
