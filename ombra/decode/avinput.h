#pragma once

#include "ombra/decode/avhandles.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::ombra {

class GraphicsCard;

/// An opened media file and its stream of pictures or sound. It reads that one file only: what a play list or
/// a reference inside it names is refused. One thread at a time.
class AvInput
{
public:
    enum class Read { Pictures, Sound }; // of files that have both

    /// Null, and the reason, for what cannot be opened. The flag, which must outlive the input, ends blocked
    /// calls.
    static std::unique_ptr<AvInput> open(const std::filesystem::path& file, const std::atomic<bool>& stop,
                                         std::string* error, Read read = Read::Pictures);

    AVFormatContext* format() const { return m_format.get(); }
    AVStream* video() const { return m_video; } // null without pictures; a cover picture is none
    AVStream* audio() const { return m_audio; }
    /// All streams of sound, in the file's order.
    std::vector<AVStream*> sounds() const;
    /// Reads that one of them in place of the best; false where there is none.
    bool chooseSound(std::size_t index);
    bool isStill() const;
    bool stopped() const { return m_stop.load(std::memory_order_relaxed); }

    double fps() const;       // of the pictures, 25 where nothing tells
    double duration() const;  // seconds, of the pictures where they have one
    int quarterTurns() const; // clockwise, by which the pictures are to be turned

    /// A decoder for a stream, by a graphics card where one is given and does it; null, and the reason, where
    /// there is none.
    AvPtr<AVCodecContext> openDecoder(AVStream* stream, std::string* error,
                                      GraphicsCard* card = nullptr) const;
    /// One more packet of the stream for its decoder, or the word that there are no more, which sets
    /// draining; false when it has both had, and where nothing more can be read. Each packet is shown to
    /// before first, and goesOn asked where the decoder refuses one, with its code.
    bool feedDecoder(AVCodecContext* decoder, const AVStream* stream, AVPacket* packet, bool& draining,
                     const std::function<void(const AVPacket&)>& before = {},
                     const std::function<bool(int)>& goesOn = {}) const;

private:
    explicit AvInput(const std::atomic<bool>& stop)
        : m_stop(stop)
    {
    }

    /// Where the format context finds the one URL that it may open, and the library's way to open it.
    struct Gate
    {
        std::string url;
        int (*open)(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) = nullptr;
    };
    static int openOnlyOwn(AVFormatContext* context, AVIOContext** out, const char* url, int flags,
                           AVDictionary** options);

    const std::atomic<bool>& m_stop;
    Gate m_gate;
    AvPtr<AVFormatContext> m_format;
    AVStream* m_video = nullptr;
    AVStream* m_audio = nullptr;
};

} // namespace vantrel::ombra
