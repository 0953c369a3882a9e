#pragma once

#include "ombra/engine/shownmoment.h"

#include <array>
#include <cmath>

namespace vantrel::ombra {

constexpr double screenGamma = 2.4; // of BT.1886: light by values

/// Paints moments into a window. The thread of that window.
class Painter
{
public:
    virtual ~Painter() = default;

    struct Ground
    {
        std::array<float, 3> color{}; // red, green, blue, 0 to 1
        bool mixesLight = false;      // transitions are of light, and not of values
        /// Its color where there is so much of it beside black.
        std::array<float, 3> dimmed(double share) const
        {
            const auto by = static_cast<float>(mixesLight ? std::pow(share, 1 / screenGamma) : share);
            return {color[0] * by, color[1] * by, color[2] * by};
        }
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
