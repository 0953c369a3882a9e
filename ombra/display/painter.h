#pragma once

#include "ombra/engine/shownmoment.h"

#include <array>
#include <memory>
#include <string>

struct SDL_Window;

namespace vantrel::ombra {

/// Paints moments into a window, by the graphics card or, where there is none, by the processor. The window's
/// thread, with the window's OpenGL context current.
class Painter
{
public:
    /// Null, and the reason, where the context does not serve.
    static std::unique_ptr<Painter> create(SDL_Window* window, bool bySoftware, std::string* error);
    ~Painter();
    Painter(const Painter&) = delete;

    struct Ground
    {
        std::array<float, 3> color{}; // red, green, blue, 0 to 1
        bool mixesLight = false;      // transitions are of light, and not of values
        friend bool operator==(const Ground&, const Ground&) = default;
    };
    /// Paints what the window shows after the next swap; the pictures stand on the ground. False where the
    /// window takes no picture now.
    bool paint(const ShownMoment& moment, const Ground& ground);
    /// Waits until that is done: then it takes no more than the swap.
    void finish();
    /// Shows it; waits for the display where that gives the beat.
    void swap();

private:
    class Impl;
    explicit Painter(std::unique_ptr<Impl> impl);

    std::unique_ptr<Impl> m_impl;
};

} // namespace vantrel::ombra
