#pragma once

#include <atomic>
#include <memory>
#include <string>

struct AVCodecContext;
struct AVFrame;

namespace vantrel::ombra {

/// Decodes in a decoder's place.
class DecodingDevice
{
public:
    virtual ~DecodingDevice() = default;
    /// Has a decoder, which is not open yet, try it. Whether it then decodes is told to GraphicsCard::note.
    virtual void offerTo(AVCodecContext& decoder) = 0;
    /// Brings a picture that it holds into memory, and leaves others alone; a code of the library.
    virtual int fetch(AVFrame& frame) = 0;
};

/// Decoding of one medium by the graphics card (VA-API), where the machine has one. What the card does not
/// decode the processor does, and the whole medium from where the card fails with it on, also when it is
/// opened again: the log says so, once. Outlives the decoders that it is offered to. One thread at a time.
class GraphicsCard
{
public:
    /// Before the first medium is opened; nothing is offered to a card before.
    static void allow();
    static void allow(std::unique_ptr<DecodingDevice> device);

    explicit GraphicsCard(std::string medium);
    GraphicsCard(const GraphicsCard&) = delete;
    GraphicsCard& operator=(const GraphicsCard&) = delete;
    /// Has a decoder try it, before it is opened.
    void offerTo(AVCodecContext& decoder);
    /// Whether a decoder that it was offered to goes by it. Any thread of that decoder.
    static void note(const AVCodecContext& decoder, bool isByCard);
    /// Brings a picture that the card holds into memory. False where that fails.
    bool fetch(AVFrame& frame);
    /// What a decoder by the card came to, or what came of it. Nothing where the processor decodes.
    void fail(const std::string& why);
    /// From then on another decoder is needed, which it is not offered to.
    bool hasFailed() const { return m_hasFailed; }

private:
    const std::string m_medium, m_key;
    std::shared_ptr<DecodingDevice> m_device; // that it was offered by
    std::atomic<bool> m_decodes{false};
    bool m_hasFailed = false;
};

} // namespace vantrel::ombra
