#pragma once

#include "ombra/decode/picturereader.h"

namespace vantrel::ombra {

/// Where a picture stands on a surface, in pixels.
struct Placement
{
    int width = 1, height = 1;               // of the picture, upright
    int left = 0, top = 0;                   // of the picture on the surface; negative where it is cut
    int surfaceWidth = 1, surfaceHeight = 1; // pixels
    int x0 = 0, y0 = 0, x1 = 1, y1 = 1;      // what of the surface the picture covers
};

/// Of a picture of that size (upright, in square pixels) on the canvas, scaled as it says.
Placement place(const Canvas& canvas, double width, double height);

} // namespace vantrel::ombra
