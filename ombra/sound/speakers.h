#pragma once

#include <vector>

namespace vantrel::ombra {

/// How much of each channel of a medium a device's channels get: a line for each of the device, on it a
/// number for each of the medium. One channel is heard from both front speakers. Several stay on their own,
/// by number, where the device has as many; where it has fewer they are mixed as swresample does for the
/// usual speakers of so many, quieter where they could not all be at their loudest otherwise.
std::vector<float> speakerShares(int mediumChannels, int deviceChannels);

} // namespace vantrel::ombra
