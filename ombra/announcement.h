#pragma once

#include "tarn/discovery/searchtext.h"

namespace vantrel {
class MediaLibrary;
class Scene;
} // namespace vantrel

namespace vantrel::ombra {

/// What is on program, for those who look for servers: "program", its name, and "state"; nothing when program
/// is empty.
discovery::Attributes programAttributes(const Scene& scene, const MediaLibrary& library);

} // namespace vantrel::ombra
