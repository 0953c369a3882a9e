#include "ombra/display/cardpainter.h"

#include "ombra/base/fail.h"
#include "ombra/decode/decodedpicture.h"
#include "ombra/decode/placement.h"
#include "ombra/decode/screenlight.h"
#include "ombra/display/framemap.h"
#include "tarn/log/log.h"

#include <SDL.h>
#include <algorithm>
#include <cmath>
#include <libplacebo/opengl.h>
#include <libplacebo/shaders/custom.h>
#include <span>
#include <vector>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace vantrel::ombra {

namespace {

constexpr std::size_t layersAtMost = 4;
constexpr float darkest = 1e-6F; // cd/m², of screens and pictures: black is black

void tell(void*, pl_log_level level, const char* text)
{
    const LogLevel own = level <= PL_LOG_ERR ? LogLevel::Warning : LogLevel::Debug;
    Log::write(own, "vantrel.display", text);
}

/// What a screen of today shows without a word: the values of the picture as they are.
pl_color_space screenColors()
{
    pl_color_space space = {};
    space.primaries = PL_COLOR_PRIM_BT_709;
    space.transfer = PL_COLOR_TRC_BT_1886;
    space.hdr.min_luma = darkest;
    space.hdr.max_luma = PL_COLOR_SDR_WHITE; // only beside it is the other believed
    return space;
}

/// Values that are made for a screen go there unchanged, whatever its primaries are called; the others are
/// turned into such.
pl_color_space imageColors(pl_color_space told, const AVFrame& frame)
{
    if (pl_color_transfer_is_hdr(told.transfer)) {
        told.hdr = {};
        told.hdr.min_luma = darkest;
        told.hdr.max_luma = static_cast<float>(ScreenLight::peakOf(frame));
        return told;
    }
    const bool isLinear = told.transfer == PL_COLOR_TRC_LINEAR;
    told.hdr = screenColors().hdr;
    return isLinear ? told : screenColors();
}

/// As ScreenLight does it.
pl_color_map_params toneMapping()
{
    pl_color_map_params params = pl_color_map_default_params;
    params.tone_mapping_function = &pl_tone_map_bt2390;
    params.tone_mapping_param = 0.5; // where BT.2390 has its knee
    params.tone_mapping_mode = PL_TONE_MAP_MAX;
    params.gamut_mode = PL_GAMUT_CLIP;
    return params;
}

/// The nearest format that the renderer reads, with the same matrix and range.
AVPixelFormat readableFormat(const AVPixFmtDescriptor& from)
{
    const bool isDeep = from.comp[0].depth > 8;
    if (from.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL))
        return isDeep ? AV_PIX_FMT_RGBA64 : AV_PIX_FMT_RGBA;
    if (from.flags & AV_PIX_FMT_FLAG_ALPHA)
        return isDeep ? AV_PIX_FMT_YUVA444P16 : AV_PIX_FMT_YUVA444P;
    return isDeep ? AV_PIX_FMT_YUV444P16 : AV_PIX_FMT_YUV444P;
}

/// Makes of frames of a format that the renderer does not read such as it does. Keeps scaler and memory
/// between frames of one kind.
class Converter
{
public:
    /// Good until the next one; null where that cannot be.
    const AVFrame* convert(const AVFrame& frame)
    {
        const auto format = static_cast<AVPixelFormat>(frame.format);
        const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
        if (!descriptor || !makeRoom(frame.width, frame.height, readableFormat(*descriptor)))
            return nullptr;
        m_scaler.reset(sws_getCachedContext(m_scaler.release(), frame.width, frame.height, format,
                                            frame.width, frame.height,
                                            static_cast<AVPixelFormat>(m_room->format),
                                            SWS_BILINEAR | SWS_ACCURATE_RND, nullptr, nullptr, nullptr));
        if (!m_scaler || sws_scale(m_scaler.get(), frame.data, frame.linesize, 0, frame.height, m_room->data,
                                   m_room->linesize) <= 0)
            return nullptr;
        m_result.reset(av_frame_clone(m_room.get())); // what it says of itself is that of this frame alone
        return m_result && av_frame_copy_props(m_result.get(), &frame) >= 0 ? m_result.get() : nullptr;
    }

private:
    bool makeRoom(int width, int height, AVPixelFormat format)
    {
        m_result.reset();
        if (m_room && m_room->width == width && m_room->height == height && m_room->format == format)
            return true;
        m_room.reset(av_frame_alloc());
        if (!m_room)
            return false;
        m_room->format = format;
        m_room->width = width;
        m_room->height = height;
        return av_frame_get_buffer(m_room.get(), 0) >= 0 || (m_room.reset(), false);
    }

    AvPtr<SwsContext> m_scaler;
    AvPtr<AVFrame> m_room, m_result;
};

class CardPainter : public Painter
{
public:
    ~CardPainter() override
    {
        for (Source& source : m_sources) {
            if (!m_gl)
                break;
            for (pl_tex& texture : source.textures)
                pl_tex_destroy(gpu(), &texture);
            pl_tex_destroy(gpu(), &source.whole);
        }
        if (m_gl)
            pl_tex_destroy(gpu(), &m_uncut);
        pl_renderer_destroy(&m_renderer);
        pl_dispatch_destroy(&m_dispatch);
        pl_swapchain_destroy(&m_swapchain);
        pl_opengl_destroy(&m_gl);
        pl_log_destroy(&m_log);
    }

    bool open(SDL_Window* window, bool bySoftware, std::string* error)
    {
        m_window = window;
        pl_log_params log = {};
        log.log_cb = tell;
        log.log_level = PL_LOG_WARN;
        m_log = pl_log_create(PL_API_VER, &log);
        pl_opengl_params gl = {};
        gl.allow_software = true;
        m_gl = pl_opengl_create(m_log, &gl);
        if (!m_gl)
            return fail(error, "OpenGL is too old here");
        pl_opengl_swapchain_params swapchain = {};
        swapchain.swap_buffers = [](void* to) { SDL_GL_SwapWindow(static_cast<SDL_Window*>(to)); };
        swapchain.max_swapchain_depth = 1;
        swapchain.priv = window;
        m_swapchain = pl_opengl_create_swapchain(m_gl, &swapchain);
        m_renderer = pl_renderer_create(m_log, gpu());
        m_dispatch = pl_dispatch_create(m_log, gpu());
        m_params = bySoftware ? pl_render_fast_params : pl_render_default_params;
        m_params.sigmoid_params = nullptr;
        m_params.deband_params = nullptr;
        m_params.peak_detect_params = nullptr;
        m_params.dither_params = nullptr;
        m_params.color_map_params = &m_toneMapping;
        m_params.disable_linear_scaling = bySoftware;
        return (m_swapchain && m_renderer && m_dispatch) || fail(error, "OpenGL gives no way to paint here");
    }

    bool paint(const ShownMoment& moment, const Ground& ground) override
    {
        SDL_GL_GetDrawableSize(m_window, &m_width, &m_height);
        pl_swapchain_frame frame;
        if (!pl_swapchain_resize(m_swapchain, &m_width, &m_height) ||
            !pl_swapchain_start_frame(m_swapchain, &frame))
            return false;
        pl_frame target;
        pl_frame_from_swapchain(&target, &frame);
        target.color = screenColors();
        std::copy(ground.color.begin(), ground.color.end(), m_params.background_color);

        const std::size_t count = std::min(moment.layers.size(), layersAtMost);
        if (count == 1 && moment.layers.front().share >= 1)
            paintLayer(0, moment.layers.front(), target);
        else if (count > 0)
            paintMixed(moment, count, ground, target);
        else
            clear(frame.fbo, ground.dimmed(1 - moment.dipped));
        return pl_swapchain_submit_frame(m_swapchain);
    }

    void finish() override { pl_gpu_finish(gpu()); }
    void swap() override { pl_swapchain_swap_buffers(m_swapchain); }

private:
    /// A layer's picture as it lies with the graphics card.
    struct Source
    {
        Ref<DecodedPicture> of; // what the textures hold
        std::array<pl_tex, 4> textures{};
        Converter converter{};
        pl_frame image{};
        pl_tex whole = nullptr; // of the size of the window, for mixing
    };

    pl_gpu gpu() const { return m_gl->gpu; }

    void clear(pl_tex texture, const std::array<float, 3>& color)
    {
        const float rgba[4] = {color[0], color[1], color[2], 1};
        pl_tex_clear(gpu(), texture, rgba);
    }

    /// Puts the picture into textures where it is not there yet.
    bool load(Source& source, const Ref<DecodedPicture>& picture)
    {
        if (source.of == picture)
            return true;
        source.of = nullptr;
        if (!map(source, *picture))
            return false;
        source.of = picture;
        return true;
    }

    bool map(Source& source, const DecodedPicture& picture)
    {
        const AVFrame& frame = *picture.frame;
        const bool isReadable = ombra_can_map(gpu(), static_cast<AVPixelFormat>(frame.format));
        const AVFrame* readable = isReadable ? &frame : source.converter.convert(frame);
        if (!readable || !ombra_map_frame(gpu(), source.textures.data(), readable, &source.image))
            return false;
        source.image.rotation = static_cast<pl_rotation>(picture.quarterTurns);
        if (frame.color_trc == AVCOL_TRC_LINEAR) { // by what is the rule for such: multiplied already
            source.image.color.transfer = PL_COLOR_TRC_LINEAR;
            if (source.image.repr.alpha == PL_ALPHA_INDEPENDENT)
                source.image.repr.alpha = PL_ALPHA_PREMULTIPLIED;
        }
        source.image.color = imageColors(source.image.color, frame);
        return true;
    }

    void paintLayer(std::size_t index, const ShownMoment::Layer& layer, pl_frame target)
    {
        Source& source = m_sources[index];
        if (!layer.image->frame) { // black all over
            clear(target.planes[0].texture, {});
            return;
        }
        if (!load(source, layer.image)) {
            clear(target.planes[0].texture,
                  {m_params.background_color[0], m_params.background_color[1], m_params.background_color[2]});
            return;
        }
        if (source.image.color.transfer == PL_COLOR_TRC_LINEAR)
            target.color.transfer = PL_COLOR_TRC_SRGB;
        const Placement at = place({.width = m_width,
                                    .height = m_height,
                                    .scaling = layer.scaling,
                                    .outputWidth = m_width,
                                    .outputHeight = m_height},
                                   layer.image->uprightWidth, layer.image->uprightHeight);
        if (isCutWithinPixels(at, source.image) && paintCut(source, at, target))
            return;
        target.crop = {float(at.left), float(at.top), float(at.left + at.width), float(at.top + at.height)};
        pl_render_image(m_renderer, &source.image, &target, &m_params);
    }

    /// The renderer begins with a whole pixel of the picture where one is cut.
    static bool isCutWithinPixels(const Placement& at, const pl_frame& image)
    {
        const pl_tex_params& first = image.planes[0].texture->params;
        const auto isWhole = [](int cut, int own, int size) { return cut <= 0 || cut * own % size == 0; };
        const bool isTurned = image.rotation % 2;
        return !isWhole(-at.left, isTurned ? first.h : first.w, at.width) ||
               !isWhole(-at.top, isTurned ? first.w : first.h, at.height);
    }

    /// By pixels of the window, out of the whole picture. False where the card has no room for that.
    bool paintCut(const Source& source, const Placement& at, pl_frame target)
    {
        pl_tex const window = target.planes[0].texture;
        const pl_tex_params params = layerParams(at.width, at.height);
        if (!pl_tex_recreate(gpu(), &m_uncut, &params))
            return false;
        target.planes[0].texture = m_uncut;
        target.crop = {0, 0, float(at.width), float(at.height)};
        if (!pl_render_image(m_renderer, &source.image, &target, &m_params))
            return false;
        clear(window,
              {m_params.background_color[0], m_params.background_color[1], m_params.background_color[2]});
        const bool isFlipped = target.planes[0].flipped; // both of them
        const std::array<float, 2> shift{float(at.left),
                                         float(isFlipped ? m_height - at.height - at.top : at.top)};
        pl_shader_desc texture = {};
        texture.desc.name = "uncut";
        texture.desc.type = PL_DESC_SAMPLED_TEX;
        texture.binding.object = m_uncut;
        pl_shader_var variable = {};
        variable.var = pl_var_vec2("shift");
        variable.data = shift.data();
        variable.dynamic = true;
        const int y0 = isFlipped ? m_height - at.y1 : at.y0;
        return shade("color = texelFetch(uncut, ivec2(gl_FragCoord.xy - shift), 0);\n", {&texture, 1},
                     {&variable, 1}, window, {at.x0, y0, at.x1, y0 + at.y1 - at.y0});
    }

    /// Of a picture in between.
    pl_tex_params layerParams(int width, int height) const
    {
        const pl_fmt format = pl_find_fmt(gpu(), PL_FMT_UNORM, 4, 16, 16, PL_FMT_CAP_RENDERABLE);
        pl_tex_params params = {};
        params.w = width;
        params.h = height;
        params.format = format ? format : pl_find_named_fmt(gpu(), "rgba8");
        params.sampleable = params.renderable = params.blit_dst = true;
        return params;
    }

    /// Each layer by itself first, then all of them and the ground by their shares.
    void paintMixed(const ShownMoment& moment, std::size_t count, const Ground& ground,
                    const pl_frame& target)
    {
        const pl_tex_params params = layerParams(m_width, m_height);
        std::array<float, 4> shares{};
        std::array<float, 4> rest{0, 0, 0, 1};
        double whole = moment.dipped;
        for (std::size_t i = 0; i < count; ++i) {
            Source& source = m_sources[i];
            if (!pl_tex_recreate(gpu(), &source.whole, &params))
                return;
            pl_frame layer = target;
            layer.planes[0].texture = source.whole;
            paintLayer(i, moment.layers[i], layer);
            shares[i] = static_cast<float>(moment.layers[i].share);
            whole += moment.layers[i].share;
        }
        for (std::size_t i = 0; i < 3; ++i) {
            const float color =
                ground.mixesLight ? std::pow(ground.color[i], float(screenGamma)) : ground.color[i];
            rest[i] = color * static_cast<float>(std::max(0.0, 1 - whole));
        }
        addUp(count, shares, rest, ground.mixesLight, target.planes[0].texture);
    }

    void addUp(std::size_t count, const std::array<float, 4>& shares, const std::array<float, 4>& rest,
               bool mixesLight, pl_tex target)
    {
        static constexpr std::array names = {"layer0", "layer1", "layer2", "layer3"};
        const std::string gamma = std::to_string(screenGamma);
        std::string body = "color = rest;\n";
        std::vector<pl_shader_desc> textures(count);
        for (std::size_t i = 0; i < count; ++i) {
            textures[i].desc.name = names[i];
            textures[i].desc.type = PL_DESC_SAMPLED_TEX;
            textures[i].binding.object = m_sources[i].whole;
            const std::string number = std::to_string(i);
            const std::string value = "texelFetch(layer" + number + ", ivec2(gl_FragCoord.xy), 0).rgb";
            body += "color.rgb += shares[" + number + "] * " +
                    (mixesLight ? "pow(" + value + ", vec3(" + gamma + "))" : value) + ";\n";
        }
        if (mixesLight)
            body += "color.rgb = pow(color.rgb, vec3(1.0 / " + gamma + "));\n";
        std::array<pl_shader_var, 2> variables{};
        variables[0].var = pl_var_vec4("shares");
        variables[0].data = shares.data();
        variables[0].dynamic = true;
        variables[1].var = pl_var_vec4("rest");
        variables[1].data = rest.data();
        variables[1].dynamic = true;
        shade(body, textures, variables, target, {0, 0, m_width, m_height});
    }

    bool shade(const std::string& body, std::span<pl_shader_desc> textures,
               std::span<pl_shader_var> variables, pl_tex target, const pl_rect2d& area)
    {
        pl_custom_shader custom = {};
        custom.body = body.c_str();
        custom.input = PL_SHADER_SIG_NONE;
        custom.output = PL_SHADER_SIG_COLOR;
        custom.descriptors = textures.data();
        custom.num_descriptors = static_cast<int>(textures.size());
        custom.variables = variables.data();
        custom.num_variables = static_cast<int>(variables.size());
        pl_shader shader = pl_dispatch_begin(m_dispatch);
        if (!pl_shader_custom(shader, &custom)) {
            pl_dispatch_abort(m_dispatch, &shader);
            return false;
        }
        pl_dispatch_params params = {};
        params.shader = &shader;
        params.target = target;
        params.rect = area;
        return pl_dispatch_finish(m_dispatch, &params);
    }

    SDL_Window* m_window = nullptr;
    pl_log m_log = nullptr;
    pl_opengl m_gl = nullptr;
    pl_swapchain m_swapchain = nullptr;
    pl_renderer m_renderer = nullptr;
    pl_dispatch m_dispatch = nullptr;
    pl_render_params m_params{};
    const pl_color_map_params m_toneMapping = toneMapping();
    std::array<Source, layersAtMost> m_sources;
    pl_tex m_uncut = nullptr;
    int m_width = 0, m_height = 0; // pixels of the window
};

} // namespace

std::unique_ptr<Painter> makeCardPainter(SDL_Window* window, bool bySoftware, std::string* error)
{
    auto painter = std::make_unique<CardPainter>();
    return painter->open(window, bySoftware, error) ? std::move(painter) : nullptr;
}

} // namespace vantrel::ombra
