#include "ombra/display/framemap.h"

#define PL_LIBAV_IMPLEMENTATION 1
#include <libplacebo/utils/libav.h>

bool ombra_can_map(pl_gpu gpu, enum AVPixelFormat format)
{
    return pl_test_pixfmt(gpu, format);
}

bool ombra_map_frame(pl_gpu gpu, pl_tex textures[4], const AVFrame* frame, struct pl_frame* out)
{
    struct pl_frame mapped;
    const struct pl_avframe_params params = {.frame = frame, .tex = textures, .map_dovi = false};
    if (!pl_map_avframe_ex(gpu, &mapped, &params))
        return false;
    *out = mapped;
    out->user_data = NULL;
    out->profile = (struct pl_icc_profile){0}; /* lies in the frame */
    out->acquire = NULL;
    out->release = NULL;
    pl_unmap_avframe(gpu, &mapped);
    return true;
}
