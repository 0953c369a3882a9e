#pragma once

#include "ombra/decode/avhandles.h"
#include "ombra/decode/picturereader.h"

namespace vantrel::ombra {

/// Turns decoded frames into surfaces of the canvas: scaled as it says, turned upright, on black. Pictures
/// that are linear in light are put through the transfer function of screens. Keeps the scaler between frames
/// of one kind. One thread.
class FrameScaler
{
public:
    explicit FrameScaler(Canvas canvas)
        : m_canvas(canvas)
    {
    }

    /// Null for a frame that cannot be converted. The pixel's aspect is that of the frame, or else the given
    /// one.
    Ref<Surface> scale(const AVFrame& frame, int quarterTurns, AVRational streamAspect);

private:
    bool convert(const AVFrame& frame, int width, int height, bool alpha);
    void encodeLinear(int width, int height);

    Canvas m_canvas;
    AvPtr<SwsContext> m_context;
    std::vector<std::uint8_t> m_scaled;  // the picture in the frame's own orientation
    std::vector<std::uint16_t> m_linear; // where its values are linear in light: three a pixel
    int m_stride = 0;                    // bytes a line of m_scaled
};

} // namespace vantrel::ombra
