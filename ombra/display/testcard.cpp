#include "ombra/display/testcard.h"

#include <array>
#include <cairo.h>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <numbers>

extern "C" {
#include <libavutil/imgutils.h>
}

namespace vantrel::ombra {

namespace {

struct Close
{
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* painter) const { cairo_destroy(painter); }
};
using Image = std::unique_ptr<cairo_surface_t, Close>;
using Painter = std::unique_ptr<cairo_t, Close>;

struct Bar
{
    double red, green, blue;
};
constexpr std::array bars = {Bar{1, 1, 1}, Bar{1, 1, 0}, Bar{0, 1, 1}, Bar{0, 1, 0},
                             Bar{1, 0, 1}, Bar{1, 0, 0}, Bar{0, 0, 1}, Bar{0, 0, 0}};
constexpr double barsShare = 0.12; // of the height, each of the two rows

/// Colours above, and below them grey from black to white, each in as many steps.
void paintBars(cairo_t* to, double width, double height)
{
    const double step = width / bars.size();
    const double row = height * barsShare;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const double left = std::floor(static_cast<double>(i) * step);
        const double right = std::floor(static_cast<double>(i + 1) * step);
        cairo_set_source_rgb(to, bars[i].red, bars[i].green, bars[i].blue);
        cairo_rectangle(to, left, height - 2 * row, right - left, row);
        cairo_fill(to);
        const double grey = static_cast<double>(i) / (bars.size() - 1);
        cairo_set_source_rgb(to, grey, grey, grey);
        cairo_rectangle(to, left, height - row, right - left, row);
        cairo_fill(to);
    }
}

/// A line along each edge, of which nothing may be missing, and the middle.
void paintLines(cairo_t* to, double width, double height)
{
    cairo_set_source_rgb(to, 1, 1, 1);
    cairo_set_line_width(to, 1);
    cairo_rectangle(to, 0.5, 0.5, width - 1, height - 1);
    cairo_stroke(to);
    cairo_set_line_width(to, std::max(1.0, height / 360));
    cairo_arc(to, width / 2, height * (1 - 2 * barsShare) / 2, height * 0.36, 0, 2 * std::numbers::pi);
    cairo_stroke(to);
}

/// In the middle, around that height; as large as asked for, or as there is room.
void paintText(cairo_t* to, const std::string& text, double centre, double size, double width)
{
    cairo_set_font_size(to, size);
    cairo_text_extents_t extents;
    cairo_text_extents(to, text.c_str(), &extents);
    if (extents.width > width * 0.9) {
        cairo_set_font_size(to, size * width * 0.9 / extents.width);
        cairo_text_extents(to, text.c_str(), &extents);
    }
    cairo_move_to(to, (width - extents.width) / 2 - extents.x_bearing,
                  centre - extents.height / 2 - extents.y_bearing);
    cairo_show_text(to, text.c_str());
}

std::string modeText(int width, int height, double rate)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%d x %d, %.5g Hz", width, height, std::round(rate * 100) / 100);
    return text.data();
}

/// From 32 bits a pixel in the machine's own order.
Ref<DecodedPicture> toPicture(cairo_surface_t* image, int width, int height)
{
    cairo_surface_flush(image);
    const AvPtr<AVFrame> frame(av_frame_alloc());
    if (!frame)
        return nullptr;
    frame->format = AV_PIX_FMT_BGR0;
    frame->width = width;
    frame->height = height;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    const std::uint8_t* const lines[4] = {cairo_image_surface_get_data(image)};
    const int strides[4] = {cairo_image_surface_get_stride(image)};
    av_image_copy(frame->data, frame->linesize, const_cast<const std::uint8_t**>(lines), strides,
                  AV_PIX_FMT_BGR0, width, height);
    return makePicture(*frame, 0, {1, 1});
}

} // namespace

Ref<DecodedPicture> paintTestCard(const TestCard& card, int width, int height, double rate)
{
    const Image image(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
    if (cairo_surface_status(image.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    const Painter painter(cairo_create(image.get()));
    cairo_t* to = painter.get();
    cairo_set_source_rgb(to, 0.09, 0.11, 0.13);
    cairo_paint(to);
    paintBars(to, width, height);
    paintLines(to, width, height);
    cairo_set_source_rgb(to, 1, 1, 1);
    cairo_select_font_face(to, "Inter", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    paintText(to, std::to_string(card.number), height * 0.28, height * 0.36, width);
    paintText(to, card.name, height * 0.51, height * 0.06, width);
    cairo_select_font_face(to, "Inter", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    paintText(to, modeText(width, height, rate), height * 0.61, height * 0.05, width);
    return toPicture(image.get(), width, height);
}

} // namespace vantrel::ombra
