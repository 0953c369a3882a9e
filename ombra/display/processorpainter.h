#pragma once

#include "ombra/display/painter.h"

#include <memory>

struct SDL_Window;

namespace vantrel::ombra {

/// Paints into the window's own pixels: where there is no graphics card that is a fraction of the work that a
/// driver has with making believe that there is one.
std::unique_ptr<Painter> makeProcessorPainter(SDL_Window* window);

} // namespace vantrel::ombra
