#pragma once

#include <filesystem>
#include <string>

namespace vantrel::ombra {

/// Why a file that is there cannot be opened, as a sentence that an operator can act on. detail is the
/// library's own text, for what nothing else is known of. Reads a few bytes of the file; any thread.
std::string unplayableReason(const std::filesystem::path& file, const std::string& detail);

/// For a file, or all pictures of a sequence, that are not there.
std::string missingReason(const std::filesystem::path& file);

/// Whether a file begins like text.
bool looksLikeText(const std::filesystem::path& file);

} // namespace vantrel::ombra
