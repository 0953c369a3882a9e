#pragma once

#include "tarn/net/tcpclient.h"
#include "tarn/preview/frame.h"

#include <functional>

namespace vantrel {

/// Reads the preview stream (format: tarn/preview/previewwire.h). A reader that falls behind gets the newest
/// frame of each source, stream and format, never a queue.
class PreviewClient : public TcpClient
{
public:
    PreviewClient();
    ~PreviewClient() override;

    /// Called on the thread inside run() when frames can be polled.
    void addFrameCallback(std::function<void()> callback);
    /// Reads until the connection ends; returns at once when there is none.
    void run();
    /// True when a frame was taken; waits at most timeoutMs.
    bool pollFrame(PreviewFrame& out, unsigned int timeoutMs);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantrel
