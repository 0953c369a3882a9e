#pragma once

#include "ombra/decode/avhandles.h"
#include "tarn/media/mediaenums.h"
#include "tarn/preview/frame.h"

namespace vantrel::ombra {

/// A preview picture that keeps what it was made of: the decoder's own frame, and how that is to stand on an
/// output. Null where nobody asked for it (Canvas). The frame is
/// shared with the decoder: never write into it.
class DecodedSurface : public Surface
{
public:
    AvPtr<AVFrame> decoded;
    int quarterTurns = 0;                       // clockwise, by which it is to be turned
    double uprightWidth = 0, uprightHeight = 0; // then, in square pixels
    ScaleMode scaling = ScaleMode::Fit;
};

} // namespace vantrel::ombra
