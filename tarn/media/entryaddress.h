#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantrel {

/// The number of a playlist entry: a whole number with an optional decimal, "5" or "5.1". Orders by the whole
/// number, then by the decimal, so that "5.10" comes after "5.9". Before 1 stand the decimals of 0, which is
/// no address itself.
class EntryAddress
{
public:
    static constexpr int maxMajor = 999999;
    static constexpr int maxMinor = 999;

    std::int32_t major = 0;
    std::int32_t minor = 0;

    EntryAddress() = default; // no address
    EntryAddress(int whole, int decimal)
        : major(whole)
        , minor(decimal)
    {
    }

    bool isValid() const noexcept
    {
        return major >= 0 && major <= maxMajor && minor >= 0 && minor <= maxMinor && (major > 0 || minor > 0);
    }

    /// The written form. For display (full false) no address is the empty text; in full it is written as it
    /// stands.
    std::string toString(bool full) const;
    /// False, and the address as it was, on text that is no valid address.
    bool parseString(std::string_view text);

    friend auto operator<=>(const EntryAddress&, const EntryAddress&) = default;
};

} // namespace vantrel
