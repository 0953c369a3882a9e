#pragma once

#include <string>

namespace vantrel::ombra {

namespace version {

inline constexpr int major = 0;
inline constexpr int minor = 1;
inline constexpr int patch = 0;

} // namespace version

/// "major.minor.patch".
inline std::string versionText()
{
    return std::to_string(version::major) + "." + std::to_string(version::minor) + "." +
           std::to_string(version::patch);
}

/// The machine's name.
std::string hostName();

} // namespace vantrel::ombra
