#pragma once

#include <filesystem>
#include <optional>

namespace vantrel::ombra {

/// Where a file ends that is shorter than it announces.
struct CutOff
{
    double at = 0;        // seconds
    double announced = 0; // seconds
};

/// Compares the length that the container announces with what can be read of it. Nothing where they agree,
/// and for containers that announce none. Reads the last pictures of a sound file, and more of one that is
/// cut. Blocks; any thread.
std::optional<CutOff> findCutOff(const std::filesystem::path& file);

} // namespace vantrel::ombra
