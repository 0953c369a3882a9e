#pragma once

#include "ombra/decode/picturereader.h"
#include "tarn/media/mediaenums.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace vantrel::ombra {

/// Decodes one medium ahead of its playback on a thread of its own, from start() to stop() or the feed's end.
/// The functions only take and give what is there: none waits for a decoder. Pictures whose time has gone are
/// passed over, so that a medium too heavy for the machine stays with its clock. Any thread.
class PictureFeed
{
public:
    struct Status
    {
        bool opened = false;
        bool failed = false; // it will never have a picture
        bool ended = false;  // the queue holds the last picture of the medium, or it was taken
        double endTime = 0;  // seconds, when that picture ends
        MediaType type = MediaType::Unknown;
        double fps = 0;
        double duration = 0; // seconds; endless for stills
        double load = 0;     // seconds of decoding for a second of pictures, of the last second or so
    };

    /// For pictures from begin (seconds) on. arrived is called on the feed's thread when the first picture
    /// after a seek, or a failure, is there; name stands for the medium in the log.
    PictureFeed(MediaSource source, double begin, std::string name, std::function<void()> arrived,
                PictureOpener open = openReader);
    ~PictureFeed();
    PictureFeed(const PictureFeed&) = delete;
    PictureFeed& operator=(const PictureFeed&) = delete;

    /// Opens the medium and begins to decode; once.
    void start();
    /// Ends that at once, without waiting for it: nothing comes any more. When idle(), letting the feed go
    /// waits for nobody.
    void stop();
    bool idle() const { return m_idle; }

    /// Throws away what is decoded, unless the picture of that time is among it.
    void seek(double time);
    /// Whether the picture of that time is decoded.
    bool holds(double time) const;
    /// The newest picture at or before the time that was not taken yet, older ones are dropped. The first
    /// after a seek comes whatever its time.
    std::optional<Picture> take(double time);
    Status status() const;
    /// Whether the picture after the one taken last is still to be decoded.
    bool isBehind() const;

private:
    void run();
    void decode();
    bool read(std::unique_lock<std::mutex>& lock, PictureReader& reader, std::optional<double> target,
              Picture& out);
    static bool goOn(PictureReader& reader, double time, double clock, Picture& out);
    void noteLoad(double seconds, double ofPictures);
    std::unique_ptr<PictureReader> open(std::unique_lock<std::mutex>& lock);
    static bool isFull(const std::deque<Picture>& pictures);
    void noteBegin(const Picture& picture, bool sought);
    /// From such on as are decoded one after the other, what shows the time; empty where that is not known.
    static std::deque<Picture> from(std::deque<Picture> pictures, double time, bool isToTheEnd);
    void seekAfresh(double time);
    /// What is decoded from the picture of the time on; empty where that is not at hand.
    std::deque<Picture> known(double time) const;
    bool reuse(double time);
    void accept(std::unique_lock<std::mutex>& lock, bool found, Picture picture, bool sought);
    void fail(std::unique_lock<std::mutex>& lock, const std::string& error);

    const MediaSource m_source;
    const std::string m_name;
    const std::function<void()> m_arrived;
    const PictureOpener m_open;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_idle{true}; // the thread holds nothing

    mutable std::mutex m_mutex;
    std::condition_variable m_work;
    std::deque<Picture> m_queue;
    std::optional<Picture> m_taken; // the one taken last, while it lies directly before the queue
    /// The first ones of what was asked for at first, where what is cued begins when it is taken: kept, so
    /// that nobody waits then. m_beginIsWhole: there is no other after them.
    std::deque<Picture> m_begin;
    bool m_beginIsWhole = false, m_beginGrows = false;
    std::optional<double> m_goOnAt; // after those: the reader is elsewhere
    unsigned m_jumps = 0;           // what is read while there is another one is of nobody
    std::optional<double> m_seekTo; // asked for, not begun
    bool m_first = true;            // the next picture is the first after a seek
    double m_clock = 0;             // seconds, asked for last in going on from there
    Status m_status;
    std::thread m_thread; // last: it uses all of the above
};

} // namespace vantrel::ombra
