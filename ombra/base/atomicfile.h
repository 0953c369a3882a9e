#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel::ombra {

/// Writes a file so that a crash at any time leaves the old content or the new: a temporary beside it, fsync,
/// rename, fsync of the folder. False, with the reason, when that fails.
bool writeFileAtomically(const std::filesystem::path& path, std::string_view text, std::string* error);

/// The content of a file of at most limit bytes; nothing, with the reason, when it cannot be read. A missing
/// file gives nothing and an empty reason.
std::optional<std::string> readWholeFile(const std::filesystem::path& path, std::size_t limit,
                                         std::string* error);

/// Renames a file to "<name>.damaged-<n>", the first free n, so that nothing is lost. The new path, empty on
/// failure.
std::filesystem::path moveAside(const std::filesystem::path& path);

/// Copies a file in the same way: the damaged one stays where it is.
std::filesystem::path copyAside(const std::filesystem::path& path);

/// Makes what was created, renamed or removed in a folder last.
bool syncFolder(const std::filesystem::path& folder);

/// Writes all bytes; false, with errno, on the first failure.
bool writeAll(int fd, std::string_view bytes);

} // namespace vantrel::ombra
