#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace vantrel {

class Variant;

enum class JsonType : std::int32_t { Null = 0, Bool = 1, Int = 2, Double = 3, String = 4, Object = 5, Array = 6 };

/// A persistent JSON value. Nodes are immutable and shared: a copy is one pointer, an edit copies the path to the
/// root, in place where nobody else holds the node. Copies may be read from any number of threads; one value
/// belongs to one thread at a time. Integers of 64 bits, signed or unsigned, are exact; strings are valid UTF-8.
class Json
{
public:
    Json() noexcept;
    // ... constructors from bool, integers, double, string_view, const char*; copy and move
    static Json object();
    static Json array();
};

} // namespace vantrel
