#pragma once

#include "tarn/json/json.h"

#include <string_view>

namespace vantrel {

/// Long names met lately by this thread, so that the slots of a library share the text of
/// "transitionDuration". Bounded: a new name takes the place of another.
struct JsonKeyCache
{
    static Json get(std::string_view validUtf8);
};

} // namespace vantrel
