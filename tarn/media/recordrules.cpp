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
    if (known != record.size()) {
        std::string unknown;
        record.forEachMember([&](std::string_view key, const Json&) {
            const bool found = std::ranges::any_of(rules, [&](const Rule& rule) { return rule.key == key; });
            if (!found)
                unknown = key;
            return found;
        });
        return fail(error, "unknown member \"" + unknown + "\"");
    }
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
