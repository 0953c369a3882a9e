#include "ombra/show/showdifference.h"

#include "tarn/json/patch.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>

namespace vantrel::ombra {

namespace {

constexpr std::array foundByServer = {std::string_view("isPlayable"), std::string_view("mediaDuration"),
                                      std::string_view("type")};

/// Where a player stands is what a show night does, and no work on the show.
bool happens(std::string_view setting)
{
    constexpr std::array ends = {std::string_view("/properties/media"), std::string_view("/properties/state"),
                                 std::string_view("/properties/mediaPosition")};
    return std::ranges::any_of(ends, [&](std::string_view end) { return setting.ends_with(end); });
}

bool isSameRecord(const Json& here, const Json& other)
{
    if (here == other)
        return true;
    Json mine = here;
    for (const std::string_view member : foundByServer) {
        const Json* theirs = other.find(member);
        if (theirs && mine.find(member))
            mine.set(member, *theirs);
    }
    return mine == other;
}

/// Whether all is the same but what these members hold.
bool isSameBeside(std::initializer_list<std::string_view> members, Json here, Json other)
{
    for (const std::string_view member : members) {
        here.erase(member);
        other.erase(member);
    }
    return here == other || here.size() + other.size() == 0; // no library at all holds nothing beside
}

/// Calls f(here or null, other or null) for each name of either side; a false from it ends the walk.
template <typename F>
void forEachPair(const Json& here, const Json& other, F f)
{
    bool goesOn = true;
    here.forEachMember(
        [&](std::string_view name, const Json& mine) { return goesOn = f(&mine, other.find(name)); });
    if (!goesOn)
        return;
    other.forEachMember(
        [&](std::string_view name, const Json& theirs) { return here.find(name) || f(nullptr, &theirs); });
}

Json countJson(const ShowDifference::Count& count)
{
    return Json::object({{"added", count.added}, {"changed", count.changed}, {"removed", count.removed}});
}

} // namespace

ShowContents ShowContents::of(const Json& library)
{
    ShowContents contents;
    const auto count = [&library](const char* groups, const char* records, std::size_t& outer,
                                  std::size_t& inner) {
        const Json all = library.get(groups);
        outer = all.size();
        all.forEachMember([&](std::string_view, const Json& group) {
            const Json* members = group.find(records);
            inner += members ? members->size() : 0;
        });
    };
    count("collections", "slots", contents.collections, contents.slots);
    count("playlists", "entries", contents.playlists, contents.entries);
    return contents;
}

Json ShowContents::toJson() const
{
    return Json::object(
        {{"collections", collections}, {"entries", entries}, {"playlists", playlists}, {"slots", slots}});
}

ShowDifference::ShowDifference(const Json& library, const Json& otherLibrary, const Json& settings,
                               const Json& otherSettings, bool onlyWhether)
    : m_isOtherBeside(!isSameBeside({"collections", "playlists"}, library, otherLibrary))
    , m_onlyWhether(onlyWhether)
{
    compareSettings(settings, otherSettings);
    compareGroups(library.get("collections"), otherLibrary.get("collections"), "slots", m_collections,
                  m_slots);
    compareGroups(library.get("playlists"), otherLibrary.get("playlists"), "entries", m_playlists, m_entries);
}

void ShowDifference::compareGroups(const Json& here, const Json& other, const char* records, Count& groups,
                                   Count& inside)
{
    if (here.sameNode(other) || isDone())
        return;
    forEachPair(here, other, [&](const Json* mine, const Json* theirs) {
        if (!mine || !theirs)
            ++(mine ? groups.removed : groups.added);
        else if (mine->sameNode(*theirs))
            return true;
        else if (!isSameBeside({records}, *mine, *theirs))
            ++groups.changed;
        compareRecords(mine ? mine->get(records) : Json(), theirs ? theirs->get(records) : Json(), inside);
        return !isDone();
    });
}

void ShowDifference::compareRecords(const Json& here, const Json& other, Count& count)
{
    if (here.sameNode(other) || isDone())
        return;
    forEachPair(here, other, [&](const Json* mine, const Json* theirs) {
        if (!mine || !theirs)
            ++(mine ? count.removed : count.added);
        else if (!isSameRecord(*mine, *theirs))
            ++count.changed;
        return !isDone();
    });
}

/// Only what both have: what one of them does not say, it does not set.
void ShowDifference::compareSettings(const Json& here, const Json& other)
{
    other.forEachMember([&](std::string_view path, const Json& theirs) {
        const Json* mine = here.find(path);
        if (mine && !happens(path) && !(*mine == theirs))
            ++m_settings;
        return !isDone();
    });
}

bool ShowDifference::isAny() const
{
    const auto isAnyOf = [](const Count& count) { return count.added + count.removed + count.changed > 0; };
    return m_isOtherBeside || m_settings > 0 ||
           std::ranges::any_of(std::array{m_collections, m_slots, m_playlists, m_entries}, isAnyOf);
}

Json ShowDifference::toJson() const
{
    return Json::object({{"collections", countJson(m_collections)},
                         {"entries", countJson(m_entries)},
                         {"playlists", countJson(m_playlists)},
                         {"settings", m_settings},
                         {"slots", countJson(m_slots)}});
}

Json sharing(const Json& present, const Json& value)
{
    Patch difference;
    Patch::diff(present, value, difference);
    Json shared = present;
    return difference.apply(shared) ? shared : value;
}

} // namespace vantrel::ombra
