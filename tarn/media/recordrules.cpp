#include "tarn/media/recordrules.h"

#include <algorithm>
#include <charconv>

namespace vantrel::recordrules {

namespace {

/// The value as a message may quote it.
std::string quoted(const Json& value)
{
    constexpr std::size_t most = 200;
    std::string text = value.toString();
    if (text.size() > most) {
        text.resize(most);
        while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80)
            text.pop_back(); // no half character
        if (!text.empty() && static_cast<unsigned char>(text.back()) >= 0xC0)
            text.pop_back();
        text += "...";
    }
    return text;
}

bool isContainer(const Json& value)
{
    return value.isObject() || value.isArray();
}

bool isWithinLevels(const Json& value, int levels)
{
    if (!isContainer(value))
        return true;
    if (levels == 0)
        return false;
    bool good = true;
    const auto below = [&good, levels](const Json& item) {
        good = isWithinLevels(item, levels - 1);
        return good;
    };
    if (value.isObject())
        value.forEachMember([&below](std::string_view, const Json& item) { return below(item); });
    else
        value.forEachItem(below);
    return good;
}

/// The members that no rule is about; most hold no container, and cost no search.
bool checkOthers(const Json& record, std::span<const Rule> rules, std::string* error)
{
    bool good = true;
    record.forEachMember([&](std::string_view key, const Json& value) {
        if (!isContainer(value) || std::ranges::find(rules, key, &Rule::key) != rules.end())
            return true;
        good = isWithinLevels(value, maxLevels);
        return good || fail(error, quoted(Json(key)) + " has too many levels");
    });
    return good;
}

} // namespace

bool isText(const Json& value)
{
    return value.isString() && value.stringView().size() <= maxText;
}

bool isFlag(const Json& value)
{
    return value.type() == JsonType::Bool;
}

bool isSeconds(const Json& value)
{
    return value.isNumber() && value.asDouble(-1) >= 0 && value.asDouble(-1) <= maxSeconds;
}

bool isSecondsOrNull(const Json& value)
{
    return value.isNull() || isSeconds(value);
}

bool check(Json& record, std::span<const Rule> rules, const Json& prototype, std::string* error)
{
    if (!record.isObject())
        return fail(error, "a record must be an object");
    std::size_t known = 0;
    for (const Rule& rule : rules) {
        const Json* value = record.find(rule.key);
        if (!value)
            continue;
        ++known;
        if (!rule.valid(*value))
            return fail(error,
                        "\"" + std::string(rule.key) + "\" does not allow the value " + quoted(*value));
    }
    if (known != record.size() && !checkOthers(record, rules, error))
        return false;
    if (known != rules.size()) {
        for (const Rule& rule : rules) {
            if (!record.find(rule.key))
                record.set(rule.key, prototype.get(rule.key));
        }
    }
    return true;
}

bool parseIndex(std::string_view text, int min, int max, int& out)
{
    int value = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (code != std::errc() || end != text.data() + text.size() || value < min || value > max)
        return false;
    if (text.front() == '-' || (text.size() > 1 && text.front() == '0'))
        return false;
    out = value;
    return true;
}

bool fail(std::string* error, std::string message)
{
    if (error)
        *error = std::move(message);
    return false;
}

} // namespace vantrel::recordrules
