#pragma once

#include <string>
#include <string_view>

namespace vantrel {

/// A path as LIST takes it: a backslash before each backslash, bracket and blank, since servers read patterns
/// there. All other commands take the path as it is.
std::string quoteListPath(std::string_view path);

/// False for what would end the line of a command before its time, and for an empty argument.
bool isFtpArgument(std::string_view text);

} // namespace vantrel
