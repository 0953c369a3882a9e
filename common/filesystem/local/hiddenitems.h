#pragma once

#include <string>

namespace vantrel {

// What is not whole yet stands under a hidden name beside its place, so that nothing half done looks
// finished.

/// A name in the same directory that nobody else has.
std::string hiddenPathBeside(const std::string& path);
/// Removes what a copy left there whose process was killed, or whose disk was pulled: such of this machine
/// when the process is gone, such of another one when nothing has happened to it for a day.
void sweepHidden(const std::string& directory);

} // namespace vantrel
