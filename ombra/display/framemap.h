#pragma once

#include <libavutil/frame.h>
#include <libplacebo/renderer.h>
#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The renderer's own reading of the decoder's frames comes as C only. */

/* Whether frames of that pixel format can be handed to the renderer as they are. */
bool ombra_can_map(pl_gpu gpu, enum AVPixelFormat format);

/* Puts a frame into textures, which are made or used again, and describes the picture that they then hold.
   The frame may go afterwards. */
bool ombra_map_frame(pl_gpu gpu, pl_tex textures[4], const AVFrame* frame, struct pl_frame* out);

#ifdef __cplusplus
}
#endif
