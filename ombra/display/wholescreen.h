#pragma once

struct SDL_Window;

namespace vantrel::ombra {

/// Asks who manages the windows of a desktop of X to lay one over the whole screen that it is on, above all
/// others. Before it is shown.
void askForWholeScreen(SDL_Window* window);

} // namespace vantrel::ombra
