#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// A number as it is written, with the zeros in front of it: 7, 07 and 007 are three. Takes 17 digits.
class WrittenNumber
{
public:
    static constexpr std::size_t maxDigits = 17;

    WrittenNumber() = default;
    explicit WrittenNumber(std::string_view digits);

    std::uint64_t value() const noexcept { return m_code >> 5; }
    std::size_t digits() const noexcept { return m_code & 31; }
    std::string text() const;

    friend bool operator==(WrittenNumber, WrittenNumber) = default;

private:
    std::uint64_t m_code = 0;
};

/// Where in the name of a file a number stands.
struct NumberField
{
    std::size_t start = 0;
    std::size_t length = 0;
    std::size_t end() const noexcept { return start + length; }
};

/// Those of a name without its folder, in order. The last suffix holds none (".jp2"), and what is longer than
/// a WrittenNumber is none. The result is replaced.
void findNumberFields(std::string_view name, std::vector<NumberField>& result);

/// A dot, and a letter, a digit or "_" behind it.
bool beginsWithSuffix(std::string_view text);

/// What stands around a field, which is the same in all names that differ in their numbers only.
struct NumberPlace
{
    /// A suffix follows, and it is neither below zero ("shot.-0005.exr") nor the height in "1920x1080" nor
    /// the second place of a tile ("x0_y3").
    bool isOpen = false;
    bool isVersion = false; // "v02"
    char joint = 0;         // what parts it from the field before, if that is one character
};
std::vector<NumberPlace> findNumberPlaces(std::string_view name, const std::vector<NumberField>& fields);

/// Whether a name with these numbers may be that of a picture of a sequence that is counted in one of them.
/// Versions, days and times of a day count nothing.
bool mayCountPictures(std::span<const NumberPlace> places, std::span<const WrittenNumber> numbers,
                      std::size_t which);

} // namespace vantrel
