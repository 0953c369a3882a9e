#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace vantrel {

/// A moment, to the second, as file systems tell it.
class DateTime
{
public:
    DateTime() = default;
    /// Seconds since 1970-01-01, UTC.
    explicit DateTime(std::int64_t seconds)
        : m_seconds(seconds)
    {
    }

    std::int64_t secondsSinceEpoch() const noexcept { return m_seconds; }
    /// "2024-05-17 09:30:05" in the time zone of this machine; empty beyond what its calendar holds.
    std::string toString() const;

    friend auto operator<=>(const DateTime&, const DateTime&) = default;

private:
    std::int64_t m_seconds = 0;
};

} // namespace vantrel
