#pragma once

#include "tarn/json/patch.h"

#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace vantrel {

/// What a patch was made on: the values that its document held at the patch's paths. Where another document
/// holds the same there, the patch means what it meant; where it does not, somebody else was there first.
/// Holding one costs no copies: values are shared with the document.
class PatchBase
{
public:
    PatchBase() = default; // of no patch: holds everywhere
    /// unminded: names of members that nobody writes by hand; wherever they stand, their values may differ.
    /// Must outlive this.
    /// widened: what of the document an operation's path stands for, that path or one that leads to it.
    PatchBase(const Json& document, const Patch& patch, std::span<const std::string_view> unminded = {},
              const std::function<PathView(PathView)>& widened = {});

    bool empty() const noexcept { return m_places.empty(); }
    bool holds(const Json& document) const;
    /// Whether a patch writes at, above or below a place where the document differs from this base: it would
    /// overwrite what somebody else did. isKept: whether what stands at such a place is there afterwards all
    /// the same.
    bool conflicts(const Json& document, const Patch& patch,
                   const std::function<bool(const Path&)>& isKept = {}) const;

private:
    struct Place
    {
        Path path;
        std::optional<Json> value; // nothing: there was nothing
    };
    class Reading;
    void add(Reading& reading, PathView path);
    bool holdsAt(const Json& document, const Place& place) const;
    bool isUnminded(std::string_view name) const;
    bool isSame(const Json& a, const Json& b) const;

    std::vector<Place> m_places;
    std::span<const std::string_view> m_unminded;
};

} // namespace vantrel
