/// What packets of Vorbis, Opus and FLAC tell of themselves without being decoded. Private to platform/ffmpeg.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/ffmpeg/av_handles.h"

namespace zv {

/// One stream's codec, from its header packets or from a container that holds them.
class XiphCodec {
  public:
    /// Nothing for a first packet of another kind.
    static std::optional<XiphCodec> begin(std::span<const std::uint8_t> firstPacket);

    /// Nothing where packets cannot be counted by their first bytes.
    static std::optional<XiphCodec> of(const AVCodecParameters& parameters);

    /// Takes one packet more. True for a header, false for the first packet of sound.
    bool takeHeader(std::span<const std::uint8_t> packet);
    /// Parameters to open the codec with, once all headers are there; null where they make no sense.
    std::shared_ptr<const AVCodecParameters> parameters();

    AVCodecID id() const { return id_; }
    std::uint32_t skip() const { return skip_; }  ///< frames at the start that are encoder delay
    /// Frames that the next packet gives, by its first bytes.
    std::int64_t framesOf(std::span<const std::uint8_t> head);
    /// The next packet has none before it.
    void restart() { first_ = true; }

    static constexpr std::size_t headBytes = 16;  ///< of a packet, enough for framesOf()

  private:
    bool prepareVorbis(const AVCodecParameters& parameters);

    AVCodecID id_ = AV_CODEC_ID_NONE;
    std::uint32_t rate_ = 0, channels_ = 0, bits_ = 0, skip_ = 0;
    std::vector<std::vector<std::uint8_t>> headers_;
    std::shared_ptr<AVVorbisParseContext> vorbis_;
    bool first_ = true;
};

}  // namespace zv
