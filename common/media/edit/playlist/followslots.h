#pragma once

#include "tarn/media/mediaaddress.h"

#include <functional>

namespace vantrel {

class MediaLibrary;

/// Lets the entries of all playlists go on playing slots that have got other addresses. newAddress: of a slot
/// by its old one; none for those that stay.
void followSlots(MediaLibrary& library, const std::function<MediaAddress(const MediaAddress&)>& newAddress);

} // namespace vantrel
