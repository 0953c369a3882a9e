#pragma once

#include "ombra/decode/avhandles.h"
#include "tarn/ref.h"

namespace vantrel::ombra {

/// A picture as it was decoded, and how it stands upright: whoever shows it makes the pixels that he needs.
/// The frame is shared with the decoder: never write into it.
class DecodedPicture : public RefCounted
{
public:
    AvPtr<AVFrame> frame;                       // null: black all over
    int quarterTurns = 0;                       // clockwise, by which it is to be turned
    double uprightWidth = 0, uprightHeight = 0; // then, in square pixels

    std::size_t bytes() const; // of the frame
    bool hasAlpha() const;
};

/// Of a frame, which stays with its decoder too. The pixel's aspect is that of the frame, or else the given
/// one. What is only meant is said: its matrix, and that values are linear in light. Null for one that nobody
/// can convert.
Ref<DecodedPicture> makePicture(const AVFrame& frame, int quarterTurns, AVRational streamAspect);

} // namespace vantrel::ombra
