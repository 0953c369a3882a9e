#pragma once

struct AVCodecContext;
struct AVFrame;

namespace vantrel::ombra {

/// Decoding by the graphics card (VA-API), where that is wanted and the machine has one. What the card does
/// not decode the processor does, and all of it once the card fails: the log says so, once. Any thread.
class GraphicsCard
{
public:
    /// Before the first medium is opened.
    static void allow();
    /// Has a decoder try it, before it is opened.
    static void offerTo(AVCodecContext& decoder);
    /// Brings a picture that the card holds into memory. False where that fails: the card is not asked again.
    static bool fetch(AVFrame& frame);
};

} // namespace vantrel::ombra
