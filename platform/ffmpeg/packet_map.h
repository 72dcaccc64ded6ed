/// Where each packet of a sound file stands in the decoded sound. Private to platform/ffmpeg.
///
/// One pass over the packets at opening gives the exact length: 2 to 10 ms for three minutes. Where the
/// container stamps its packets to the sample without a break (most do) the stamps themselves are the map;
/// elsewhere (millisecond stamps, stamps that drift) the frames of each packet are counted, from its header
/// where that can be trusted, else by decoding it.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/ffmpeg/media_input.h"

namespace zv {

class PacketMap {
  public:
    /// Surveys the whole of `input`, which stands at its start and is left anywhere. Nothing when there is no
    /// sound in it.
    static std::optional<PacketMap> survey(MediaInput& input);

    /// Exact frames of the decoded sound.
    std::uint64_t length() const { return length_; }
    /// Goes to the packet that holds `frame`, or to one before it. False where only the start can be entered.
    bool enter(MediaInput& input, std::int64_t frame) const;
    /// Goes to the first packet with a codec as new, and reads it. False where it is not found.
    bool enterStart(MediaInput& input) const;
    /// Whether a packet is placed as soon as it is read, and not only after a few more.
    bool placesAtOnce() const { return exactStamps_ || search_ == Search::byte || search_ == Search::place; }
    /// Where sound of stamp `stamp` stands; nothing where stamps are not exact.
    std::optional<std::int64_t> frameOf(std::int64_t stamp) const;

    /// Follows the packets as they are read, and says where each one's sound begins.
    class Walker {
      public:
        explicit Walker(const PacketMap& map) : map_(&map) {}
        /// The next packet is the first of the file.
        void restartAtStart();
        /// The next packet is that to which PacketMap::enter() went for `frame`, or one nearby.
        void restart(std::int64_t frame);
        /// First frame of the sound of `packet`; nothing while it cannot be told which packet it is.
        std::optional<std::int64_t> place(const AVPacket& packet);

      private:
        const PacketMap* map_;
        std::size_t next_ = 0;
        int agreed_ = 0;  ///< packets in a row that came as the map expects
    };

  private:
    struct Mark {
        std::int64_t stamp;
        std::int64_t frame;
        std::int64_t byte;  ///< where it stands in the file, -1 unknown
        int size;
    };
    /// What a packet is recognised by; `place`: it is gone to by its byte, and then all follow in order.
    enum class Search : unsigned char { none, stamp, byte, place };
    /// Blocks of one size in a row, each decoded by itself: the place in the file tells the frame.
    struct Blocks {
        std::int64_t start = 0;  ///< byte of the first
        std::int64_t bytes = 0;  ///< of a block; 0: the file is not made so
        std::int64_t frames = 0;
    };
    struct Pass;
    /// What comes of a try to go without reading every packet: all is read as before, the rest is listed, the map is
    /// complete; or what the file tells of itself is wrong, or there is no sound.
    enum class Sequel : unsigned char { asRead, asListed, taken, wrong, noSound };

    Sequel survey(MediaInput& input, bool mayList);
    Sequel takeFlac(const Pass& pass, MediaInput& input);
    Sequel takeFrames(const Pass& pass, MediaInput& input);
    bool takePlainSamples(const MediaInput& input);
    bool takeStamps(const Pass& pass, MediaInput& input);
    bool takeHeaders(const Pass& pass, MediaInput& input);
    bool takeDecoded(MediaInput& input);
    void takeBlocks(const MediaInput& input, std::int64_t firstByte);
    std::int64_t stampOf(std::int64_t frame) const;
    std::size_t markOf(std::int64_t frame) const;
    void capAtDurations(const Pass& pass, std::int64_t constant);
    bool measureTail(MediaInput& input, std::int64_t stamp, std::uint32_t discard);
    void chooseSearch(const MediaInput& input);
    bool stampsHoldAfterSeek(const Pass& pass, MediaInput& input) const;
    std::int64_t toFrames(std::int64_t ticks) const { return ticks * framesPerTick_ / ticksPerFrame_; }

    bool exactStamps_ = false;
    Search search_ = Search::none;
    std::int64_t framesPerTick_ = 1, ticksPerFrame_ = 1;
    std::int64_t origin_ = 0;  ///< frame 0 in frames of the stamps' own count
    std::int64_t firstStamp_ = 0;
    bool onlyFromStart_ = false;  ///< stamps after a seek are wrong
    std::uint64_t length_ = 0;
    Blocks blocks_;
    std::vector<Mark> marks_;  ///< of each packet, where stamps are not exact
};

}  // namespace zv
