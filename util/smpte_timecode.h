#pragma once

#include <cstdint>
#include <string>

namespace vantrel {

enum class SmpteTimecodeType : int { NonDrop = 0, DropFrame = 1 };

/// A SMPTE timecode: a count of frames that exist, with the nominal rate and the counting scheme that write
/// it. Drop-frame numbering leaves frame numbers out, never frames. A plain value.
struct SmpteTimecode
{
    SmpteTimecodeType type = SmpteTimecodeType::NonDrop;
    std::int32_t frame = 0; // real frames since zero
    std::uint16_t fps = 0;  // nominal whole rate, at least 1

    SmpteTimecode() = default;
    SmpteTimecode(SmpteTimecodeType timecodeType, int frameCount, unsigned short rate)
        : type(timecodeType)
        , frame(frameCount)
        , fps(rate)
    {
    }

    /// "hh:mm:ss:ff", with ";" before the frames in drop-frame; the frame field is as wide as the rate needs.
    std::string toString() const;
    /// The inverse; fields may be out of their ranges and then carry over. Throws std::runtime_error for what
    /// is no timecode. Drop-frame at a rate that is no multiple of 30 is logged and gives frame 0.
    static SmpteTimecode fromString(const std::string& text, unsigned short fps);

    friend bool operator==(const SmpteTimecode&, const SmpteTimecode&) = default;
};

} // namespace vantrel
