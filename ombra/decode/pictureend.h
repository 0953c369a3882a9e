#pragma once

#include <filesystem>

namespace vantrel::ombra {

/// Whether the file of a picture ends before it says that it does: PNG, JPEG, GIF, WebP, BMP, TIFF, OpenEXR
/// and DPX, by their own marks and sizes. False for all others. Reads a few bytes, of a JPEG the whole; any
/// thread.
bool isPictureCutOff(const std::filesystem::path& file);

} // namespace vantrel::ombra
