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
        friend bool operator==(const Ground&, const Ground&) = default;
    };
    /// Paints what the window shows after the next swap; the pictures stand on the ground. False where the
    /// window takes no picture now.
    virtual bool paint(const ShownMoment& moment, const Ground& ground) = 0;
    /// Shows it; waits for the display where that gives the beat.
    virtual void swap() = 0;
};

} // namespace vantrel::ombra
