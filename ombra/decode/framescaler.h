#pragma once

#include "ombra/decode/avhandles.h"
#include "ombra/decode/picturereader.h"

namespace vantrel::ombra {

class DecodedPicture;

/// Turns decoded pictures into surfaces of a canvas: scaled as it says, turned upright, on black. Values that
/// are linear in light are put through the transfer function of screens. Keeps the scaler between pictures of
/// one kind. One thread.
class FrameScaler
{
public:
    /// Black where the picture is, or cannot be converted.
    Ref<Surface> scale(const DecodedPicture& picture, const Canvas& canvas);

private:
    bool convert(const AVFrame& frame, int width, int height, bool alpha);
    void encodeLinear(int width, int height);

    AvPtr<SwsContext> m_context;
    std::vector<std::uint8_t> m_scaled;  // the picture in the frame's own orientation
    std::vector<std::uint16_t> m_linear; // where its values are linear in light: three a pixel
    int m_stride = 0;                    // bytes a line of m_scaled
};

} // namespace vantrel::ombra
