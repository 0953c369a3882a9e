#pragma once

#include <string>

namespace vantrel {

/// A ratio of two whole numbers, kept as it was given.
template <typename T>
struct Rational
{
    T num = 0;
    T den = 1;

    /// "16:11".
    std::string toString() const { return std::to_string(num) + ":" + std::to_string(den); }

    friend bool operator==(const Rational&, const Rational&) = default;
};

} // namespace vantrel
