#pragma once

#include "tarn/json/json.h"

#include <cstddef>

namespace vantrel::ombra {

/// How large a library is as text, in bytes; a little more rather than less. In memory parts that are alike
/// are one, so that a short patch of copies can make a library that nobody could write down or load again.
namespace librarysize {

/// What a library may take.
inline constexpr std::size_t limit = 256u * 1024 * 1024;

/// Counts no further than a little above the limit.
std::size_t of(const Json& library);
/// Of what became of a library that took so many bytes; costs what differs.
std::size_t after(std::size_t bytes, const Json& from, const Json& to);

} // namespace librarysize
} // namespace vantrel::ombra
