#include "platform/ffmpeg/xiph_codec.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>
#include <utility>

extern "C" {
#include <libavutil/mem.h>
}

namespace zv {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t vorbisHeaders = 3, opusHeaders = 2;
constexpr std::size_t flacInfoAt = 17, flacInfoBytes = 34;  // within the first packet
constexpr std::uint32_t opusRate = 48'000;

bool beginsWith(Bytes packet, std::string_view mark) {
    return packet.size() >= mark.size() && std::memcmp(packet.data(), mark.data(), mark.size()) == 0;
}

std::int64_t framesOfOpus(Bytes head) {
    constexpr std::int64_t silk[] = {480, 960, 1920, 2880};
    if (head.empty()) return 0;
    const unsigned mode = head[0] >> 3, code = head[0] & 3;
    const std::int64_t one = mode < 12 ? silk[mode & 3] : mode < 16 ? silk[mode & 1] : 120 << (mode & 3);
    const int count = code == 0 ? 1 : code < 3 ? 2 : head.size() > 1 ? head[1] & 63 : 0;
    return one * count;
}

std::int64_t framesOfFlac(Bytes head) {
    if (head.size() < 5 || head[0] != 0xFF) return 0;
    const unsigned code = head[2] >> 4;
    if (code == 1) return 192;
    if (code >= 2 && code <= 5) return 576 << (code - 2);
    if (code >= 8) return 256 << (code - 8);
    // Behind the frame's number, which is as long as its leading ones tell.
    const std::size_t at = 4 + std::max<std::size_t>(1, static_cast<std::size_t>(std::countl_one(head[4])));
    if (code == 6 && at < head.size()) return head[at] + 1;
    if (code == 7 && at + 1 < head.size()) return (head[at] << 8 | head[at + 1]) + 1;
    return 0;
}

}  // namespace

std::optional<XiphCodec> XiphCodec::begin(Bytes first) {
    XiphCodec codec;
    if (beginsWith(first, "\x01vorbis") && first.size() >= 16) {
        codec.id_ = AV_CODEC_ID_VORBIS;
        codec.channels_ = first[11];
        codec.rate_ =
            first[12] | first[13] << 8 | first[14] << 16 | static_cast<std::uint32_t>(first[15]) << 24;
    } else if (beginsWith(first, "OpusHead") && first.size() >= 19) {
        codec.id_ = AV_CODEC_ID_OPUS;
        codec.channels_ = first[9];
        codec.rate_ = opusRate;
        codec.skip_ = first[10] | static_cast<std::uint32_t>(first[11]) << 8;
    } else if (beginsWith(first,
                          "\x7F"
                          "FLAC") &&
               first.size() >= flacInfoAt + flacInfoBytes) {
        const Bytes info = first.subspan(flacInfoAt, flacInfoBytes);
        codec.id_ = AV_CODEC_ID_FLAC;
        codec.rate_ = static_cast<std::uint32_t>(info[10] << 12 | info[11] << 4 | info[12] >> 4);
        codec.channels_ = (info[12] >> 1 & 7U) + 1;
        codec.bits_ = ((info[12] & 1U) << 4 | info[13] >> 4) + 1;
    } else {
        return std::nullopt;
    }
    codec.headers_.emplace_back(first.begin(), first.end());
    return codec;
}

bool XiphCodec::takeHeader(Bytes packet) {
    const bool more = id_ == AV_CODEC_ID_FLAC
                          ? packet.empty() || packet[0] != 0xFF
                          : headers_.size() < (id_ == AV_CODEC_ID_OPUS ? opusHeaders : vorbisHeaders);
    // The comments of FLAC can hold pictures, and nobody asks for them.
    if (more && id_ != AV_CODEC_ID_FLAC) headers_.emplace_back(packet.begin(), packet.end());
    return more;
}

std::shared_ptr<const AVCodecParameters> XiphCodec::parameters() {
    std::vector<std::uint8_t> extra;
    if (id_ == AV_CODEC_ID_VORBIS) {
        if (headers_.size() < vorbisHeaders) return nullptr;
        extra.push_back(vorbisHeaders - 1);
        for (std::size_t k = 0; k + 1 < vorbisHeaders; ++k) {
            extra.insert(extra.end(), headers_[k].size() / 255, 255);
            extra.push_back(static_cast<std::uint8_t>(headers_[k].size() % 255));
        }
        for (const auto& header : headers_) extra.insert(extra.end(), header.begin(), header.end());
    } else if (id_ == AV_CODEC_ID_OPUS) {
        extra = headers_.front();
    } else {
        const auto info = headers_.front().begin() + flacInfoAt;
        extra.assign(info, info + flacInfoBytes);
    }
    const std::shared_ptr<AVCodecParameters> result(
        avcodec_parameters_alloc(), [](AVCodecParameters* p) { avcodec_parameters_free(&p); });
    if (!result || rate_ == 0 || channels_ == 0) return nullptr;
    result->codec_type = AVMEDIA_TYPE_AUDIO;
    result->codec_id = id_;
    result->sample_rate = static_cast<int>(rate_);
    result->bits_per_raw_sample = static_cast<int>(bits_);
    av_channel_layout_default(&result->ch_layout, static_cast<int>(channels_));
    result->extradata = static_cast<std::uint8_t*>(av_mallocz(extra.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!result->extradata) return nullptr;
    std::copy(extra.begin(), extra.end(), result->extradata);
    result->extradata_size = static_cast<int>(extra.size());
    if (id_ == AV_CODEC_ID_VORBIS && !prepareVorbis(*result)) return nullptr;
    headers_.clear();
    return result;
}

std::optional<XiphCodec> XiphCodec::of(const AVCodecParameters& parameters) {
    XiphCodec codec;
    codec.id_ = parameters.codec_id;
    const bool vorbis = codec.id_ == AV_CODEC_ID_VORBIS && codec.prepareVorbis(parameters);
    const bool bare = codec.id_ == AV_CODEC_ID_OPUS || codec.id_ == AV_CODEC_ID_FLAC;
    return vorbis || bare ? std::optional(codec) : std::nullopt;
}

bool XiphCodec::prepareVorbis(const AVCodecParameters& parameters) {
    vorbis_.reset(av_vorbis_parse_init(parameters.extradata, parameters.extradata_size),
                  [](AVVorbisParseContext* context) { av_vorbis_parse_free(&context); });
    return vorbis_ != nullptr;
}

std::int64_t XiphCodec::framesOf(Bytes head) {
    if (id_ == AV_CODEC_ID_OPUS) return framesOfOpus(head);
    if (id_ == AV_CODEC_ID_FLAC) return framesOfFlac(head);
    const int frames = av_vorbis_parse_frame(vorbis_.get(), head.data(), static_cast<int>(head.size()));
    // The first block only prepares the overlap with the second.
    return std::exchange(first_, false) ? 0 : std::max(0, frames);
}

}  // namespace zv
