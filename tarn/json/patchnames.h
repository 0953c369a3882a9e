#pragma once

#include "tarn/json/patch.h"

#include <string_view>

namespace vantrel {

/// The name of an operation in the text of a patch and in the log; empty when there is no such operation.
const char* toStr(PatchOpType type) noexcept;
bool fromStr(std::string_view name, PatchOpType& out) noexcept;

} // namespace vantrel
