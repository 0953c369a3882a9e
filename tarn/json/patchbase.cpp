#include "tarn/json/patchbase.h"

#include <algorithm>

namespace vantrel {

namespace {

const Json* childOf(const Json& node, const PathElement& element)
{
    long long index = 0;
    if (node.isObject())
        return node.find(element.text());
    return node.isArray() && element.parseIndex(&index) ? node.at(static_cast<std::size_t>(index)) : nullptr;
}

const Json* find(const Json& document, PathView path)
{
    const Json* node = &document;
    for (const PathElement& element : path) {
        node = childOf(*node, element);
        if (!node)
            return nullptr;
    }
    return node;
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

/// Looks up place after place, of which most stand in one container.
class PatchBase::Reading
{
public:
    explicit Reading(const Json& document)
        : m_document(document)
    {
    }

    const Json* find(PathView path)
    {
        if (path.empty())
            return &m_document;
        const PathView above = path.first(path.size() - 1);
        if (!m_container || !(m_above == above)) {
            m_container = vantrel::find(m_document, above);
            m_above = above;
        }
        return m_container ? childOf(*m_container, path.back()) : nullptr;
    }

private:
    const Json& m_document;
    PathView m_above; // of a path of the patch
    const Json* m_container = nullptr;
};

PatchBase::PatchBase(const Json& document, const Patch& patch, std::span<const std::string_view> unminded,
                     const std::function<PathView(PathView)>& widened)
    : m_unminded(unminded)
{
    const auto wide = [&](PathView path) { return widened ? widened(path) : path; };
    Reading reading(document);
    m_places.reserve(patch.size());
    for (const PatchOp& op : patch) {
        add(reading, wide(op.path));
        if (readsFrom(op))
            add(reading, wide(op.from));
    }
}

void PatchBase::add(Reading& reading, PathView path)
{
    if (!m_places.empty() && m_places.back().path == path)
        return; // several members of one record
    const Json* const value = reading.find(path);
    m_places.push_back({path.toPath(), value ? std::optional(*value) : std::nullopt});
}

bool PatchBase::isUnminded(std::string_view name) const
{
    return std::ranges::find(m_unminded, name) != m_unminded.end();
}

bool PatchBase::isSame(const Json& a, const Json& b) const
{
    if (a == b)
        return true;
    if (m_unminded.empty() || a.size() != b.size())
        return false;
    if (a.isObject() && b.isObject()) {
        bool same = true;
        a.forEachMember([&](std::string_view name, const Json& value) {
            const Json* const other = b.find(name);
            same = other && (isUnminded(name) || isSame(value, *other));
            return same;
        });
        return same;
    }
    if (!a.isArray() || !b.isArray())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!isSame(*a.at(i), *b.at(i)))
            return false;
    }
    return true;
}

bool PatchBase::holdsAt(const Json& document, const Place& place) const
{
    if (!place.path.empty() && isUnminded(place.path.back().text()))
        return true;
    const Json* const now = find(document, place.path);
    return now ? place.value && isSame(*place.value, *now) : !place.value;
}

bool PatchBase::holds(const Json& document) const
{
    return std::ranges::all_of(m_places, [&](const Place& place) { return holdsAt(document, place); });
}

bool PatchBase::conflicts(const Json& document, const Patch& patch,
                          const std::function<bool(const Path&)>& isKept) const
{
    return std::ranges::any_of(m_places, [&](const Place& place) {
        const auto touches = [&](const PatchOp& op) { return overlap(op.path, place.path); };
        return !holdsAt(document, place) && std::any_of(patch.begin(), patch.end(), touches) &&
               !(isKept && isKept(place.path));
    });
}

} // namespace vantrel
