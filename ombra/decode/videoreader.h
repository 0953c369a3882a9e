#pragma once

#include "ombra/decode/avinput.h"
#include "ombra/decode/graphicscard.h"
#include "ombra/decode/picturereader.h"
#include "tarn/media/mediaenums.h"

namespace vantrel::ombra {

/// The pictures of a video file, found exactly: a seek goes to a key picture before the time and decodes from
/// there. Damaged packets are skipped. Where a graphics card decodes and fails the processor goes on, with
/// the very picture that was asked for.
class VideoReader : public PictureReader
{
public:
    /// Who decodes: for a look at one picture a card takes longer than the processor, and threads that give
    /// way would hold it up for others.
    enum class Decoding { Usual, ByProcessor };

    /// Null, and the reason, when the input's pictures have no decoder.
    static std::unique_ptr<VideoReader> open(std::unique_ptr<AvInput> input, std::string* error,
                                             Decoding decoding = Decoding::Usual);

    MediaType type() const override
    {
        return m_input->isStill() ? MediaType::ImageFile : MediaType::VideoFile;
    }
    double fps() const override { return m_fps; }
    double duration() const override { return m_duration; }
    bool seek(double time, Picture& out) override;
    bool next(Picture& out) override;
    bool catchUp(double time, Picture& out) override;

private:
    VideoReader(std::unique_ptr<AvInput> input, Decoding decoding);

    /// By the card, unless that has failed.
    bool openDecoder(std::string* error);
    bool isCardLost() const { return m_decoder->opaque && m_card.hasFailed(); }
    bool leaveCard();
    bool find(double time, Picture& out);
    bool goOn(Picture& out);

    /// Decodes into m_ahead and sets its time; false at the end or when stopped.
    bool decodeAhead();
    bool feedDecoder();
    bool isSurvived(int error);
    bool reposition(double time);
    void rewind();
    /// From m_ahead on, the last picture at or before the time, into m_current.
    bool walkTo(double time);
    bool walkFromKey(double time);
    void stepAhead();
    bool isSkipped(const AVPacket& packet) const;
    bool deliver(Picture& out);

    std::unique_ptr<AvInput> m_input;
    const Decoding m_decoding;
    GraphicsCard m_card;
    AvPtr<AVCodecContext> m_decoder;
    AvPtr<AVPacket> m_packet;
    AvPtr<AVFrame> m_current; // the one delivered last
    AvPtr<AVFrame> m_ahead;   // the one after it, where it is decoded already
    double m_currentTime = 0;
    double m_aheadTime = 0;
    bool m_hasCurrent = false;
    bool m_hasAhead = false;
    bool m_draining = false;
    bool m_atStart = true;  // nothing is decoded yet
    bool m_untimed = false; // pictures carry no times: count them from the start
    double m_lastTime = -1; // of the picture decoded last
    double m_skipUntil = 0; // seconds; pictures before it are decoded only where others need them
    double m_fps = 25;
    double m_duration = 0;
    std::optional<double> m_start; // of the first picture, seconds of the stream's own clock
    int m_turns = 0;
};

} // namespace vantrel::ombra
