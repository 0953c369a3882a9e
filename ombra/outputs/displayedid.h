#pragma once

#include "tarn/edid/videotiming.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// What a display that is made up says of itself.
struct DisplayTraits
{
    std::string product; // 13 characters at most, as the serial
    std::string serial;
    int widthMm = 0, heightMm = 0;
    int bpc = 8;
    int maxRate = 0;              // pictures a second
    int maxLineRate = 0;          // kHz, 255 at most
    std::int64_t maxDotClock = 0; // Hz, in steps of 10 MHz
    // That one is shown unasked. It must not exceed what a block can say: 655 MHz, and 4095 pixels of picture
    // and of blanking.
    VideoTiming preferred;
    std::vector<int> videoCodes; // of CTA-861, 31 at most
};

/// Its EDID 1.4 with an extension of CTA-861, in hexadecimal digits. It plays two channels of sound.
std::string makeEdid(const DisplayTraits& display);

} // namespace vantrel::ombra
