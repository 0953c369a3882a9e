#pragma once

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

namespace vantrel::ombra {

struct AvDeleter
{
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(SwrContext* context) const { swr_free(&context); }
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

template <typename T>
using AvPtr = std::unique_ptr<T, AvDeleter>;

/// The library's text for one of its error codes.
std::string avErrorText(int code);

/// Sends the library's own log lines to Log, errors as warnings and the rest as debug lines. Idempotent.
void routeAvLog();

} // namespace vantrel::ombra
