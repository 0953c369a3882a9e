#pragma once

#include "tarn/edid/videotiming.h"

#include <optional>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// Of a desktop, in pixels.
struct ScreenArea
{
    int x = 0, y = 0, width = 0, height = 0;
    friend bool operator==(const ScreenArea&, const ScreenArea&) = default;
};

/// A connector of this machine and what is plugged into it, as the machine itself tells of them.
struct Connector
{
    std::string name;
    bool isConnected = false;         // a display is plugged in
    bool isOn = false;                // and something is shown there, or can be
    std::string edid{};               // of the display, in hexadecimal digits; empty where it gives none
    std::vector<VideoTiming> modes{}; // that it can be set to; none where nobody says
    std::optional<VideoTiming> preferred{}; // of those
    std::optional<VideoTiming> mode{};      // in force; totals and clock are 0 where nobody knows them
    std::optional<ScreenArea> area{};       // of the desktop, that it shows
    int screen = 0;                         // its number among those with a display

    friend bool operator==(const Connector&, const Connector&) = default;
};

} // namespace vantrel::ombra
