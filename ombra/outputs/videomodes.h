#pragma once

#include <span>
#include <string>

namespace vantrel::ombra {

/// One video mode with its timing, as CTA-861 and VESA DMT list them.
struct VideoMode
{
    const char* id;
    const char* label;
    int width, height;        // pixels
    int hTotal, vTotal;       // pixels and lines, with blanking
    int hFront, hSync;        // pixels from the picture to the pulse, and of the pulse
    int vFront, vSync;        // lines, likewise
    int hPolarity, vPolarity; // 1 or -1
    bool interlaced;
    int dotClock; // Hz

    /// Pictures a second, or fields a second of an interlaced mode.
    double refreshRate() const;
};

/// All modes that an output offers, the most common first.
std::span<const VideoMode> videoModes();
const VideoMode* findVideoMode(const std::string& id);

/// A display's EDID of one block, for a display whose first mode is the given one, as lower-case hexadecimal
/// text. The mode must not exceed what a block can say (655 MHz, 4095 pixels of picture and of blanking).
std::string makeEdid(const VideoMode& preferred, const std::string& product);
/// Whether the text is hexadecimal blocks of 128 bytes with the right header and checksums.
bool isEdid(const std::string& hex);

} // namespace vantrel::ombra
