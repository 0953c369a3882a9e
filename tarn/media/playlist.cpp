#include "tarn/media/playlist.h"

#include "tarn/media/recordrules.h"

#include <iterator>

namespace vantrel {

namespace {

using namespace recordrules;

constexpr Rule playlistRules[] = {
    {"entries", [](const Json& value) { return value.isObject(); }},
    {"name", isText},
};

const Json& playlistPrototype()
{
    static const Json prototype = Json::object({{"entries", Json::object()}, {"name", ""}});
    return prototype;
}

} // namespace

Playlist::Playlist(const std::string& name)
    : m_json(playlistPrototype())
{
    if (!name.empty())
        setName(name);
}

bool Playlist::parseJson(const Json& json, std::string* error)
{
    Json whole = json;
    if (!check(whole, playlistRules, playlistPrototype(), error))
        return false;
    PlaylistEntryMap entries;
    std::string reason;
    const Json members = whole.get("entries");
    members.forEachMember([&](std::string_view key, const Json& value) {
        EntryAddress address;
        if (!address.parseString(key) || address.toString(true) != key) {
            reason = "\"" + std::string(key) + "\" is no entry address";
            return false;
        }
        const PlaylistEntry* present = m_entries.get(address);
        PlaylistEntry entry;
        if (present && present->toJson().sameNode(value)) {
            entry = *present;
        } else if (!entry.parseJson(value, &reason)) {
            reason = "entry " + std::string(key) + ": " + reason;
            return false;
        }
        entries.set(address, entry);
        return true;
    });
    if (!reason.empty())
        return fail(error, reason);
    entries.rebaseJson(members);
    m_json = whole;
    m_entries = std::move(entries);
    return true;
}

const Json& Playlist::toJson() const
{
    m_json.set("entries", m_entries.toJson());
    return m_json;
}

std::string Playlist::getName() const
{
    return m_json.get("name").asString();
}

void Playlist::setName(const std::string& name)
{
    m_json.set("name", name);
}

bool Playlist::addEntry(const EntryAddress& address, const PlaylistEntry& entry)
{
    return !hasEntry(address) && replaceEntry(address, entry);
}

bool Playlist::replaceEntry(const EntryAddress& address, const PlaylistEntry& entry)
{
    if (!address.isValid())
        return false;
    m_entries.set(address, entry);
    return true;
}

bool Playlist::moveEntry(const EntryAddress& from, const EntryAddress& to)
{
    const PlaylistEntry* entry = m_entries.get(from);
    if (!entry || !addEntry(to, PlaylistEntry(*entry)))
        return false;
    return m_entries.erase(from);
}

EntryNumberingPlan Playlist::pickAppendingNumberingPlan() const
{
    const EntryAddress last = m_entries.empty() ? EntryAddress() : std::prev(m_entries.end())->first;
    return EntryNumberingPlan::between(last, EntryAddress(), 1);
}

EntryNumberingPlan Playlist::pickAppendingNumberingPlan(const EntryAddress& after, int count) const
{
    auto next = m_entries.lower_bound(after);
    if (next != m_entries.end() && next->first == after)
        ++next;
    return EntryNumberingPlan::between(after, next == m_entries.end() ? EntryAddress() : next->first, count);
}

EntryNumberingPlan Playlist::pickPrependingNumberingPlan(const EntryAddress& before, int count) const
{
    const auto at = m_entries.lower_bound(before);
    const EntryAddress previous = at == m_entries.begin() ? EntryAddress() : std::prev(at)->first;
    return EntryNumberingPlan::between(previous, before, count);
}

} // namespace vantrel
