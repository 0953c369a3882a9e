#pragma once

#include "tarn/json/json.h"

#include <string_view>

namespace vantrel {

/// What a record of the library holds beside the members that this version knows; null without any.
template <typename Record>
Json otherMembersOf(const Record& record)
{
    const Record known;
    Json others = record.toJson();
    if (others.size() == known.toJson().size())
        return {};
    known.toJson().forEachMember([&others](std::string_view key, const Json&) { others.erase(key); });
    return others;
}

/// The record with such members beside its own.
template <typename Record>
Record withOtherMembers(const Record& record, Json others)
{
    if (!others.isObject())
        return record;
    record.toJson().forEachMember(
        [&others](std::string_view key, const Json& value) { others.set(key, value); });
    Record whole;
    return whole.parseJson(others) ? whole : record;
}

} // namespace vantrel
