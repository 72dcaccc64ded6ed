#include "platform/ffmpeg/packet_map.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <string_view>
#include <utility>

#include "platform/ffmpeg/packet_list.h"

namespace zv {
namespace {

constexpr std::size_t probedPackets = 64;  // decoded at most, to see the first sound
constexpr std::size_t probedYields = 8;    // packets whose sound is compared with what their headers say
constexpr int neededAgreement = 3;         // packets in a row that show where in the file they are
constexpr std::size_t tailPackets = 12;    // decoded at the end, for what the codec holds back

constexpr std::int64_t largestStamp = std::int64_t{1} << 50;  // of a file that means it
constexpr std::int64_t largestRatio = 1 << 12;                // of stamps to frames

std::int64_t stampOfPacket(const AVPacket& packet) {
    const std::int64_t stamp = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    return stamp > -largestStamp && stamp < largestStamp ? stamp : AV_NOPTS_VALUE;
}

/// Frames that the container wants cut off the end of this packet's sound.
std::uint32_t discardOf(const AVPacket& packet) {
    std::size_t size = 0;
    const std::uint8_t* side = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (!side || size < 8) return 0;
    return side[4] | static_cast<std::uint32_t>(side[5]) << 8 | static_cast<std::uint32_t>(side[6]) << 16 |
           static_cast<std::uint32_t>(side[7]) << 24;
}

/// Frames to cut off the end when `packet` is the last: padding can be longer than one packet.
std::uint32_t discardsSoFar(std::uint32_t before, const AVPacket& packet) {
    const std::uint32_t discard = discardOf(packet);
    return discard > 0 ? before + discard : 0;
}

/// Containers that keep a table of their packets; others read some on their way to a place, or guess it.
bool inTable(const MediaInput& input) { return std::string_view(input.container().name).starts_with("mov"); }

/// WMA 1 and 2 tell in each block how many frames of sound end in it.
std::int64_t framesOfWindowsMedia(const AVCodecContext& codec, const AVPacket& packet) {
    const bool first = codec.codec_id == AV_CODEC_ID_WMAV1;
    const int flagsAt = first ? 2 : 4;
    if (codec.extradata_size < flagsAt + 2 || codec.block_align <= 0) return 0;
    const int rate = codec.sample_rate;
    std::int64_t frame = 2048;
    if (rate <= 16'000)
        frame = 512;
    else if (rate <= 22'050 || (rate <= 32'000 && first))
        frame = 1024;
    else if (rate > 48'000)
        frame = rate <= 96'000 ? 4096 : 8192;
    constexpr int bitReservoir = 2;
    if (!(codec.extradata[flagsAt] & bitReservoir)) return frame * (packet.size / codec.block_align);
    std::int64_t frames = 0;
    for (int at = 0; at + codec.block_align <= packet.size; at += codec.block_align)
        frames += (packet.data[at] & 0x0F) * frame;
    return frames;
}

/// Frames of a packet's sound as its header tells; 0 unknown. `xiph` follows the packets of such a codec.
std::int64_t framesByHeader(const MediaInput& input, std::optional<XiphCodec>& xiph) {
    const AVPacket& packet = input.packet();
    const AVCodecID codec = input.codec().codec_id;
    if (codec == AV_CODEC_ID_WMAV1 || codec == AV_CODEC_ID_WMAV2)
        return framesOfWindowsMedia(input.codec(), packet);
    return framesByHead(input, xiph, {packet.data, static_cast<std::size_t>(packet.size)}, packet.size);
}

}  // namespace

struct PacketMap::Pass {
    std::vector<ListedPacket> packets;
    std::vector<std::size_t> yields;  ///< frames of the first packets, as decoded
    std::size_t firstSound = 0;       ///< packet that gave the first frame
    std::int64_t soundStamp = AV_NOPTS_VALUE;
    std::uint32_t skip = 0;
    std::uint32_t discard = 0;  ///< frames that the last packets cut off the end
    std::size_t listed = 0;     ///< packets that a list tells of; 0: all were read
    std::int64_t constantFrames() const;
    Sequel takeList(MediaInput& input, std::optional<XiphCodec>& xiph);
    void add(const MediaInput& input, std::int64_t frames);
};

/// Frames that each packet gives where all give as many, 0 otherwise.
std::int64_t PacketMap::Pass::constantFrames() const {
    if (firstSound + 1 >= yields.size()) return 0;
    const std::size_t first = firstSound + 1;  // the very first may be short
    const auto sameHeader = [&](const ListedPacket& p) {
        return p.header > 0 && p.header == packets[first].header;
    };
    const auto sameYield = [&](std::size_t frames) { return frames == yields[first]; };
    const auto probed = yields.begin() + static_cast<std::ptrdiff_t>(first);
    const bool same = std::all_of(packets.begin(), packets.end(), sameHeader) &&
                      std::all_of(probed, yields.end(), sameYield);
    return same ? static_cast<std::int64_t>(yields[first]) : 0;
}

void PacketMap::Pass::add(const MediaInput& input, std::int64_t frames) {
    const AVPacket& packet = input.packet();
    packets.push_back({stampOfPacket(packet), packet.duration < largestStamp ? packet.duration : 0, frames,
                       packet.pos, packet.size});
    discard = discardsSoFar(discard, packet);
}

/// Takes what lies between the packets that were read and the last ones from a list, where there is one that agrees with
/// the former. The input then stands behind the first of the last ones.
PacketMap::Sequel PacketMap::Pass::takeList(MediaInput& input, std::optional<XiphCodec>& xiph) {
    const auto list = listPackets(input, packets.front().byte);
    if (list.size() < packets.size() + tailPackets) return Sequel::asRead;
    const std::int64_t offset = packets.front().stamp - list.front().stamp;
    for (std::size_t i = 0; i < packets.size(); ++i) {
        const ListedPacket &read = packets[i], &told = list[i];
        if (read.stamp != told.stamp + offset || read.byte != told.byte || read.size != told.size ||
            read.header != told.header)
            return Sequel::asRead;
    }
    const std::size_t tail = list.size() - tailPackets;
    for (std::size_t i = packets.size(); i < tail; ++i) {
        packets.push_back(list[i]);
        packets.back().stamp += offset;
    }
    listed = list.size();
    if (!input.seek(list[tail].stamp + offset)) return Sequel::wrong;
    for (std::size_t passed = 0; passed < list.size() && input.readPacket(); ++passed) {
        if (input.packet().pos != list[tail].byte) continue;
        framesByHeader(input, xiph);  // the next one's frames depend on this packet
        add(input, list[tail].header);
        return Sequel::asListed;
    }
    return Sequel::wrong;
}

std::optional<PacketMap> PacketMap::survey(MediaInput& input) {
    PacketMap map;
    Sequel sequel = map.survey(input, true);
    if (sequel == Sequel::wrong) {
        map = {};
        sequel = input.reopen() ? map.survey(input, false) : Sequel::noSound;
    }
    if (sequel == Sequel::noSound || map.length_ == 0) return std::nullopt;
    return map;
}

/// `mayList`: what a list tells of the packets need not be read.
PacketMap::Sequel PacketMap::survey(MediaInput& input, bool mayList) {
    Pass pass;
    std::vector<float> sound;
    bool heard = false;
    auto xiph = XiphCodec::of(*input.stream().codecpar);
    while (input.readPacket()) {
        const AVPacket& packet = input.packet();
        const std::size_t index = pass.packets.size();
        pass.add(input, framesByHeader(input, xiph));
        const bool probe = heard ? index < pass.firstSound + probedYields : index < probedPackets;
        if (!probe) {
            if (!heard) return Sequel::noSound;
            if (std::exchange(mayList, false)) {
                for (const auto& take : {&PacketMap::takeFlac, &PacketMap::takeFrames})
                    if (const Sequel sequel = (this->*take)(pass, input); sequel != Sequel::asRead)
                        return sequel;
                if (pass.takeList(input, xiph) == Sequel::wrong) return Sequel::wrong;
            }
            continue;
        }
        sound.clear();
        const Yield yield = input.decode(&packet, sound);
        pass.yields.push_back(yield.frames);
        if (!heard && yield.frames > 0) {
            heard = true;
            pass.firstSound = index;
            pass.soundStamp = yield.stamp;
            pass.skip = yield.skip;
            firstStamp_ = pass.packets.front().stamp;
            if (takePlainSamples(input)) return Sequel::asRead;
        }
    }
    if (pass.packets.empty()) return Sequel::noSound;
    if (pass.listed > 0 && pass.packets.size() != pass.listed) return Sequel::wrong;
    if (!heard) {
        // The codec may hold back a sound that is over at once.
        sound.clear();
        if (input.decode(nullptr, sound).frames == 0) return Sequel::noSound;
    }
    if (input.timedOut()) return Sequel::noSound;
    firstStamp_ = pass.packets.front().stamp;
    const bool taken = takeStamps(pass, input) || takeHeaders(pass, input) || takeDecoded(input);
    return taken ? Sequel::asRead : Sequel::noSound;
}

/// FLAC's frames tell which samples they hold, and its head how many there are: when the last frame agrees, nothing
/// between need be read.
PacketMap::Sequel PacketMap::takeFlac(const Pass& pass, MediaInput& input) {
    const AVStream& stream = input.stream();
    const std::int64_t total = stream.duration;
    if (std::string_view(input.container().name) != "flac" || total <= 0 || pass.firstSound != 0 ||
        pass.soundStamp != 0 || av_cmp_q(stream.time_base, {1, static_cast<int>(input.format().rate)}) != 0)
        return Sequel::asRead;
    std::int64_t at = 0;
    for (std::size_t i = 0; i < pass.yields.size(); ++i) {
        if (pass.packets[i].stamp != at ||
            pass.packets[i].duration != static_cast<std::int64_t>(pass.yields[i]))
            return Sequel::asRead;
        at += pass.packets[i].duration;
    }
    std::vector<float> sound;
    for (const std::int64_t wanted : {total / 3, total * 2 / 3, total - 1}) {
        if (!input.seek(wanted) || !input.readPacket() || input.packet().pts > wanted) return Sequel::wrong;
        at = input.packet().pts;
        // The search may stop some frames early.
        do {
            sound.clear();
            const Yield yield = input.decode(&input.packet(), sound);
            if (input.packet().pts != at || yield.stamp != at || yield.frames == 0) return Sequel::wrong;
            at += static_cast<std::int64_t>(yield.frames);
        } while (at <= wanted && input.readPacket());
    }
    if (at != total || input.readPacket()) return Sequel::wrong;
    exactStamps_ = true;
    length_ = static_cast<std::uint64_t>(total);
    return Sequel::taken;
}

/// Frames that tell their sizes lie one behind the other, from the first that was read to the end of the file.
PacketMap::Sequel PacketMap::takeFrames(const Pass& pass, MediaInput& input) {
    if (std::string_view(input.container().name) != "mp3" || pass.skip > 0 || pass.firstSound != 0)
        return Sequel::asRead;
    const auto list = listPackets(input, pass.packets.front().byte);
    if (list.size() < pass.packets.size() + tailPackets) return Sequel::asRead;
    for (std::size_t i = 0; i < pass.packets.size(); ++i)
        if (pass.packets[i].size != list[i].size || pass.packets[i].header != list[i].header)
            return Sequel::asRead;
    for (std::size_t i = 0; i < pass.yields.size(); ++i)
        if (list[i].header != static_cast<std::int64_t>(pass.yields[i])) return Sequel::asRead;
    std::size_t next = list.size() - tailPackets;
    if (!input.seekByte(list[next].byte)) return Sequel::wrong;
    for (; input.readPacket(); ++next)
        if (next >= list.size() || input.packet().size != list[next].size) return Sequel::wrong;
    if (next != list.size()) return Sequel::wrong;
    std::int64_t at = 0;
    for (const ListedPacket& packet : list) {
        marks_.push_back({firstStamp_, at, packet.byte, packet.size});
        at += packet.header;
    }
    search_ = Search::place;
    length_ = static_cast<std::uint64_t>(at);
    return Sequel::taken;
}

/// Plain samples in a row: their number is the size of the data, whatever the header says of it.
bool PacketMap::takePlainSamples(const MediaInput& input) {
    const AVCodecParameters& parameters = *input.stream().codecpar;
    const std::string_view container = input.container().name;
    const bool plain = container == "wav" || container == "w64" || container == "aiff" || container == "au";
    const std::int64_t start = input.packet().pos, size = input.fileSize();
    const int bits = av_get_exact_bits_per_sample(parameters.codec_id);
    const std::int64_t block = parameters.block_align;
    if (!plain || bits <= 0 || bits % 8 != 0 || block != parameters.ch_layout.nb_channels * (bits / 8) ||
        start < 0 || size <= start || input.stream().time_base.num != 1 ||
        input.stream().time_base.den != static_cast<int>(input.format().rate))
        return false;
    std::int64_t frames = (size - start) / block;
    if (input.stream().duration > 0) frames = std::min(frames, input.stream().duration);
    if (frames <= 0) return false;
    exactStamps_ = true;
    length_ = static_cast<std::uint64_t>(frames);
    return true;
}

bool PacketMap::takeStamps(const Pass& pass, MediaInput& input) {
    const AVRational base = input.stream().time_base;
    const std::int64_t up = std::int64_t{base.num} * input.format().rate, down = base.den;
    if (up <= 0 || down <= 0) return false;
    const std::int64_t common = std::gcd(up, down);
    framesPerTick_ = up / common;
    ticksPerFrame_ = down / common;
    if ((framesPerTick_ != 1 && ticksPerFrame_ != 1) || framesPerTick_ > largestRatio ||
        ticksPerFrame_ > largestRatio || pass.soundStamp == AV_NOPTS_VALUE)
        return false;

    const auto& packets = pass.packets;
    const std::int64_t constant = pass.constantFrames();
    for (std::size_t i = pass.firstSound; i < packets.size(); ++i) {
        const ListedPacket& packet = packets[i];
        if (packet.stamp == AV_NOPTS_VALUE || packet.duration <= 0) return false;
        const bool last = i + 1 == packets.size();
        if (!last && constant > 0 && toFrames(packet.duration) != constant) return false;
        if (!last && packets[i + 1].stamp != packet.stamp + packet.duration) return false;
        if (!last && i < pass.yields.size() &&
            toFrames(packet.duration) != static_cast<std::int64_t>(pass.yields[i]))
            return false;
    }
    origin_ = toFrames(pass.soundStamp) + pass.skip;
    takeBlocks(input, packets.front().byte);
    // Codecs for which an Ogg file is read by the library: entered at a page, it takes the first packet for a later one.
    const bool ogg = std::string_view(input.container().name) == "ogg";
    onlyFromStart_ = ogg;
    if (!ogg && blocks_.bytes == 0 && !stampsHoldAfterSeek(pass, input)) return false;
    exactStamps_ = true;
    // Ogg's last stamp is already where the sound ends.
    const std::uint32_t discard = ogg ? 0 : pass.discard;
    const std::int64_t end = toFrames(packets.back().stamp + packets.back().duration);
    length_ = static_cast<std::uint64_t>(std::max<std::int64_t>(0, end - discard - origin_));
    return true;
}

/// A WAV of compressed blocks: after a seek its stamps are estimates, but its blocks are where they are.
void PacketMap::takeBlocks(const MediaInput& input, std::int64_t firstByte) {
    const std::string_view container = input.container().name;
    const std::int64_t bytes = input.stream().codecpar->block_align;
    if ((container != "wav" && container != "w64") || bytes <= 1 || firstByte < 0 || origin_ != 0) return;
    const int frames = av_get_audio_frame_duration2(input.stream().codecpar, static_cast<int>(bytes));
    const bool eachByItself = input.stream().codecpar->codec_id >= AV_CODEC_ID_ADPCM_IMA_QT &&
                              input.stream().codecpar->codec_id < AV_CODEC_ID_AMR_NB;
    if (frames > 0 && eachByItself) blocks_ = {firstByte, bytes, frames};
}

/// Tries two seeks: some containers count stamps on from a guess after one.
bool PacketMap::stampsHoldAfterSeek(const Pass& pass, MediaInput& input) const {
    const auto& packets = pass.packets;
    for (const std::size_t part : {std::size_t{1}, std::size_t{2}}) {
        const ListedPacket& wanted = packets[packets.size() * part / 3];
        if (!input.seek(wanted.stamp) || !input.readPacket()) return false;
        const std::int64_t stamp = stampOfPacket(input.packet());
        const auto found = std::find_if(packets.begin(), packets.end(),
                                        [&](const ListedPacket& p) { return p.stamp == stamp; });
        if (found == packets.end() || found->byte != input.packet().pos || stamp > wanted.stamp) return false;
    }
    return true;
}

bool PacketMap::takeHeaders(const Pass& pass, MediaInput& input) {
    const auto& packets = pass.packets;
    // Of codecs that double their frames (HE-AAC), headers tell the half.
    const std::int64_t constant = pass.constantFrames();
    const auto frames = [&](std::size_t i) { return constant > 0 ? constant : packets[i].header; };
    for (std::size_t i = 0; i < packets.size(); ++i) {
        if (packets[i].header <= 0 && i >= pass.yields.size()) return false;
        const bool compared = i > pass.firstSound && i < pass.yields.size() && i + 1 < packets.size();
        if (compared && frames(i) != static_cast<std::int64_t>(pass.yields[i])) return false;
    }
    std::vector<Mark> marks;
    std::int64_t at = -static_cast<std::int64_t>(pass.skip);
    for (std::size_t i = 0; i < packets.size(); ++i) {
        marks.push_back({packets[i].stamp, at, packets[i].byte, packets[i].size});
        at += i < pass.yields.size() ? static_cast<std::int64_t>(pass.yields[i]) : frames(i);
    }
    marks_ = std::move(marks);
    length_ = static_cast<std::uint64_t>(std::max<std::int64_t>(0, at - pass.discard));
    const bool told = constant > 0 && inTable(input);
    if (told) capAtDurations(pass, constant);

    if (packets.size() <= tailPackets) return takeDecoded(input);
    const std::size_t from = packets.size() - tailPackets;
    chooseSearch(input);
    if (search_ == Search::none) return takeDecoded(input);
    return told || measureTail(input, packets[from].stamp, pass.discard) || takeDecoded(input);
}

/// Stamps that jitter still tell how long the sound is meant to be.
void PacketMap::capAtDurations(const Pass& pass, std::int64_t constant) {
    std::int64_t meant = -static_cast<std::int64_t>(pass.skip);
    for (const ListedPacket& packet : pass.packets)
        meant += packet.duration > 0 ? toFrames(packet.duration) : constant;
    if (meant > 0) length_ = std::min(length_, static_cast<std::uint64_t>(meant));
}

/// The length by what the last packets and the emptied codec really give.
bool PacketMap::measureTail(MediaInput& input, std::int64_t stamp, std::uint32_t discard) {
    if (!input.seek(stamp)) return false;
    Walker walker(*this);
    walker.restart(0);
    std::vector<float> sound;
    std::int64_t end = -1;
    while (input.readPacket()) {
        const auto place = walker.place(input.packet());
        sound.clear();
        const Yield yield = input.decode(&input.packet(), sound);
        end = place ? *place + static_cast<std::int64_t>(yield.frames) : -1;
    }
    if (end < 0) return false;
    sound.clear();
    end += static_cast<std::int64_t>(input.decode(nullptr, sound).frames);
    length_ = static_cast<std::uint64_t>(std::max<std::int64_t>(0, end - discard));
    return true;
}

/// How a packet can be recognised: best by its place in the file, else by its stamp.
void PacketMap::chooseSearch(const MediaInput& input) {
    const bool bytesRise = std::adjacent_find(marks_.begin(), marks_.end(), [](const Mark& a, const Mark& b) {
                               return a.byte < 0 || a.byte >= b.byte;
                           }) == marks_.end();
    const bool stamped = std::none_of(marks_.begin(), marks_.end(),
                                      [](const Mark& mark) { return mark.stamp == AV_NOPTS_VALUE; });
    const bool stampsRise =
        std::adjacent_find(marks_.begin(), marks_.end(),
                           [](const Mark& a, const Mark& b) { return a.stamp >= b.stamp; }) == marks_.end();
    search_ = Search::none;
    if (stamped && stampsRise) search_ = inTable(input) && bytesRise ? Search::byte : Search::stamp;
}

bool PacketMap::takeDecoded(MediaInput& input) {
    if (!input.reopen()) return false;
    marks_.clear();
    exactStamps_ = false;
    std::vector<float> sound;
    std::int64_t at = 0;
    std::uint32_t discard = 0;
    bool heard = false;
    while (input.readPacket()) {
        const std::int64_t stamp = stampOfPacket(input.packet());
        discard = discardsSoFar(discard, input.packet());
        sound.clear();
        const Yield yield = input.decode(&input.packet(), sound);
        if (!heard && yield.frames > 0) {
            heard = true;
            at = -static_cast<std::int64_t>(yield.skip);
            for (Mark& mark : marks_) mark.frame = at;
        }
        marks_.push_back({stamp, at, input.packet().pos, input.packet().size});
        at += static_cast<std::int64_t>(yield.frames);
    }
    sound.clear();
    at += static_cast<std::int64_t>(input.decode(nullptr, sound).frames);
    if (input.timedOut()) return false;
    chooseSearch(input);
    length_ = static_cast<std::uint64_t>(std::max<std::int64_t>(0, at - discard));
    return !marks_.empty();
}

std::size_t PacketMap::markOf(std::int64_t frame) const {
    const auto after = std::upper_bound(marks_.begin(), marks_.end(), frame,
                                        [](std::int64_t f, const Mark& m) { return f < m.frame; });
    return after == marks_.begin() ? 0 : static_cast<std::size_t>(after - marks_.begin()) - 1;
}

std::int64_t PacketMap::stampOf(std::int64_t frame) const {
    if (exactStamps_) return (frame + origin_) * ticksPerFrame_ / framesPerTick_;
    return marks_.empty() || frame < marks_.front().frame ? firstStamp_ : marks_[markOf(frame)].stamp;
}

std::optional<std::int64_t> PacketMap::frameOf(std::int64_t stamp) const {
    if (!exactStamps_ || blocks_.bytes > 0 || stamp == AV_NOPTS_VALUE) return std::nullopt;
    return toFrames(stamp) - origin_;
}

bool PacketMap::enter(MediaInput& input, std::int64_t frame) const {
    if (onlyFromStart_) return false;
    if (blocks_.bytes > 0) return input.seekByte(blocks_.start + frame / blocks_.frames * blocks_.bytes);
    if (search_ == Search::place) return input.seekByte(marks_[markOf(frame)].byte);
    return input.seek(stampOf(frame));
}

bool PacketMap::enterStart(MediaInput& input) const {
    if (search_ == Search::place) {
        const Mark& first = marks_.front();
        return input.seekByte(first.byte) && input.renew() && input.readPacket() &&
               input.packet().size == first.size;
    }
    return firstStamp_ != AV_NOPTS_VALUE && input.seek(firstStamp_) && input.renew() && input.readPacket() &&
           (input.packet().pts == firstStamp_ || input.packet().dts == firstStamp_);
}

void PacketMap::Walker::restartAtStart() {
    next_ = 0;
    agreed_ = neededAgreement;
}

void PacketMap::Walker::restart(std::int64_t frame) {
    const bool known = map_->search_ == Search::place;
    next_ = known ? map_->markOf(frame) : 0;
    agreed_ = known ? neededAgreement : 0;
}

std::optional<std::int64_t> PacketMap::Walker::place(const AVPacket& packet) {
    const std::int64_t stamp = stampOfPacket(packet);
    const Blocks& blocks = map_->blocks_;
    if (map_->exactStamps_ && blocks.bytes > 0) {
        if (packet.pos < blocks.start) return std::nullopt;
        return (packet.pos - blocks.start) / blocks.bytes * blocks.frames;
    }
    if (map_->exactStamps_) return map_->frameOf(stamp);

    const auto& marks = map_->marks_;
    if (map_->search_ == Search::byte) {
        const auto found =
            std::lower_bound(marks.begin(), marks.end(), packet.pos,
                             [](const Mark& mark, std::int64_t pos) { return mark.byte < pos; });
        return found != marks.end() && found->byte == packet.pos ? std::optional(found->frame) : std::nullopt;
    }
    if (agreed_ < neededAgreement) {
        // The first packets after a seek may be pieces, and their stamps off by their rounding: a packet
        // counts as found when some in a row agree with the map.
        if (stamp == AV_NOPTS_VALUE || map_->search_ == Search::none) return std::nullopt;
        auto nearest =
            std::lower_bound(marks.begin(), marks.end(), stamp,
                             [](const Mark& mark, std::int64_t wanted) { return mark.stamp < wanted; });
        if (nearest == marks.end() ||
            (nearest != marks.begin() && stamp - std::prev(nearest)->stamp < nearest->stamp - stamp))
            nearest = std::prev(nearest);
        const std::int64_t off = std::abs(nearest->stamp - stamp);
        const auto ambiguous = [&](auto from, auto to) { return 3 * off >= to->stamp - from->stamp; };
        const bool clear = (nearest == marks.begin() || !ambiguous(std::prev(nearest), nearest)) &&
                           (std::next(nearest) == marks.end() || !ambiguous(nearest, std::next(nearest)));
        const auto index = static_cast<std::size_t>(nearest - marks.begin());
        const bool follows = agreed_ == 0 || index == next_;
        agreed_ = clear && nearest->size == packet.size ? (follows ? agreed_ + 1 : 1) : 0;
        next_ = index + 1;
        return agreed_ < neededAgreement ? std::nullopt : std::optional(nearest->frame);
    }
    if (next_ >= marks.size()) return std::nullopt;
    if (map_->search_ == Search::place && marks[next_].size != packet.size) return std::nullopt;
    return marks[next_++].frame;
}

}  // namespace zv
