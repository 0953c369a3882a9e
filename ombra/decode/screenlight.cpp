#include "ombra/decode/screenlight.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/mastering_display_metadata.h>
}

namespace vantrel::ombra {

namespace {

constexpr double white = 203; // cd/m², BT.2408
constexpr double hlgPeak = 1000;
constexpr double pqPeak = 10000;    // SMPTE ST 2084
constexpr std::size_t steps = 4096; // of tables by the square root

std::vector<std::uint8_t> makeSrgb()
{
    std::vector<std::uint8_t> values(65536);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double light = static_cast<double>(i) / 65535;
        const double value = light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
        values[i] = static_cast<std::uint8_t>(std::lround(255 * value));
    }
    return values;
}

/// cd/m² of a value of PQ, 0 to 1, and back.
double pqLight(double value)
{
    const double power = std::pow(value, 32.0 / 2523);
    return pqPeak *
           std::pow(std::max(0.0, power - 0.8359375) / (18.8515625 - 18.6875 * power), 16384.0 / 2610);
}
double pqValue(double light)
{
    const double power = std::pow(light / pqPeak, 2610.0 / 16384);
    return std::pow((0.8359375 + 18.8515625 * power) / (1 + 18.6875 * power), 2523.0 / 32);
}

/// Of the scene, 0 to 1 (BT.2100).
double hlgLight(double value)
{
    return value <= 0.5 ? value * value / 3 : (std::exp((value - 0.55991073) / 0.17883277) + 0.28466892) / 12;
}

/// cd/m² that are left of so many for a screen of 203: the curve of BT.2390.
double toneMapped(double light, double peak)
{
    const double whole = pqValue(peak), most = pqValue(white) / whole, knee = 1.5 * most - 0.5;
    const double value = std::min(1.0, pqValue(light) / whole);
    if (peak <= white || value < knee)
        return std::min(light, white);
    const double t = (value - knee) / (1 - knee), t2 = t * t, t3 = t2 * t;
    const double mapped =
        (2 * t3 - 3 * t2 + 1) * knee + (t3 - 2 * t2 + t) * (1 - knee) + (3 * t2 - 2 * t3) * most;
    return pqLight(mapped * whole);
}

std::size_t stepOf(float light, float most)
{
    const float at = std::sqrt(std::max(0.0F, light / most)) * float(steps - 1) + 0.5F;
    return static_cast<std::size_t>(std::min(at, float(steps - 1)));
}

constexpr auto mostLight = float(pqPeak / white);

} // namespace

ScreenLight::Kind ScreenLight::kindOf(const AVFrame& frame)
{
    switch (frame.color_trc) {
    case AVCOL_TRC_LINEAR:
        return Kind::Linear;
    case AVCOL_TRC_SMPTE2084:
        return Kind::Pq;
    case AVCOL_TRC_ARIB_STD_B67:
        return Kind::Hlg;
    default:
        return Kind::Usual;
    }
}

double ScreenLight::peakOf(const AVFrame& frame)
{
    if (kindOf(frame) == Kind::Hlg)
        return hlgPeak;
    if (const AVFrameSideData* data = av_frame_get_side_data(&frame, AV_FRAME_DATA_CONTENT_LIGHT_LEVEL)) {
        const auto* level = reinterpret_cast<const AVContentLightMetadata*>(data->data);
        if (level->MaxCLL > 0)
            return std::clamp(double(level->MaxCLL), white, pqPeak);
    }
    if (const AVFrameSideData* data =
            av_frame_get_side_data(&frame, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA)) {
        const auto* display = reinterpret_cast<const AVMasteringDisplayMetadata*>(data->data);
        if (display->has_luminance && display->max_luminance.num > 0)
            return std::clamp(av_q2d(display->max_luminance), white, pqPeak);
    }
    return pqPeak;
}

void ScreenLight::follow(const AVFrame& frame)
{
    const Kind kind = kindOf(frame);
    const double peak = peakOf(frame);
    m_isWide = frame.color_primaries == AVCOL_PRI_BT2020 || frame.color_primaries == AVCOL_PRI_UNSPECIFIED;
    if (kind != m_kind || peak != m_peak)
        makeTables(kind, peak);
}

void ScreenLight::makeTables(Kind kind, double peak)
{
    m_kind = kind;
    m_peak = peak;
    if (kind != Kind::Pq && kind != Kind::Hlg)
        return;
    m_light.resize(65536);
    for (std::size_t i = 0; i < m_light.size(); ++i) {
        const double value = static_cast<double>(i) / 65535;
        m_light[i] = static_cast<float>(kind == Kind::Pq ? pqLight(value) / white : hlgLight(value));
    }
    m_system.resize(steps);
    m_curve.resize(steps);
    m_values.resize(steps);
    for (std::size_t i = 0; i < steps; ++i) {
        const double share = std::pow(static_cast<double>(i) / (steps - 1), 2);
        const double light = share * pqPeak;
        m_system[i] = static_cast<float>(std::pow(share, 0.2) * hlgPeak / white);
        m_curve[i] = i == 0 ? 1.0F : static_cast<float>(toneMapped(light, peak) / light);
        m_values[i] = static_cast<std::uint8_t>(std::lround(255 * std::pow(share, 1 / 2.4)));
    }
}

void ScreenLight::encode(const std::uint16_t* from, std::uint8_t* to, int pixels, bool hasAlpha, bool isBgr,
                         int step) const
{
    std::array<std::uint8_t, 3> values{};
    for (int i = 0; i < pixels; ++i, from += hasAlpha ? 4 : 3, to += step) {
        if (m_kind == Kind::Linear)
            encodeLinear(from, values, hasAlpha);
        else
            encodeBright(from, values);
        to[0] = values[isBgr ? 2 : 0];
        to[1] = values[1];
        to[2] = values[isBgr ? 0 : 2];
        if (hasAlpha)
            to[3] = static_cast<std::uint8_t>((from[3] + 128) / 257);
    }
}

void ScreenLight::encodeLinear(const std::uint16_t* from, std::array<std::uint8_t, 3>& to,
                               bool hasAlpha) const
{
    static const std::vector<std::uint8_t> values = makeSrgb();
    const unsigned alpha = hasAlpha ? std::max<unsigned>(1, from[3]) : 65535;
    for (std::size_t i = 0; i < 3; ++i)
        to[i] = values[std::min(65535U, alpha == 65535 ? from[i] : from[i] * 65535U / alpha)];
}

void ScreenLight::encodeBright(const std::uint16_t* from, std::array<std::uint8_t, 3>& to) const
{
    float red = m_light[from[0]], green = m_light[from[1]], blue = m_light[from[2]];
    if (m_kind == Kind::Hlg) {
        const float more = m_system[stepOf(0.2627F * red + 0.6780F * green + 0.0593F * blue, 1)];
        red *= more;
        green *= more;
        blue *= more;
    }
    const float left = m_curve[stepOf(std::max({red, green, blue}), mostLight)];
    red *= left;
    green *= left;
    blue *= left;
    const std::array<float, 3> own{1.6605F * red - 0.5876F * green - 0.0728F * blue,
                                   -0.1246F * red + 1.1329F * green - 0.0083F * blue,
                                   -0.0182F * red - 0.1006F * green + 1.1187F * blue};
    const std::array<float, 3> asIs{red, green, blue};
    for (std::size_t i = 0; i < 3; ++i)
        to[i] = m_values[stepOf(m_isWide ? own[i] : asIs[i], 1)];
}

} // namespace vantrel::ombra
