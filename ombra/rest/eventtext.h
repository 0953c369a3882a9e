#pragma once

#include "tarn/json/patch.h"

#include <cstdint>
#include <string>

namespace vantrel::ombra {

/// A patch as one message of the event stream: "data: [...]" and an empty line. Readers fold runs of blanks
/// and may trim other kinds of space, so inside strings a blank that follows a blank, and every space beyond
/// ASCII, is written as an escape: the folding then loses nothing. The first operation carries the library's
/// revision after the patch as an extra member "revision", which readers of patches pass over.
std::string eventStreamMessage(const Patch& patch, std::uint64_t revision);

} // namespace vantrel::ombra
