#include "platform/ffmpeg/packet_decoder.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <mutex>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/mem.h>
}

namespace zv {
namespace {

constexpr int largestChannels = 64;
constexpr int largestRate = 768'000;
constexpr float loudestSample = 16;
constexpr std::size_t largestAllocation = std::size_t{256} << 20;

/// The float decoder where there are two: the others add noise that depends on where decoding began.
const AVCodec* findDecoder(AVCodecID codec) {
    const char* name = codec == AV_CODEC_ID_MP1   ? "mp1float"
                       : codec == AV_CODEC_ID_MP2 ? "mp2float"
                       : codec == AV_CODEC_ID_MP3 ? "mp3float"
                                                  : nullptr;
    const AVCodec* decoder = name ? avcodec_find_decoder_by_name(name) : nullptr;
    return decoder ? decoder : avcodec_find_decoder(codec);
}

std::uint32_t bitsInFile(const AVCodecParameters& parameters) {
    if (parameters.bits_per_raw_sample > 0) return static_cast<std::uint32_t>(parameters.bits_per_raw_sample);
    return static_cast<std::uint32_t>(std::max(0, av_get_bits_per_sample(parameters.codec_id)));
}

}  // namespace

void prepareLibraries() {
    static std::once_flag once;
    std::call_once(once, [] {
        av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(largestAllocation);
        avformat_network_init();
    });
}

int PacketDecoder::open(const AVCodecParameters& parameters, AVRational timeBase) {
    prepareLibraries();
    const AVCodec* decoder = findDecoder(parameters.codec_id);
    if (!decoder) return AVERROR_DECODER_NOT_FOUND;
    if (!frame_) frame_.reset(av_frame_alloc());
    codec_.reset(avcodec_alloc_context3(decoder));
    if (!codec_ || !frame_) return AVERROR(ENOMEM);
    if (const int result = avcodec_parameters_to_context(codec_.get(), &parameters); result < 0)
        return result;
    bits_ = bitsInFile(parameters);
    codec_->pkt_timebase = timeBase;
    codec_->thread_count = 1;
    // Encoder delay is cut by positions: the codec would cut it only where the stream is entered at its start.
    codec_->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    return avcodec_open2(codec_.get(), decoder, nullptr);
}

/// Makes the converter one from the format of `frame`.
bool PacketDecoder::prepareConverter(const AVFrame& frame) {
    const int channels = frame.ch_layout.nb_channels;
    const auto sample = static_cast<AVSampleFormat>(frame.format);
    if (converter_ && sample == converterSample_ && frame.sample_rate == converterRate_ &&
        av_channel_layout_compare(&frame.ch_layout, &converterLayout_) == 0)
        return true;
    // A layout without names of its own, or another one than at the start, is taken as the usual one of
    // as many channels.
    AVChannelLayout in{}, result{};
    if (frame.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&in, channels);
    else
        av_channel_layout_copy(&in, &frame.ch_layout);
    if (static_cast<int>(format_.channels) == channels)
        av_channel_layout_copy(&result, &in);
    else
        av_channel_layout_default(&result, static_cast<int>(format_.channels));
    SwrContext* converter = nullptr;
    const int failed =
        swr_alloc_set_opts2(&converter, &result, AV_SAMPLE_FMT_FLT, static_cast<int>(format_.rate), &in,
                            sample, frame.sample_rate, 0, nullptr);
    av_channel_layout_uninit(&in);
    av_channel_layout_uninit(&result);
    converter_.reset(converter);
    // A song in mono goes to both sides as it is; the library would take 3 dB off.
    static constexpr double asItIs[2] = {1, 1};
    if (failed >= 0 && channels == 1 && format_.channels == 2) swr_set_matrix(converter, asItIs, 1);
    if (failed < 0 || swr_init(converter) < 0) {
        converter_.reset();
        return false;
    }
    av_channel_layout_uninit(&converterLayout_);
    av_channel_layout_copy(&converterLayout_, &frame.ch_layout);
    converterSample_ = sample;
    converterRate_ = frame.sample_rate;
    return true;
}

void PacketDecoder::appendFrame(const AVFrame& frame, std::vector<float>& out) {
    const int channels = frame.ch_layout.nb_channels;
    if (channels < 1 || channels > largestChannels || frame.sample_rate < 1 ||
        frame.sample_rate > largestRate || frame.nb_samples < 1)
        return;
    if (format_.rate == 0) {
        format_ = {static_cast<std::uint32_t>(frame.sample_rate), static_cast<std::uint32_t>(channels),
                   bits_};
    }
    if (!prepareConverter(frame)) return;
    const int room = swr_get_out_samples(converter_.get(), frame.nb_samples);
    if (room <= 0) return;
    const std::size_t before = out.size();
    out.resize(before + static_cast<std::size_t>(room) * format_.channels);
    auto* target = reinterpret_cast<std::uint8_t*>(out.data() + before);
    const int written = swr_convert(converter_.get(), &target, room,
                                    const_cast<const std::uint8_t**>(frame.extended_data), frame.nb_samples);
    out.resize(before + static_cast<std::size_t>(std::max(0, written)) * format_.channels);
    // A damaged packet can come out of a codec as anything; nothing that was meant to be sound is that loud.
    for (std::size_t i = before; i < out.size(); ++i)
        if (!(std::abs(out[i]) <= loudestSample)) out[i] = 0;
}

Yield PacketDecoder::decode(const AVPacket* packet, std::vector<float>& out) {
    Yield yield;
    const std::size_t before = out.size();
    if (avcodec_send_packet(codec_.get(), packet) < 0) yield.failed = true;
    while (avcodec_receive_frame(codec_.get(), frame_.get()) >= 0) {
        if (yield.stamp == AV_NOPTS_VALUE) yield.stamp = frame_->pts;
        const AVFrameSideData* skip = av_frame_get_side_data(frame_.get(), AV_FRAME_DATA_SKIP_SAMPLES);
        if (skip && skip->size >= 4) {
            const std::uint8_t* bytes = skip->data;
            yield.skip += bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8 |
                          static_cast<std::uint32_t>(bytes[2]) << 16 |
                          static_cast<std::uint32_t>(bytes[3]) << 24;
        }
        appendFrame(*frame_, out);
        av_frame_unref(frame_.get());
    }
    if (format_.channels > 0) yield.frames = (out.size() - before) / format_.channels;
    return yield;
}

}  // namespace zv
