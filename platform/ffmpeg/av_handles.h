/// Owners of what FFmpeg's libraries hand out. Private to platform/ffmpeg.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/vorbis_parser.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <memory>

namespace zv {

struct AvDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVIOContext* io) const { avio_closep(&io); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(SwrContext* context) const { swr_free(&context); }
};

using IoHandle = std::unique_ptr<AVIOContext, AvDeleter>;
using FormatHandle = std::unique_ptr<AVFormatContext, AvDeleter>;
using CodecHandle = std::unique_ptr<AVCodecContext, AvDeleter>;
using PacketHandle = std::unique_ptr<AVPacket, AvDeleter>;
using FrameHandle = std::unique_ptr<AVFrame, AvDeleter>;
using ResamplerHandle = std::unique_ptr<SwrContext, AvDeleter>;

}  // namespace zv
