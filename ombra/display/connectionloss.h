#pragma once

#include <atomic>

struct SDL_Window;

namespace vantrel::ombra {

/// A desktop that ends takes its programs with it unless they say otherwise. From here on the loss of the
/// window's connection only sets the mark, which must outlive the window. Elsewhere than on X this is so by
/// itself. The display's thread.
void surviveLoss(SDL_Window* window, std::atomic<bool>& isLost);

} // namespace vantrel::ombra
