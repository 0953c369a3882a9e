#include "ombra/engine/previewmaker.h"

#include "ombra/engine/mix.h"

#include <algorithm>
#include <chrono>

namespace vantrel::ombra {

namespace {

constexpr double repeatAfter = 0.24; // seconds after which what is unchanged is sent again

long long wallTime()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

} // namespace

PreviewMaker::PreviewMaker()
    : m_thread([this] { run(); })
{
}

PreviewMaker::~PreviewMaker()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_work.notify_all();
    m_thread.join();
}

void PreviewMaker::setSink(std::function<void(PreviewFrame)> sink, std::function<bool()> isWanted)
{
    const std::lock_guard lock(m_sinkMutex);
    m_sink = std::move(sink);
    m_isWanted = std::move(isWanted);
}

void PreviewMaker::show(const std::string& playback, Moment moment, double now)
{
    {
        const std::lock_guard lock(m_mutex);
        Source& source = m_sources[playback];
        if (source.moment == moment && now < source.sentAt + repeatAfter)
            return;
        source.moment = std::move(moment);
        source.sentAt = now;
        source.time = wallTime();
        source.isDue = true;
    }
    m_work.notify_all();
}

void PreviewMaker::run()
{
    std::unique_lock lock(m_mutex);
    const auto isDue = [](const auto& named) { return named.second.isDue; };
    for (;;) {
        m_work.wait(lock, [&] { return m_stop || std::ranges::any_of(m_sources, isDue); });
        if (m_stop)
            return;
        for (auto& [playback, source] : m_sources) {
            if (!std::exchange(source.isDue, false))
                continue;
            const Moment moment = *source.moment;
            const long long time = source.time;
            lock.unlock();
            {
                const std::lock_guard sinkLock(m_sinkMutex);
                if (m_sink && (!m_isWanted || m_isWanted())) {
                    draw(source, moment);
                    m_sink({playback, Frame(source.mixture.get(), time)});
                }
            }
            lock.lock();
        }
    }
}

void PreviewMaker::draw(Source& source, const Moment& moment)
{
    if (source.mixed == moment)
        return;
    const std::size_t count = moment.layers.size();
    source.drawn.resize(std::max(source.drawn.size(), count));
    Ref<Surface> mixture;
    for (std::size_t i = 0; i < count; ++i) {
        const Player::Moment::Layer& layer = moment.layers[i];
        Canvas canvas = moment.canvas;
        canvas.scaling = layer.scaling;
        const Ref<Surface>& surface = drawn(source.drawn, i, canvas, layer.image);
        mixture = i == 0 ? surface : mix(mixture, surface, layer.type, layer.weight);
    }
    source.drawn.resize(count);
    source.mixture = std::move(mixture);
    source.mixed = moment;
}

/// Layers move down when those below them go: what is drawn goes with them.
const Ref<Surface>& PreviewMaker::drawn(std::vector<Drawn>& drawn, std::size_t index, const Canvas& canvas,
                                        const Ref<DecodedPicture>& image)
{
    const auto begin = drawn.begin() + static_cast<std::ptrdiff_t>(index);
    const auto known = std::find_if(begin, drawn.end(), [&](const Drawn& one) {
        return one.surface && one.image == image && one.canvas == canvas;
    });
    if (known != drawn.end()) {
        std::iter_swap(begin, known);
        return begin->surface;
    }
    begin->image = image;
    begin->canvas = canvas;
    begin->surface = image ? begin->scaler.scale(*image, canvas) : blackSurface(canvas);
    return begin->surface;
}

} // namespace vantrel::ombra
