#include "ombra/decode/placement.h"

#include "tarn/media/mediaenums.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

namespace {

constexpr double largestSide = 8192; // pixels of a scaled picture

Placement shrinkOnly(int canvasWidth, double width, double height)
{
    Placement fit;
    const double scale = std::min(1.0, canvasWidth / width);
    fit.surfaceWidth = fit.width = std::max(1, static_cast<int>(std::lround(width * scale)));
    fit.surfaceHeight = fit.height =
        std::clamp(static_cast<int>(std::lround(height * scale)), 1, 4 * canvasWidth);
    fit.x1 = fit.width;
    fit.y1 = fit.height;
    return fit;
}

/// How much the picture is enlarged to stand in an output of this size, both in pixels of the canvas.
std::pair<double, double> scalesOf(ScaleMode mode, double native, double acrossRatio, double downRatio)
{
    switch (mode) {
    case ScaleMode::Stretch:
        return {acrossRatio, downRatio};
    case ScaleMode::Clip:
        return {std::max(acrossRatio, downRatio), std::max(acrossRatio, downRatio)};
    case ScaleMode::Centered:
    case ScaleMode::TopLeft:
    case ScaleMode::TopRight:
    case ScaleMode::BottomLeft:
    case ScaleMode::BottomRight:
        return {native, native};
    case ScaleMode::Default:
    case ScaleMode::Fit:
        break;
    }
    return {std::min(acrossRatio, downRatio), std::min(acrossRatio, downRatio)};
}

/// Where the picture begins on a side: 0 at its start, 2 at its end, 1 in the middle.
int placed(int regionStart, int regionSize, int size, int alignment)
{
    const int room = regionSize - size;
    return regionStart + (alignment == 0 ? 0 : alignment == 2 ? room : (room - (room < 0 ? 1 : 0)) / 2);
}

} // namespace

Placement place(const Canvas& canvas, double width, double height)
{
    if (canvas.height <= 0)
        return shrinkOnly(canvas.width, width, height);
    // The output's own picture in the canvas: all of it, where they are of one shape.
    const double native = std::min(canvas.width / std::max(1.0, double(canvas.outputWidth)),
                                   canvas.height / std::max(1.0, double(canvas.outputHeight)));
    const int regionWidth =
        std::clamp(static_cast<int>(std::lround(canvas.outputWidth * native)), 1, canvas.width);
    const int regionHeight =
        std::clamp(static_cast<int>(std::lround(canvas.outputHeight * native)), 1, canvas.height);
    const int regionLeft = (canvas.width - regionWidth) / 2;
    const int regionTop = (canvas.height - regionHeight) / 2;

    const ScaleMode mode = canvas.scaling;
    const auto [across, down] = scalesOf(mode, native, regionWidth / width, regionHeight / height);
    Placement fit;
    fit.width = static_cast<int>(std::lround(std::clamp(width * across, 1.0, largestSide)));
    fit.height = static_cast<int>(std::lround(std::clamp(height * down, 1.0, largestSide)));
    const bool left = mode == ScaleMode::TopLeft || mode == ScaleMode::BottomLeft;
    const bool right = mode == ScaleMode::TopRight || mode == ScaleMode::BottomRight;
    const bool top = mode == ScaleMode::TopLeft || mode == ScaleMode::TopRight;
    const bool bottom = mode == ScaleMode::BottomLeft || mode == ScaleMode::BottomRight;
    fit.left = placed(regionLeft, regionWidth, fit.width, left ? 0 : right ? 2 : 1);
    fit.top = placed(regionTop, regionHeight, fit.height, top ? 0 : bottom ? 2 : 1);
    fit.surfaceWidth = canvas.width;
    fit.surfaceHeight = canvas.height;
    fit.x0 = std::max(regionLeft, fit.left);
    fit.y0 = std::max(regionTop, fit.top);
    fit.x1 = std::min(regionLeft + regionWidth, fit.left + fit.width);
    fit.y1 = std::min(regionTop + regionHeight, fit.top + fit.height);
    return fit;
}

} // namespace vantrel::ombra
