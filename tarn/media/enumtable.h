#pragma once

#include "tarn/log/log.h"
#include "tarn/media/enumtext.h"

#include <algorithm>
#include <span>

/// The tables of texts that stand behind toStr and fromStr; for the files that define an enumeration's texts.
namespace vantrel::enumtable {

template <typename T>
struct Row
{
    T value;
    const char* text;
};

/// The texts of an enumeration. The first row is what an unknown value falls back to.
template <typename T>
constexpr std::span<const Row<T>> table();

template <typename T>
const Row<T>& fallback(const char* function)
{
    const Row<T>& row = table<T>().front();
    Log::write_fmt(LogLevel::Warning, {"enums", function}, "enums",
                   "Missing enum mapping. Defaulting to '%s'", row.text);
    return row;
}

template <typename T>
const char* textOf(T value)
{
    const auto rows = table<T>();
    const auto row = std::ranges::find(rows, value, &Row<T>::value);
    return row != rows.end() ? row->text : fallback<T>("toStr").text;
}

} // namespace vantrel::enumtable

namespace vantrel {

template <typename T>
bool fromStr(std::string_view text, T& out)
{
    using namespace enumtable;
    const auto rows = table<T>();
    const auto row = std::ranges::find_if(rows, [&](const Row<T>& r) { return text == r.text; });
    if (row == rows.end())
        return false;
    out = row->value;
    return true;
}

template <typename T>
T enumFromText(std::string_view text)
{
    T value{};
    return fromStr(text, value) ? value : enumtable::fallback<T>("fromStr").value;
}

template <typename T>
T enumFromNumber(std::int64_t number)
{
    using namespace enumtable;
    const auto rows = table<T>();
    const auto row = std::ranges::find_if(
        rows, [&](const Row<T>& r) { return number == static_cast<std::int64_t>(r.value); });
    return row != rows.end() ? row->value : fallback<T>("fromStr").value;
}

} // namespace vantrel

/// Makes toStr, fromStr and their like of an enumeration from its rows, which stand above.
#define TARN_ENUM_TEXT(Enum, rows)                                                                           \
    template <>                                                                                              \
    constexpr std::span<const enumtable::Row<Enum>> enumtable::table()                                       \
    {                                                                                                        \
        return rows;                                                                                         \
    }                                                                                                        \
    const char* toStr(Enum value)                                                                            \
    {                                                                                                        \
        return enumtable::textOf(value);                                                                     \
    }                                                                                                        \
    template bool fromStr<Enum>(std::string_view, Enum&);                                                    \
    template Enum enumFromText<Enum>(std::string_view);                                                      \
    template Enum enumFromNumber<Enum>(std::int64_t);
