#pragma once

#include "ombra/decode/avinput.h"
#include "ombra/decode/sound.h"

#include <cstdint>
#include <vector>

namespace vantrel::ombra {

/// One stream of sound of a medium in order, found to the sample: time 0 is where the pictures begin, or the
/// sound where there are none. What is missing in between reads as silence. One thread at a time; calls block
/// while they decode, and the flag given on opening ends them early.
class AudioReader
{
public:
    /// Of an input that reads its sound. Null, and the reason, where that cannot be decoded.
    static std::unique_ptr<AudioReader> open(std::unique_ptr<AvInput> input, std::string* error);

    /// Seconds of sound after the last picture that are the padding of its codec and not meant to be heard.
    static constexpr double padding = 0.1;

    int channels() const { return m_channels; } // 1 to Sound::maxChannels; further ones are left out

    double duration() const; // seconds from time 0 to its end, as the file says; 0 where it does not

    /// What next() reads then begins with the sample of this time, seconds.
    bool seek(double time);
    /// Appends some more samples; false at the end.
    bool next(std::vector<float>& out);

private:
    explicit AudioReader(std::unique_ptr<AvInput> input, AvPtr<AVCodecContext> decoder);

    bool decode();
    bool decodeFrom(double time);
    bool convert();
    bool prepareResampler();
    bool drainResampler();
    void append(const float* samples, int count, int channels);
    std::int64_t startOf(const AVFrame& frame) const;

    std::unique_ptr<AvInput> m_input;
    AvPtr<AVCodecContext> m_decoder;
    AvPtr<AVPacket> m_packet;
    AvPtr<AVFrame> m_frame;
    AvPtr<SwrContext> m_resampler;
    int m_channels = 0;
    double m_origin = 0; // time 0 on the clock of the stream, seconds

    int m_inRate = 0; // what the resampler is made for
    int m_inFormat = -1;
    int m_inChannels = 0;

    std::vector<float> m_converted;
    std::vector<float> m_block;    // decoded and not given out yet
    std::int64_t m_blockStart = 0; // its first sample
    std::int64_t m_decodedTo = -1; // the sample after what is decoded; -1 after a seek
    std::int64_t m_wanted = 0;     // the sample that next() gives out first
    bool m_hasFrame = false;       // m_frame is decoded and not converted
    bool m_draining = false;       // the decoder has had everything
    bool m_drained = false;        // and so has the resampler
};

} // namespace vantrel::ombra
