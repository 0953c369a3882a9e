#pragma once

#include "ombra/display/painter.h"

#include <memory>
#include <string>

struct SDL_Window;

namespace vantrel::ombra {

/// Paints by the graphics card, or by a driver that only makes believe that there is one (bySoftware); with
/// the window's OpenGL context current. Null, and the reason, where the context does not serve.
std::unique_ptr<Painter> makeCardPainter(SDL_Window* window, bool bySoftware, std::string* error);

} // namespace vantrel::ombra
