#pragma once

#include "ombra/decode/avhandles.h"
#include "ombra/decode/picturereader.h"
#include "ombra/decode/placement.h"
#include "ombra/decode/screenlight.h"

#include <cstdint>
#include <vector>

namespace vantrel::ombra {

class DecodedPicture;

/// Pixels of 8 bits a value: red, green and blue, or blue, green, red and one that nobody reads.
struct PixelTarget
{
    enum class Order { Rgb, Bgrx };
    Order order = Order::Rgb;
    std::uint8_t* pixels = nullptr;
    int bytesPerLine = 0;

    int bytesPerPixel() const { return order == Order::Rgb ? 3 : 4; }
};

/// Draws decoded pictures: scaled, turned upright, over what is there, in values of a screen. Keeps the
/// scaler between pictures of one kind. One thread.
class FrameScaler
{
public:
    /// Quick: for a small preview. Exact: the matrix to the value.
    enum class Care { Quick, Exact };

    /// A surface of the canvas, on black; no more than that where the picture is black, or cannot be
    /// converted.
    Ref<Surface> scale(const DecodedPicture& picture, const Canvas& canvas);
    /// False for what is black all over or cannot be converted: then nothing is drawn.
    bool draw(const DecodedPicture& picture, const Placement& at, const PixelTarget& target, Care care);

private:
    /// What the scaler is to make of a picture.
    struct Wish
    {
        int width, height;     // before it is turned
        bool hasAlpha, isDeep; // isDeep: its values are to become those of a screen
        PixelTarget::Order order;
        Care care;

        int bytesPerPixel() const { return order == PixelTarget::Order::Rgb && !hasAlpha ? 3 : 4; }
    };
    bool convert(const AVFrame& frame, const Wish& wish);
    bool convert(const AVFrame& frame, const Wish& wish, std::uint8_t* to, int bytesPerLine);
    void encode(const AVFrame& frame, const Wish& wish);
    void place(const Wish& wish, int turns, const Placement& at, const PixelTarget& target) const;

    AvPtr<SwsContext> m_context;
    ScreenLight m_light;
    std::vector<std::uint8_t> m_scaled; // the picture in the frame's own orientation
    std::vector<std::uint16_t> m_deep;  // before its values are those of a screen: as many a pixel
    int m_stride = 0;                   // bytes a line of m_scaled, and values one of m_deep
};

} // namespace vantrel::ombra
