#pragma once

#include <QString>

#include <cstdint>

namespace vantrel {

enum class MediaType : std::int32_t;

/// The name of the drawing for a kind of media, wherever there is no picture of it.
QString mediaIcon(MediaType type);

} // namespace vantrel
