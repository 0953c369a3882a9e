#pragma once

#include "tarn/media/imagesequenceformat.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vantrel {

/// Numbers of pictures from the first to the last, both included.
struct FrameRange
{
    std::size_t first = 0;
    std::size_t last = 0;

    friend bool operator==(const FrameRange&, const FrameRange&) = default;
};

/// An image sequence that was found: what its pictures are called, and which there are. Where one is missing,
/// the one before it is shown.
struct ImageSequenceInfo
{
    std::string sourceName; // the path of the pattern, as the paths were given
    ImageSequenceFormat format;
    std::size_t firstFrame = 0;
    std::size_t lastFrame = 0;
    std::vector<FrameRange> missing; // in order; neither the first nor the last frame is among them

    std::size_t missingFrames() const
    {
        std::size_t count = 0;
        for (const FrameRange& range : missing)
            count += range.last + 1 - range.first;
        return count;
    }
    std::size_t pictureCount() const { return lastFrame + 1 - firstFrame - missingFrames(); }

    /// Calls it with the number of each picture that there is, in order.
    template <typename Call>
    void forEachFrame(Call call) const
    {
        std::size_t frame = firstFrame;
        for (const FrameRange& gap : missing) {
            for (; frame < gap.first; ++frame)
                call(frame);
            frame = gap.last + 1;
        }
        for (; frame <= lastFrame; ++frame)
            call(frame);
    }
};

} // namespace vantrel
