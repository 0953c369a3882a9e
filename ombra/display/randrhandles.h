#pragma once

#include "tarn/edid/videotiming.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
#include <memory>
#include <optional>
#include <string>

namespace vantrel::ombra {

template <auto Free>
struct RandrFree
{
    template <typename T>
    void operator()(T* it) const
    {
        Free(it);
    }
};
using RandrResources = std::unique_ptr<XRRScreenResources, RandrFree<XRRFreeScreenResources>>;
using RandrOutput = std::unique_ptr<XRROutputInfo, RandrFree<XRRFreeOutputInfo>>;
using RandrCrtc = std::unique_ptr<XRRCrtcInfo, RandrFree<XRRFreeCrtcInfo>>;

/// Names go into the scene, which is text: what is none stands as a question mark.
std::string randrName(const char* name, int length);
/// Nothing for a mode that makes no sense; what has no tube and no wire behind it names its size alone.
std::optional<VideoTiming> randrTiming(const XRRModeInfo& mode);
/// Null where there is none of that number.
const XRRModeInfo* randrMode(const XRRScreenResources& all, RRMode id);

} // namespace vantrel::ombra
