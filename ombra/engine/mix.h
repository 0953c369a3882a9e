#pragma once

#include "tarn/media/playenums.h"
#include "tarn/preview/frame.h"
#include "tarn/ref.h"

namespace vantrel::ombra {

/// How much of each of the two there is at a moment of a transition, 0 to 1.
struct MixShares
{
    double from, to;
};
MixShares mixShares(TakeTransitionType type, double weight);

/// A moment of a transition as a new surface. Weight 0 is all of from, 1 all of to; a dip is black in the
/// middle. Both surfaces must be 24-bit RGB of one size, or else the result is to.
Ref<Surface> mix(const Ref<Surface>& from, const Ref<Surface>& to, TakeTransitionType type, double weight);

} // namespace vantrel::ombra
