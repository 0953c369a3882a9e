#pragma once

#include "ombra/display/painter.h"

#include <memory>
#include <mutex>

struct SDL_Window;

namespace vantrel::ombra {

/// Of all windows: SDL keeps something of its own while it makes the pixels of one, and marks those of which
/// the size changes. Held while either may happen.
std::mutex& windowPixels();

/// Paints into the window's own pixels: where there is no graphics card that is a fraction of the work that a
/// driver has with making believe that there is one.
std::unique_ptr<Painter> makeProcessorPainter(SDL_Window* window);

} // namespace vantrel::ombra
