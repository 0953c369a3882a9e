#pragma once

#include "tarn/preview/frame.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vantrel {

/// The frames of the preview stream, for both ends. All numbers are little-endian:
///
///     offset  size
///          0     4  magic "OPVW"
///          4     2  version, 1
///          6     2  format code of the pixels: 33 for 24-bit RGB, 97 for audio levels, whose "pixels" are
///                   laid out in audiolevels.h; readers pass over codes that they do not know
///          8     4  width, pixels
///         12     4  height, pixels
///         16     4  bytes per line
///         20     4  stream index, signed
///         24     8  time in nanoseconds, signed
///         32     4  length of the source path, bytes
///         36     4  length of the pixels, bytes
///
/// then the source path in UTF-8, then the pixels, top row first.
namespace previewwire {

inline constexpr std::size_t headerSize = 40;
inline constexpr std::uint32_t maxSide = 8192;
inline constexpr std::uint32_t maxSource = 4096;
inline constexpr std::uint32_t maxPixels = 64u * 1024 * 1024;

struct Header
{
    std::uint16_t format = 0;
    std::uint32_t width = 0, height = 0, bytesPerLine = 0;
    std::int32_t streamIndex = 0;
    std::int64_t time = 0;
    std::uint32_t sourceLength = 0, pixelLength = 0;
};

/// False, and the reason in why, when the bytes are no header within the bounds.
bool parseHeader(std::span<const std::uint8_t, headerSize> bytes, Header& out, std::string& why);

/// Header, source and pixels; empty when the frame has no surface or does not fit the bounds.
std::string encode(const PreviewFrame& frame);

/// Reads a stream piece by piece, straight into where the bytes belong: read at most space() bytes into it,
/// commit() what came, and take() the frame when one is complete.
class Decoder
{
public:
    enum class Result { Frame, NeedMore, Error };
    std::span<std::uint8_t> space();
    /// Error is final: the connection must end, message() says why.
    Result commit(std::size_t count);
    PreviewFrame take();
    const std::string& message() const { return m_message; }

private:
    enum class Stage { Header, Source, Pixels };
    std::size_t stageSize() const;
    bool enter(Stage stage);

    Stage m_stage = Stage::Header;
    std::size_t m_filled = 0; // of this stage
    std::array<std::uint8_t, headerSize> m_bytes{};
    Header m_header;
    std::string m_source;
    Ref<Surface> m_surface;
    std::string m_message;
};

} // namespace previewwire
} // namespace vantrel
