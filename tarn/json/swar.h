#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

/// Eight bytes of text at a time, loaded as they stand in memory.
namespace vantrel::swar {

inline constexpr std::uint64_t ones = 0x0101010101010101u;
inline constexpr std::uint64_t highs = 0x8080808080808080u;

/// The high bit of each byte that JSON text cannot hold as it is: quote, backslash, control. Where one is
/// found, a byte above it may be marked in error, but never without one.
inline std::uint64_t quotes(std::uint64_t word) noexcept
{
    const std::uint64_t quote = word ^ (ones * '"');
    const std::uint64_t backslash = word ^ (ones * '\\');
    return (((quote - ones) & ~quote) | ((backslash - ones) & ~backslash) | ((word - ones * 0x20) & ~word)) &
           highs;
}

/// Those, and each byte that is not ASCII; the lowest mark is always right.
inline std::uint64_t stops(std::uint64_t word) noexcept
{
    return quotes(word) | (word & highs);
}

/// Index in memory of the byte that the lowest mark is for.
inline std::size_t firstMark(std::uint64_t marks) noexcept
{
    return static_cast<std::size_t>(std::countr_zero(marks)) / 8;
}

/// The first count bytes in memory, fewer than eight, and zeros.
inline std::uint64_t firstBytes(std::uint64_t word, std::size_t count) noexcept
{
    return word & ((std::uint64_t(1) << (count * 8)) - 1);
}

static_assert(std::endian::native == std::endian::little, "marks are counted from the low end");

} // namespace vantrel::swar
