#include "ombra/display/processorpainter.h"

#include "ombra/decode/framescaler.h"

#include <SDL.h>
#include <algorithm>
#include <cmath>
#include <vector>

namespace vantrel::ombra {

namespace {

constexpr std::size_t layersAtMost = 4;
constexpr unsigned whole = 1 << 15; // of a share

using Color = std::array<float, 3>;

std::uint32_t pixelOf(const Color& color)
{
    std::uint32_t pixel = 0xff;
    for (const float part : color)
        pixel = pixel << 8 | static_cast<std::uint32_t>(std::lround(std::clamp(part, 0.0f, 1.0f) * 255));
    return pixel;
}

/// What pixels are added up in: their values, or the light that a screen makes of them. Of 16 bits.
class Scale
{
public:
    explicit Scale(double gamma)
        : m_values(1 << 16)
    {
        for (std::size_t i = 0; i < m_light.size(); ++i)
            m_light[i] = static_cast<std::uint32_t>(std::lround(std::pow(double(i) / 255, gamma) * 65535));
        for (std::size_t i = 0; i < m_values.size(); ++i)
            m_values[i] =
                static_cast<std::uint8_t>(std::lround(std::pow(double(i) / 65535, 1 / gamma) * 255));
    }
    std::uint32_t light(std::uint8_t value) const { return m_light[value]; }
    std::uint8_t value(std::uint32_t sum) const { return m_values[std::min(sum / whole, 65535u)]; }

private:
    std::array<std::uint32_t, 256> m_light{};
    std::vector<std::uint8_t> m_values;
};

/// Of what a window, or a layer for itself, shows: lines of pixels one below the other.
struct Area
{
    std::uint8_t* pixels;
    int bytesPerLine, width, height;

    void fill(int x0, int y0, int x1, int y1, std::uint32_t pixel) const
    {
        for (int y = y0; y < y1; ++y) {
            auto* line =
                reinterpret_cast<std::uint32_t*>(pixels + static_cast<std::ptrdiff_t>(y) * bytesPerLine);
            std::fill(line + x0, line + x1, pixel);
        }
    }
};

class ProcessorPainter : public Painter
{
public:
    explicit ProcessorPainter(SDL_Window* window)
        : m_window(window)
    {
    }
    ~ProcessorPainter() override { SDL_FreeSurface(m_own); }

    bool paint(const ShownMoment& moment, const Ground& ground) override
    {
        SDL_Surface* surface = surfaceToPaint();
        if (!surface)
            return false;
        const Area area{static_cast<std::uint8_t*>(surface->pixels), surface->pitch, surface->w, surface->h};
        const std::size_t count = std::min(moment.layers.size(), layersAtMost);
        if (count == 1 && moment.layers.front().share >= 1)
            paintLayer(m_layers[0].scaler, moment.layers.front(), ground, area);
        else if (count > 0)
            paintMixed(moment, count, ground, area);
        else
            area.fill(0, 0, area.width, area.height, pixelOf(ground.dimmed(1 - moment.dipped)));
        return true;
    }

    void swap() override
    {
        if (m_own)
            SDL_BlitSurface(m_own, nullptr, surfaceOfWindow(), nullptr);
        SDL_UpdateWindowSurface(m_window);
    }

private:
    /// A layer of a mixture, and what its pixels are of.
    struct Layer
    {
        FrameScaler scaler{};
        ShownMoment::Layer of{};
        Ground ground{};
        int width = 0, height = 0;
        std::vector<std::uint8_t> pixels{};
    };

    SDL_Surface* surfaceOfWindow() const
    {
        const std::lock_guard lock(windowPixels());
        return SDL_GetWindowSurface(m_window);
    }

    /// The window's own, or one that is turned into such where those have other values.
    SDL_Surface* surfaceToPaint()
    {
        SDL_Surface* surface = surfaceOfWindow();
        const bool serves = surface && (surface->format->format == SDL_PIXELFORMAT_RGB888 ||
                                        surface->format->format == SDL_PIXELFORMAT_ARGB8888);
        const bool fits = m_own && surface && m_own->w == surface->w && m_own->h == surface->h;
        if (m_own && (serves || !fits)) {
            SDL_FreeSurface(m_own);
            m_own = nullptr;
        }
        if (surface && !serves && !m_own)
            m_own = SDL_CreateRGBSurfaceWithFormat(0, surface->w, surface->h, 32, SDL_PIXELFORMAT_RGB888);
        return serves ? surface : m_own;
    }

    static void paintLayer(FrameScaler& scaler, const ShownMoment::Layer& layer, const Ground& ground,
                           const Area& area)
    {
        const DecodedPicture& picture = *layer.image;
        const Placement at = place({.width = area.width,
                                    .height = area.height,
                                    .scaling = layer.scaling,
                                    .outputWidth = area.width,
                                    .outputHeight = area.height},
                                   picture.uprightWidth, picture.uprightHeight);
        const std::uint32_t pixel = pixelOf(picture.frame ? ground.color : Color{});
        // What shows through is all of it where nobody knows, or else what the picture leaves free.
        if (!picture.frame || picture.hasAlpha())
            area.fill(0, 0, area.width, area.height, pixel);
        else
            fillAround(area, at, pixel);
        const PixelTarget target{PixelTarget::Order::Bgrx, area.pixels, area.bytesPerLine};
        if (picture.frame && !scaler.draw(picture, at, target, FrameScaler::Care::Exact))
            area.fill(0, 0, area.width, area.height, pixel);
    }

    static void fillAround(const Area& area, const Placement& at, std::uint32_t pixel)
    {
        area.fill(0, 0, area.width, at.y0, pixel);
        area.fill(0, at.y0, at.x0, at.y1, pixel);
        area.fill(at.x1, at.y0, area.width, at.y1, pixel);
        area.fill(0, at.y1, area.width, area.height, pixel);
    }

    /// Each layer by itself first, where that is not done yet, then all of them and the ground by their
    /// shares.
    void paintMixed(const ShownMoment& moment, std::size_t count, const Ground& ground, const Area& area)
    {
        std::array<unsigned, layersAtMost> shares{};
        std::array<const std::uint8_t*, layersAtMost> pixels{};
        double left = 1 - moment.dipped;
        for (std::size_t i = 0; i < count; ++i) {
            const ShownMoment::Layer& layer = moment.layers[i];
            shares[i] = static_cast<unsigned>(std::lround(std::clamp(layer.share, 0.0, 1.0) * whole));
            left -= layer.share;
            pixels[i] = drawn(m_layers[i], layer, ground, area);
        }
        std::array<unsigned, 4> rest{}; // blue, green, red, and what nobody reads
        for (std::size_t i = 0; i < 3; ++i) {
            const auto value =
                static_cast<std::uint8_t>(std::lround(std::clamp(ground.color[2 - i], 0.0f, 1.0f) * 255));
            rest[i] = static_cast<unsigned>(std::lround(std::clamp(left, 0.0, 1.0) * whole)) *
                      lightOf(value, ground);
        }
        const std::size_t bytes = static_cast<std::size_t>(area.width) * 4;
        m_sums.resize(bytes);
        for (int y = 0; y < area.height; ++y) {
            for (std::size_t i = 0; i < bytes; ++i)
                m_sums[i] = rest[i % 4] + whole / 2;
            for (std::size_t layer = 0; layer < count; ++layer)
                addLine(pixels[layer] + static_cast<std::size_t>(y) * bytes, shares[layer],
                        ground.mixesLight);
            finishLine(area.pixels + static_cast<std::ptrdiff_t>(y) * area.bytesPerLine, ground.mixesLight);
        }
    }

    unsigned lightOf(std::uint8_t value, const Ground& ground) const
    {
        return ground.mixesLight ? m_scale.light(value) : value;
    }

    void addLine(const std::uint8_t* from, unsigned share, bool mixesLight)
    {
        std::uint32_t* const sums = m_sums.data();
        const std::size_t count = m_sums.size();
        for (std::size_t i = 0; mixesLight && i < count; ++i)
            sums[i] += m_scale.light(from[i]) * share;
        for (std::size_t i = 0; !mixesLight && i < count; ++i)
            sums[i] += from[i] * share;
    }

    void finishLine(std::uint8_t* to, bool mixesLight) const
    {
        const std::uint32_t* const sums = m_sums.data();
        const std::size_t count = m_sums.size();
        for (std::size_t i = 0; mixesLight && i < count; ++i)
            to[i] = m_scale.value(sums[i]);
        for (std::size_t i = 0; !mixesLight && i < count; ++i)
            to[i] = static_cast<std::uint8_t>(std::min(sums[i] / whole, 255u));
    }

    static const std::uint8_t* drawn(Layer& known, const ShownMoment::Layer& layer, const Ground& ground,
                                     const Area& area)
    {
        if (known.of.image != layer.image || known.of.scaling != layer.scaling || known.ground != ground ||
            known.width != area.width || known.height != area.height) {
            known.pixels.resize(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height) *
                                4);
            known.width = area.width;
            known.height = area.height;
            known.ground = ground;
            known.of = layer;
            paintLayer(known.scaler, layer, ground,
                       {known.pixels.data(), area.width * 4, area.width, area.height});
        }
        return known.pixels.data();
    }

    const Scale m_scale{screenGamma};
    SDL_Window* const m_window;
    SDL_Surface* m_own = nullptr;
    std::array<Layer, layersAtMost> m_layers;
    std::vector<std::uint32_t> m_sums; // of a line
};

} // namespace

std::mutex& windowPixels()
{
    static std::mutex mutex;
    return mutex;
}

std::unique_ptr<Painter> makeProcessorPainter(SDL_Window* window)
{
    return std::make_unique<ProcessorPainter>(window);
}

} // namespace vantrel::ombra
