#pragma once

#include "ombra/decode/framescaler.h"
#include "ombra/engine/player.h"
#include "tarn/preview/frame.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace vantrel::ombra {

/// Makes the pictures of the previews, on a thread of its own, so that no display waits for them: the pixels
/// of what was decoded, mixed as it is on air. Of each playback it makes the newest, and what has not changed
/// is sent again a few times a second. Any thread.
class PreviewMaker
{
public:
    PreviewMaker();
    ~PreviewMaker();
    PreviewMaker(const PreviewMaker&) = delete;

    /// After this returns the sink before is not called any more. isWanted: whether anybody looks; nothing is
    /// made for nobody.
    void setSink(std::function<void(PreviewFrame)> sink, std::function<bool()> isWanted);

    struct Moment
    {
        std::vector<Player::Moment::Layer> layers; // the lowest first; at least one
        Canvas canvas;                             // its scaling is that of the layers
        friend bool operator==(const Moment&, const Moment&) = default;
    };
    /// now: seconds of the mixing clock.
    void show(const std::string& playback, Moment moment, double now);

private:
    /// A picture as it was drawn last, and what draws it.
    struct Drawn
    {
        Ref<DecodedPicture> image;
        Canvas canvas;
        Ref<Surface> surface;
        FrameScaler scaler{};
    };
    struct Source
    {
        std::optional<Moment> moment; // sent, or about to be
        double sentAt = 0;            // seconds of the mixing clock
        long long time = 0;           // nanoseconds since 1970
        bool isDue = false;
        // Of the thread:
        std::vector<Drawn> drawn{};
        std::optional<Moment> mixed{};
        Ref<Surface> mixture{};
    };

    void run();
    static void draw(Source& source, const Moment& moment);
    static const Ref<Surface>& drawn(std::vector<Drawn>& drawn, std::size_t index, const Canvas& canvas,
                                     const Ref<DecodedPicture>& image);

    std::mutex m_sinkMutex;
    std::function<void(PreviewFrame)> m_sink;
    std::function<bool()> m_isWanted;

    std::mutex m_mutex;
    std::condition_variable m_work;
    std::map<std::string, Source> m_sources; // none of them goes
    bool m_stop = false;
    std::thread m_thread; // last: it uses all of the above
};

} // namespace vantrel::ombra
