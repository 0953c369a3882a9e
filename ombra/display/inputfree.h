#pragma once

struct SDL_Window;

namespace vantrel::ombra {

/// Shows a window that was made hidden, and never gets a key: not by who manages windows on the desktop, and
/// where nobody does the focus stays with whoever has it. Elsewhere than on X this is the desktop's matter.
void showWithoutInput(SDL_Window* window);

} // namespace vantrel::ombra
