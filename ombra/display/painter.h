#pragma once

#include "ombra/engine/shownmoment.h"

#include <array>

namespace vantrel::ombra {

/// Paints moments into a window. The thread of that window.
class Painter
{
public:
    virtual ~Painter() = default;

    struct Ground
    {
        std::array<float, 3> color{}; // red, green, blue, 0 to 1
        bool mixesLight = false;      // transitions are of light, and not of values
        friend bool operator==(const Ground&, const Ground&) = default;
    };
    /// Paints what the window shows after the next swap; the pictures stand on the ground. False where the
    /// window takes no picture now.
    virtual bool paint(const ShownMoment& moment, const Ground& ground) = 0;
    /// Waits until that is done: then it takes no more than the swap.
    virtual void finish() {}
    /// Shows it; waits for the display where that gives the beat.
    virtual void swap() = 0;
};

} // namespace vantrel::ombra
