#include "tarn/media/numberfields.h"

#include "tarn/media/imagesequenceformat.h"

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

// Not those of the C locale: names are bytes.
bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isLetter(char c)
{
    return lowered(c) >= 'a' && lowered(c) <= 'z';
}

bool equalsLowered(std::string_view text, std::string_view small)
{
    return std::ranges::equal(text, small, {}, lowered);
}

/// The letters that stand right before a field.
std::string_view wordBefore(std::string_view name, const NumberField& field)
{
    std::size_t start = field.start;
    while (start > 0 && isLetter(name[start - 1]))
        --start;
    return name.substr(start, field.start - start);
}

bool isVersionWord(std::string_view word)
{
    constexpr std::array<std::string_view, 4> words{"v", "ver", "version", "rev"};
    return std::ranges::any_of(words, [word](std::string_view one) { return equalsLowered(word, one); });
}

bool isTile(std::string_view name, const NumberField& before, const NumberField& field)
{
    constexpr std::array<std::string_view, 3> pairs{"xy", "uv", "rc"};
    return std::ranges::any_of(pairs, [&](std::string_view pair) {
        return equalsLowered(wordBefore(name, field), pair.substr(1)) &&
               equalsLowered(wordBefore(name, before), pair.substr(0, 1));
    });
}

bool isBelowZero(std::string_view name, const NumberField& field)
{
    if (field.start == 0 || name[field.start - 1] != '-')
        return false;
    const char before = field.start > 1 ? name[field.start - 2] : '.';
    return before == '.' || before == '_' || before == '-';
}

bool isHeight(std::string_view name, const NumberField& field)
{
    return field.start > 1 && lowered(name[field.start - 1]) == 'x' && isDigit(name[field.start - 2]);
}

bool isDay(std::uint64_t year, std::uint64_t month, std::uint64_t day)
{
    return year >= 1900 && year < 2100 && month >= 1 && month <= 12 && day >= 1 && day <= 31;
}

bool isDay(WrittenNumber number) // 20240131
{
    const std::uint64_t value = number.value();
    return number.digits() == 8 && isDay(value / 10000, value / 100 % 100, value % 100);
}

/// 101500 behind a day, which no camera takes shortly after midnight: 000001 is a picture's number.
bool isTimeOfDay(WrittenNumber number)
{
    const std::uint64_t value = number.value();
    return number.digits() == 6 && value >= 10000 && value < 240000 && value / 100 % 100 < 60 &&
           value % 100 < 60;
}

bool isDayOrTime(std::span<const NumberPlace> places, std::span<const WrittenNumber> numbers,
                 std::size_t which)
{
    const NumberPlace& place = places[which];
    if (isDay(numbers[which]))
        return true;
    if (place.joint != 0 && isDay(numbers[which - 1]))
        return isTimeOfDay(numbers[which]);
    return (place.joint == '-' || place.joint == '_') &&
           places[which - 1].joint == place.joint && // 2024-01-31
           numbers[which - 2].digits() == 4 && numbers[which - 1].digits() == 2 &&
           numbers[which].digits() == 2 &&
           isDay(numbers[which - 2].value(), numbers[which - 1].value(), numbers[which].value());
}

} // namespace

WrittenNumber::WrittenNumber(std::string_view digits)
{
    std::uint64_t value = 0;
    for (const char c : digits)
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
    m_code = value << 5 | digits.size();
}

std::string WrittenNumber::text() const
{
    const std::string digits = std::to_string(value());
    return std::string(this->digits() - digits.size(), '0') + digits;
}

void findNumberFields(std::string_view name, std::vector<NumberField>& result)
{
    result.clear();
    const std::size_t end = std::min(name.rfind('.'), name.size());
    for (std::size_t at = 0; at < end;) {
        const std::size_t start = at;
        while (at < end && isDigit(name[at]))
            ++at;
        if (at == start)
            ++at;
        else if (at - start <= WrittenNumber::maxDigits)
            result.push_back({start, at - start});
    }
}

bool beginsWithSuffix(std::string_view text)
{
    return text.size() > 1 && text[0] == '.' && (isLetter(text[1]) || isDigit(text[1]) || text[1] == '_');
}

std::vector<NumberPlace> findNumberPlaces(std::string_view name, const std::vector<NumberField>& fields)
{
    std::vector<NumberPlace> places;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const NumberField& field = fields[i];
        const bool isSecond = i > 0 && isTile(name, fields[i - 1], field);
        places.push_back({beginsWithSuffix(name.substr(field.end())) && !isBelowZero(name, field) &&
                              !isHeight(name, field) && !isSecond,
                          isVersionWord(wordBefore(name, field)),
                          i > 0 && field.start == fields[i - 1].end() + 1 ? name[field.start - 1] : '\0'});
    }
    return places;
}

bool mayCountPictures(std::span<const NumberPlace> places, std::span<const WrittenNumber> numbers,
                      std::size_t which)
{
    constexpr std::size_t longestVersion = 3; // "v0001" is a picture
    const std::size_t digits = numbers[which].digits();
    return places[which].isOpen && digits <= std::size_t(ImageSequenceFormat::maxWidth) &&
           !(places[which].isVersion && digits <= longestVersion) && !isDayOrTime(places, numbers, which);
}

} // namespace vantrel
