#pragma once

#include "tarn/ref.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantrel {

/// A picture in memory, or what else the preview stream carries in the shape of one. Format 33 is 24-bit RGB,
/// top row first; for 97 see AudioLevels.
class Surface : public RefCounted
{
public:
    static constexpr int formatRgb24 = 33;
    static constexpr int formatLevels = 97;

    int format = 0;
    int width = 0;  // pixels
    int height = 0; // pixels
    int bytesPerLine = 0;
    std::vector<std::uint8_t> pixels; // height * bytesPerLine bytes
};

/// A picture and the time it belongs to, in nanoseconds of the server's clock. Copies share the surface.
class Frame
{
public:
    Frame() = default;
    Frame(Surface* surface, long long time)
        : m_surface(surface)
        , m_time(time)
    {
    }

    Surface* getSurface() const noexcept { return m_surface.get(); }
    long long getTime() const noexcept { return m_time; }
    int getStreamIndex() const noexcept { return m_streamIndex; }
    void setStreamIndex(int index) noexcept { m_streamIndex = index; }

private:
    Ref<Surface> m_surface;
    long long m_time = 0;
    int m_streamIndex = 0;
};

/// A frame and the path of the scene object that it shows, for example "/device/channels/0/preview".
struct PreviewFrame
{
    std::string source;
    Frame frame;

    /// Whether a newer one of the two makes the other worthless: both are of one source, stream and format.
    bool isOfOneKindWith(const PreviewFrame& other) const
    {
        return source == other.source && frame.getStreamIndex() == other.frame.getStreamIndex() &&
               formatCode() == other.formatCode();
    }
    int formatCode() const { return frame.getSurface() ? frame.getSurface()->format : 0; }
};

} // namespace vantrel
