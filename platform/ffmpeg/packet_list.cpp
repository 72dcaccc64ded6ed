#include "platform/ffmpeg/packet_list.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/ffmpeg/ogg_pages.h"

namespace zv {
namespace {

/// Containers with one table of all packets.
std::vector<ListedPacket> listTable(const MediaInput& input, ByteWindow& bytes) {
    auto* stream = const_cast<AVStream*>(&input.stream());  // the library's reader of tables changes nothing
    const int count = avformat_index_get_entries_count(stream);
    auto xiph = XiphCodec::of(*input.stream().codecpar);
    std::vector<ListedPacket> list;
    list.reserve(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k) {
        const AVIndexEntry* entry = avformat_index_get_entry(stream, k);
        if (!list.empty()) list.back().duration = entry->timestamp - list.back().stamp;
        const auto head =
            xiph ? bytes.read(entry->pos, XiphCodec::headBytes) : std::span<const std::uint8_t>();
        list.push_back(
            {entry->timestamp, 0, framesByHead(input, xiph, head, entry->size), entry->pos, entry->size});
    }
    return list;
}

/// Walks through the elements of a Matroska file: an id, a size and a content each.
class MatroskaWalk {
  public:
    MatroskaWalk(const MediaInput& input, std::int64_t first, ByteWindow& bytes)
        : input_(input), first_(first), bytes_(bytes), xiph_(XiphCodec::of(*input.stream().codecpar)) {}

    std::vector<ListedPacket> list() {
        while (at_ < bytes_.size()) {
            const Number id = number(at_, Marker::kept);
            const Number size = number(at_ + id.bytes, Marker::cut);
            if (id.bytes == 0 || size.bytes == 0) break;  // cut off, or no more of the kind
            at_ += id.bytes + size.bytes;
            const bool opened = id.value == segment || id.value == cluster || id.value == group;
            if (opened) continue;
            if (size.unknown) return {};
            if (id.value == clusterTime) time_ = unsignedAt(at_, size.value);
            if ((id.value == simpleBlock || id.value == block) && !takeBlock(at_, size.value)) return {};
            at_ += size.value;
        }
        return std::move(list_);
    }

  private:
    static constexpr std::int64_t segment = 0x18538067, cluster = 0x1F43B675, clusterTime = 0xE7,
                                  simpleBlock = 0xA3, group = 0xA0, block = 0xA1;
    static constexpr int laced = 0x06;  // bits of a block's flags
    enum class Marker : bool { kept, cut };
    struct Number {
        std::int64_t value = 0;
        int bytes = 0;  ///< 0: there is none
        bool unknown = false;
    };

    /// A number of one to eight bytes: as many zero bits stand before its first one as bytes follow the first.
    Number number(std::int64_t at, Marker marker) {
        const auto bytes = bytes_.read(at, 8);
        if (bytes.empty() || bytes[0] == 0) return {};
        const int count = __builtin_clz(bytes[0]) - 24 + 1;
        if (bytes.size() < static_cast<std::size_t>(count)) return {};
        std::uint64_t value = bytes[0];
        if (marker == Marker::cut) value &= 0xFFU >> count;
        for (int k = 1; k < count; ++k) value = value << 8 | bytes[static_cast<std::size_t>(k)];
        const std::uint64_t ones = (std::uint64_t{1} << 7 * count) - 1;
        return {static_cast<std::int64_t>(value), count, marker == Marker::cut && value == ones};
    }

    std::int64_t unsignedAt(std::int64_t at, std::int64_t size) {
        std::int64_t value = 0;
        for (const std::uint8_t byte : bytes_.read(at, size <= 8 ? static_cast<std::size_t>(size) : 0))
            value = value << 8 | byte;
        return value;
    }

    /// Track, time within the cluster, flags, and the packet. False for several packets in one block.
    bool takeBlock(std::int64_t at, std::int64_t size) {
        const Number track = number(at, Marker::cut);
        const std::int64_t before = track.bytes + 3;
        if (track.bytes == 0 || size < before || at + size > bytes_.size()) return false;
        if (at == first_) track_ = track.value;
        if (track.value != track_) return true;
        const auto part = bytes_.read(at + track.bytes, 3 + XiphCodec::headBytes);
        if (part.size() < 3 || (part[2] & laced) != 0) return false;
        const auto later = static_cast<std::int16_t>(part[0] << 8 | part[1]);
        const auto bytes = static_cast<int>(size - before);
        const auto head = part.subspan(3, std::min(part.size() - 3, static_cast<std::size_t>(bytes)));
        const std::int64_t frames = framesByHead(input_, xiph_, head, bytes);
        list_.push_back({time_ + later, ticksOf(frames), frames, at, bytes});
        return true;
    }

    /// `frames` in ticks where they are a whole number, else 0.
    std::int64_t ticksOf(std::int64_t frames) const {
        const AVRational base = input_.stream().time_base;
        const std::int64_t up = frames * base.den, down = std::int64_t{base.num} * input_.format().rate;
        return down > 0 && up % down == 0 ? up / down : 0;
    }

    const MediaInput& input_;
    const std::int64_t first_;
    std::int64_t track_ = -1;  ///< of the sound
    ByteWindow& bytes_;
    std::optional<XiphCodec> xiph_;
    std::int64_t at_ = 0, time_ = 0;
    std::vector<ListedPacket> list_;
};

/// MPEG audio of layer II, where each frame tells its size, up to what is none or a tag.
std::vector<ListedPacket> listLayerTwo(std::int64_t at, ByteWindow& bytes) {
    constexpr int kilobits[2][16] = {{0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},
                                     {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0}};
    constexpr int rates[] = {44'100, 48'000, 32'000, 0};
    constexpr int frames = 1152;
    std::vector<ListedPacket> list;
    for (;;) {
        const auto head = bytes.read(at, 4);
        if (head.size() < 4 || head[0] != 0xFF || (head[1] & 0xF6) != 0xF4) break;
        const bool full = (head[1] & 8) != 0;  // MPEG-2 halves the rates
        const int rate = rates[head[2] >> 2 & 3] / (full ? 1 : 2);
        const int rateOfBits = kilobits[full ? 1 : 0][head[2] >> 4] * 1000;
        if (rate == 0 || rateOfBits == 0) break;
        const int size = frames / 8 * rateOfBits / rate + (head[2] >> 1 & 1);
        list.push_back({AV_NOPTS_VALUE, 0, frames, at, size});
        at += size;
    }
    return list;
}

}  // namespace

std::int64_t framesByHead(const MediaInput& input, std::optional<XiphCodec>& xiph,
                          std::span<const std::uint8_t> head, int size) {
    if (xiph) return xiph->framesOf(head);
    if (input.codec().codec_id == AV_CODEC_ID_VORBIS) return 0;  // with headers that make no sense
    return av_get_audio_frame_duration2(input.stream().codecpar, size);
}

std::vector<ListedPacket> listPackets(const MediaInput& input, std::int64_t first) {
    const std::string_view container = input.container().name;
    ByteWindow bytes(input.path());
    if (container.starts_with("mov")) return listTable(input, bytes);
    if (container.starts_with("matroska")) return MatroskaWalk(input, first, bytes).list();
    if (container == "mp3" && input.codec().codec_id == AV_CODEC_ID_MP2) return listLayerTwo(first, bytes);
    return {};
}

}  // namespace zv
