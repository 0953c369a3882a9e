#pragma once

#include "tarn/json/json.h"
#include "tarn/media/enumtext.h"

#include <span>
#include <string>
#include <string_view>

namespace vantrel::recordrules {

/// The longest time that a record may hold, in seconds: far above any media, far below what nanoseconds can
/// count.
inline constexpr double maxSeconds = 1e7;

/// The longest name or URL that a record may hold, in bytes: a path of the longest kind with every byte of it
/// escaped.
inline constexpr std::size_t maxText = 16 * 1024;

/// How many levels of objects and arrays a member without a rule may hold: more than any record has use for,
/// and few enough that what a library is written into, be it a journal or a show, can be read again.
inline constexpr int maxLevels = 64;

/// What one member of a record must be.
struct Rule
{
    std::string_view key;
    bool (*valid)(const Json& value);
};

bool isText(const Json& value);
bool isFlag(const Json& value);
bool isSeconds(const Json& value); // 0 to maxSeconds
bool isSecondsOrNull(const Json& value);

template <typename Enum>
bool isEnum(const Json& value)
{
    Enum out{};
    return value.isString() && fromStr(value.stringView(), out);
}

/// Checks every member of a record against its rule and fills in what is missing from the prototype, so that
/// a whole record keeps its node. A member without a rule is of a later version: it stays in the record.
/// False, with the record as it was, on a value against its rule or with too many levels.
bool check(Json& record, std::span<const Rule> rules, const Json& prototype, std::string* error);

/// A canonical decimal index from min to max; false on anything else, also on a leading zero.
bool parseIndex(std::string_view text, int min, int max, int& out);

/// Sets the error text, where one is wanted; always false.
bool fail(std::string* error, std::string message);

} // namespace vantrel::recordrules
