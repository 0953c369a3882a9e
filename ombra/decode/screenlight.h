#pragma once

#include <array>
#include <cstdint>
#include <vector>

struct AVFrame;

namespace vantrel::ombra {

/// Pictures whose values are not made for a screen as it is usual: proportional to light, or of a larger
/// range (BT.2100). What they become here are values of BT.709 and 8 bits; linear ones by the transfer
/// function of sRGB, IEC 61966-2-1, the others by BT.1886 after the tone curve of BT.2390, with their white
/// at 203 cd/m².
class ScreenLight
{
public:
    enum class Kind { Usual, Linear, Pq, Hlg };
    static Kind kindOf(const AVFrame& frame);
    /// cd/m² of the brightest that a frame of a larger range may have.
    static double peakOf(const AVFrame& frame);

    /// For frames like that one; keeps what it knows from one to the next.
    void follow(const AVFrame& frame);
    /// 16 bits a value, red, green, blue and, where there is one, alpha, to 8 bits of them in that order, or
    /// blue, green and red. Linear values come multiplied with their alpha, and do not leave so. What is
    /// behind a value of three is left alone.
    void encode(const std::uint16_t* from, std::uint8_t* to, int pixels, bool hasAlpha, bool isBgr,
                int step) const;

private:
    void encodeLinear(const std::uint16_t* from, std::array<std::uint8_t, 3>& to, bool hasAlpha) const;
    void encodeBright(const std::uint16_t* from, std::array<std::uint8_t, 3>& to) const;
    void makeTables(Kind kind, double peak);

    Kind m_kind = Kind::Usual;
    double m_peak = 0;          // cd/m²
    bool m_isWide = false;      // primaries of BT.2020
    std::vector<float> m_light; // of a value, in shares of 203 cd/m²; of HLG before what its brightness adds
    std::vector<float> m_system;        // what the brightness adds to HLG, by the brightness
    std::vector<float> m_curve;         // what is left of light, by the square root of its largest part
    std::vector<std::uint8_t> m_values; // of light, by its square root
};

} // namespace vantrel::ombra
