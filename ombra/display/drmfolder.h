#pragma once

#include "ombra/outputs/connector.h"

#include <filesystem>
#include <vector>

namespace vantrel::ombra {

/// Where the kernel tells of the connectors of its graphics cards.
inline constexpr const char* drmRoot = "/sys/class/drm";

/// Those connectors, card by card: their modes are those that the display names and the card takes. The mode
/// in force and the place on a desktop are not told there. Nothing where there is no such folder.
std::vector<Connector> readDrmFolder(const std::filesystem::path& root);

/// What the kernel has as EDID of a connector that a desktop calls by this name; in hexadecimal digits.
std::string drmEdid(const std::filesystem::path& root, const std::string& name);

} // namespace vantrel::ombra
