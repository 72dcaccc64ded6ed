/// What a codec makes of packets: interleaved float. Private to platform/ffmpeg.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/ports.h"
#include "platform/ffmpeg/av_handles.h"

namespace zv {

/// Silences FFmpeg's remarks and bounds what it allocates for one thing. Cheap after the first call. [any]
void prepareLibraries();

/// What one packet became.
struct Yield {
    std::size_t frames = 0;               ///< frames of sound
    std::int64_t stamp = AV_NOPTS_VALUE;  ///< of the first of them, in ticks of the stream
    std::uint32_t skip = 0;               ///< frames at its start that are encoder delay
    bool failed = false;                  ///< the codec refused it
};

/// One codec and the conversion to float behind it. Owned and called by one thread at a time.
class PacketDecoder {
  public:
    PacketDecoder() = default;
    PacketDecoder(const PacketDecoder&) = delete;
    PacketDecoder& operator=(const PacketDecoder&) = delete;
    ~PacketDecoder() { av_channel_layout_uninit(&converterLayout_); }

    /// Opens a codec as new, in place of an earlier one. 0 or an AVERROR_ code.
    int open(const AVCodecParameters& parameters, AVRational timeBase);
    /// Forgets what the codec holds. Some keep a little of their state: a start needs open().
    void flush() { avcodec_flush_buffers(codec_.get()); }
    /// Decodes `packet`, or what the codec still holds (null), and appends the sound to `out`.
    Yield decode(const AVPacket* packet, std::vector<float>& out);

    /// Format of what decode() appends: that of the first frame decoded.
    const engine::SoundFormat& format() const { return format_; }
    const AVCodecContext& codec() const { return *codec_; }

  private:
    void appendFrame(const AVFrame& frame, std::vector<float>& out);
    bool prepareConverter(const AVFrame& frame);

    CodecHandle codec_;
    FrameHandle frame_;
    ResamplerHandle converter_;
    AVChannelLayout converterLayout_{};
    AVSampleFormat converterSample_ = AV_SAMPLE_FMT_NONE;
    int converterRate_ = 0;
    engine::SoundFormat format_;
    std::uint32_t bits_ = 0;  ///< of a sample in the file
};

}  // namespace zv
