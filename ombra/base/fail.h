#pragma once

#include <string>
#include <utility>

namespace vantrel::ombra {

/// Sets the error text, where one is wanted; always false.
inline bool fail(std::string* error, std::string text)
{
    if (error)
        *error = std::move(text);
    return false;
}

} // namespace vantrel::ombra
